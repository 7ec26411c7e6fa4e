/// \file
/// frmMain: the main window — the grammar editor Text1, the output box Text2,
/// the table grid Picture1, the twelve view selectors Image1, the status labels
/// of a run, and the menus through which every command is reached. It owns the
/// one Workspace for the program's life and drives the analysis run.
#pragma once

#include "session/AnalysisRun.h"
#include "session/Workspace.h"
#include "storage/PINI.h"
#include "ui/GuiHost.h"

#include <QMainWindow>
#include <QPointer>
#include <QUrl>
#include <array>
#include <functional>
#include <memory>
#include <vector>

class AutomatonPane;
class ConflictsPane;
class ParsePane;
class GrammarEditor;
class ListingView;
class QDockWidget;
class QLabel;
class QMenu;
class QPlainTextEdit;
class QToolButton;
class TableGrid;

class frmMain final : public QMainWindow, public AnalysisFrontend {
    Q_OBJECT
public:
    /// messages: where message boxes go (null: real message boxes). settingsFile:
    /// the settings file written at close (empty: none is written).
    explicit frmMain(Host* messages = nullptr, const QString& settingsFile = QString());
    ~frmMain() override;

    Workspace& workspace() { return *m_ws; }

    // ---- The window's operations ------------------------------------------------
    void SetText1(const QString& text);
    void SetText2(const QString& text) override;
    bool AnalyzeGrammar();
    /// The Analyse command: does nothing while a run is in progress.
    void Analyse();
    void ProcessStart();
    void ProcessStop();
    /// Puts the grammar's own text into the editor and saves it (after a renaming).
    void ResetText();
    /// Resets the parse and every analysis result; the selected view shows "Not analyzed.".
    void ResetResults();
    void SetCaption();
    /// Opens a grammar file: its text into the editor, its companion file read.
    bool TKGOpen(const QString& path);
    /// The save after a run: saves a grammar that has a file, with its companion.
    void GrammarSave() override;

    /// Selects a view (0..11) and shows its kept results without running anything.
    void SelectView(int view);
    int SelectedView() const { return m_view; }
    /// The editor's text differs from the grammar's file (or, for a new grammar, is not empty).
    bool Modified() const { return m_modified; }
    bool Processing() const { return processing; }

    /// Opens URLs (the manual); false when nothing could show it. Tests replace it.
    std::function<bool(const QUrl&)> urlOpener;
    /// Asks whether to save the changed grammar before its text is given up
    /// (Close, New, Open, Back, a recent or dropped file, a transformation's
    /// result). A message box; tests replace it.
    std::function<SaveAnswer(const QString& question)> saveQuestion;

    /// The question saveQuestion gets for the grammar as it stands:
    /// "Save the changes to expr?" or, for a grammar without a file, "Save the new grammar?".
    QString SaveQuestionText() const;
    /// Before the editor's text is given up: true when it may go (nothing
    /// changed, the user saved it, or chose Discard); false for Cancel or a save
    /// that did not happen (Save As cancelled, a failed write), and then nothing changes.
    bool MaybeSave();
    /// A grammar file chosen from the recent list or dropped on the window:
    /// opened after the save question.
    bool OpenAfterAsking(const QString& path);

    // ---- AnalysisFrontend -----------------------------------------------------------
    QString GrammarText() override;
    void OnProcessStart() override;
    void OnProcessStop() override;

    // ---- Controls ---------------------------------------------------------------------
    GrammarEditor* Text1 = nullptr;
    ListingView* Text2 = nullptr;
    TableGrid* Picture1 = nullptr;
    std::array<QToolButton*, View::Count> Image1{};
    QLabel* sPass = nullptr;
    QLabel* sElapsed = nullptr;
    QLabel* sState = nullptr;
    QToolButton* recentButton = nullptr;
    QToolButton* itemsButton = nullptr;  ///< LR views: the item sets instead of the table listing
    QLabel* verdictLabel = nullptr;      ///< above the output box: the verdict of an analysed method
    QPlainTextEdit* cellPane = nullptr;  ///< below the grid: what the chosen cell means
    QDockWidget* conflictsDock = nullptr;  ///< under the window, hidden until asked for
    ConflictsPane* conflictsPane = nullptr;  ///< the conflicts of the selected view and why they arise
    QDockWidget* parseDock = nullptr;  ///< beside the conflicts, hidden until asked for
    ParsePane* parsePane = nullptr;    ///< a sentence parsed step by step with the selected view's table
    QDockWidget* automatonDock = nullptr;    ///< tabbed with the conflicts, hidden until asked for
    AutomatonPane* automatonPane = nullptr;  ///< the automaton of the selected LR view, drawn

