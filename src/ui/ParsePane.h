/// \file
/// ParsePane: one sentence parsed with the table of the selected analyser view,
/// watched step by step — the sentence typed (with completion of the terminal
/// names) or filled with an example, the trace of the run as a table, the
/// current step chosen in it, the parse tree as it stands after that step, the
/// rule of the step marked in the grammar box, and the tree written as text or
/// as an SVG picture.
#pragma once

#include "session/ParseSimulator.h"

#include <QStringList>
#include <QWidget>
#include <optional>
#include <random>
#include <vector>

class DerivationView;
class QComboBox;
class QCompleter;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QStringListModel;
class QTableView;
class TraceModel;
class frmMain;

class ParsePane final : public QWidget {
    Q_OBJECT
public:
    explicit ParsePane(frmMain& window, QWidget* parent = nullptr);
    ~ParsePane() override;

    /// Follows the selected view. A run stays while the view and the grammar's
    /// rules stay; otherwise it goes, and the sentence typed stays.
    void ShowView(int view);
    /// Parses the typed sentence with the view's table, as a run of the window
    /// that Stop ends; the run starts at its first step. False, with the reason
    /// in the verdict line, when nothing could be run.
    bool Parse();

    /// Moves to step (0-based, clamped to the run): its row chosen, the tree as
    /// it stands after it, its rule's line marked.
    void GoToStep(int step);
    void First() { GoToStep(0); }
    void StepBack() { GoToStep(m_step - 1); }
    void StepForward() { GoToStep(m_step + 1); }
    void RunToEnd();
    /// To the step that failed; nothing when the run was not rejected.
    void RunToError();

    /// Fills the sentence with an example of the grammar.
    void FillShortest();
    void FillRandom();
    /// rule: 1 .. the number of rules; false when no sentence uses it.
    bool FillForRule(int rule);

    /// The trees shown, one per line as TreeText writes them.
    QString TreeText() const;
    /// Write the trees shown; false (and a message) when they could not be written.
    bool ExportTreeText(const QString& path);
    bool ExportTreeSvg(const QString& path);

    const std::optional<ParseRun>& Run() const { return m_run; }
    int CurrentStep() const { return m_step; }
    int View() const { return m_view; }

    QLabel* methodLabel = nullptr;
    QLineEdit* input = nullptr;
    QCompleter* completer = nullptr;
    QPushButton* parseButton = nullptr;
    QPushButton* shortestButton = nullptr;
    QPushButton* randomButton = nullptr;
    QSpinBox* randomLength = nullptr;
    QComboBox* ruleExamples = nullptr;  ///< item 0 the heading, item r the example of rule r
    QPushButton* firstButton = nullptr;
    QPushButton* backButton = nullptr;
    QPushButton* forwardButton = nullptr;
    QPushButton* endButton = nullptr;
    QPushButton* errorButton = nullptr;
    QLabel* stepLabel = nullptr;
    QLabel* verdictLabel = nullptr;
    QLabel* expectedLabel = nullptr;
    QTableView* trace = nullptr;
    DerivationView* tree = nullptr;
    QPushButton* textButton = nullptr;
    QPushButton* svgButton = nullptr;

Q_SIGNALS:
    /// LR views: the state on top of the stack when the current step began.
    void stateShown(int state);

private:
    void ClearRun();
    void UpdateButtons();
    void OfferCompletion();
    void TakeCompletion(const QString& name);
    void SetSentence(const std::vector<int>& tokens);
    void ExportAsked(bool svg);
    QString ExportBase() const;

    frmMain& m_window;
    TraceModel* m_model;
    QStringListModel* m_names;
    int m_view = -1;
    std::vector<std::vector<int>> m_rules;  ///< the rules of the grammar the run was made for
    QStringList m_symbols;                  ///< and its symbols' names
    std::optional<std::vector<std::vector<int>>> m_perRule;  ///< SentencePerRule, made when first asked
    std::optional<ParseRun> m_run;
    int m_step = -1;
    std::mt19937 m_random;
};