    QMenu* mnuFile = nullptr;
    QAction* mnuFileNew = nullptr;
    QAction* mnuFileOpen = nullptr;
    QAction* mnuFileSave = nullptr;
    QAction* mnuFileSaveAs = nullptr;
    QAction* mnuFile1 = nullptr;
    QAction* mnuFileBack = nullptr;
    QAction* mnuFileRename = nullptr;
    QAction* mnuFileStandalone = nullptr;
    QAction* mnuFile2 = nullptr;
    QAction* mnuFileClose = nullptr;
    QAction* mnuAnalyse = nullptr;
    QAction* mnuStop = nullptr;
    QMenu* mnuAction = nullptr;
    QAction* mnuActUnused = nullptr;
    QAction* mnuActLeftRecursion = nullptr;
    QAction* mnuActLeftFactoring = nullptr;
    QAction* mnuActEmptyRules = nullptr;
    QAction* mnuActCycleRules = nullptr;
    QAction* mnuActSep1 = nullptr;
    QAction* mnuActGroup = nullptr;
    QAction* mnuActReplace = nullptr;
    QAction* mnuClear = nullptr;
    QAction* mnuExport = nullptr;
    QAction* mnuStat = nullptr;
    QAction* mnuOverview = nullptr;
    QAction* mnuSettings = nullptr;
    QAction* mnuHelp = nullptr;
    QAction* mnuAbout = nullptr;

    // ---- Commands -----------------------------------------------------------------------
    void FileNew();
    void FileOpen();
    bool FileSave();
    bool FileSaveAs();
    void FileBack();
    void FileRename();
    void Stop();
    void Clear();
    void Export();
    /// Saves the standalone C program of the selected table view as NAME-VIEW.c.
    void ExportStandalone();
    void Statistics();
    /// The verdicts of the six methods, one line each (as trelk-cli summary
    /// prints them), in a dialog; methods not analysed yet are run first, and
    /// Stop ends those runs without the dialog.
    void Overview();
    void Options();
    void Help();
    void About();
    /// A command of the Transform menu by its code (GR RC RE LF LR UU): the result
    /// is written beside the grammar and opened.
    void Transform(const QString& code);
    /// The Rename symbols dialog.
    void RenameSymbols();

    /// The recently opened grammar files, newest first.
    QStringList RecentFiles() const { return m_recent; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    /// Grammar files dropped on the editor, the output box or the grid open as
    /// they do on the window, instead of being typed into the editor.
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Quiet runs (the overview) do not build listings for the output box.
    bool WantsOutput() const override { return !m_quietRuns; }

private:
    class WindowHost;
    void BuildMenus();
    void BuildViewSelector(QWidget* bar);
    void OnGrammarEdited();
    void ShowKeptResults();
    void ShowParseErrorPlace();
    void RememberRecent(const QString& path);
    void RefreshRecentMenu();
    void WriteSettingsAtClose();
    /// While a run is in progress every command but Stop is disabled, and the
    /// grammar box is read-only, so that a click is neither run in the middle
    /// of the run nor queued to run after it.
    void HoldCommands();
    void ReleaseCommands();
    void BuildReadingAids(class QSplitter* output);
    /// Resets the grammar and results for a new, empty grammar (no question asked).
    void StartNewGrammar();
    /// The verdict line and the status labels of the selected view: its kept
    /// status texts when it has been analysed, the empty labels otherwise.
    void ShowRunState();
    void ClearStatusLabels();
    void ShowCellDetails(const QModelIndex& index);
    /// Records the editor's text as the one its file holds.
    void MarkSaved();
    void SetModified(bool modified);

    std::unique_ptr<WindowHost> m_host;
    std::unique_ptr<Workspace> m_ws;
    PINI m_ini;
    int m_view = 0;
    bool m_modified = false;
    bool m_loading = false;  ///< the editor is being filled by the program, not edited
    QString m_savedText;     ///< the editor's text when the grammar was last opened, saved or made new
    bool m_stopAsked = false;  ///< Stop was chosen during the current run (ends the overview's runs)
    bool m_quietRuns = false;
    QStringList m_recent;
    QMenu* m_recentMenu = nullptr;
    bool m_showing = false;                 ///< Analyse is showing its results: the commands stay held
    std::vector<QPointer<QAction>> m_held;  ///< the commands HoldCommands disabled
};
