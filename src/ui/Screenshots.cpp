/// \file
/// Pictures of the workbench for the manual.
#include "ui/Screenshots.h"

#include "ui/ParsePane.h"
#include "ui/ConflictsPane.h"
#include "ui/AutomatonPane.h"
#include "ui/TableGrid.h"
#include "ui/frmAbout.h"
#include "ui/frmMain.h"
#include "ui/frmRename.h"
#include "ui/frmSetts.h"
#include "ui/frmStat.h"
#include "session/OpenSave.h"

#include <QApplication>
#include <QDockWidget>
#include <QGraphicsView>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QSplitter>
#include <QThread>

namespace {

bool Save(QWidget& widget, const QString& path)
{
    widget.show();
    widget.raise();
    widget.activateWindow();
    for (int i = 0; i < 10; ++i) {
        QApplication::processEvents();
        QThread::msleep(20);
    }
    return widget.grab().save(path);
}

/// Chooses the first reduce of an LR table, so that the cell pane shows a state and a rule.
void SelectFirstReduce(frmMain& window)
{
    TableModel& model = window.Picture1->Model();
    for (int r = 0; r < model.rowCount(); ++r)
        for (int c = 0; c < model.columnCount(); ++c)
            if (model.CellText(r, c).startsWith(QLatin1Char('r'))) {
                window.Picture1->setCurrentIndex(model.index(r, c));
                return;
            }
}

/// The parse pane on a sentence of the window's grammar (the calculator of the
/// manual): mid-run with the trace and the forest on the stack, then the
/// whole tree. Nothing is saved for a grammar whose LALR(1) table rejects its
/// own example.
bool SaveParseShots(frmMain& window, const QString& folder)
{
    window.SelectView(View::LALR);
    window.Analyse();
    ParsePane& pane = *window.parsePane;
    const Grammar& g = window.workspace().grammar;
    std::vector<int> tokens;
    QString error;
    const QString calc = QStringLiteral("[NUM] [*] [(] [NUM] [+] [NUM] [)] [-] [NUM] [\\n]");
    pane.input->setText(ReadSentence(g, calc, tokens, error) ? calc : SentenceText(g, ShortestSentence(g)));
    if (!pane.Parse() || pane.Run()->verdict != ParseVerdict::Accepted)
        return true;
    const QSize size = window.size();
    window.resize(1240, 980);
    window.parseDock->show();
    window.resizeDocks({window.parseDock}, {560}, Qt::Vertical);
    // Mid-run: the step that reduces the parenthesised sum's first operand.
    const int steps = static_cast<int>(pane.Run()->steps.size());
    int middle = steps / 2;
    for (int s = 0; s < steps; ++s)
        if (pane.Run()->steps[static_cast<std::size_t>(s)].action.contains(QStringLiteral("[+]"))) {
            middle = s;
            break;
        }
    pane.GoToStep(middle);
    bool ok = Save(window, folder + QStringLiteral("/simulator.png"));
    pane.RunToEnd();
    // The whole tree in sight: its side of the pane widened.
    if (auto* split = pane.findChild<QSplitter*>())
        split->setSizes({560, 680});
    ok &= Save(window, folder + QStringLiteral("/parse-tree.png"));
    window.parseDock->hide();
    window.resize(size);
    return ok;
}

/// The Conflicts pane on an expression grammar with an ambiguous sum and a
/// dangling else: the first conflict chosen, its two trees drawn.
bool SaveConflictShot(frmMain& window, const QString& folder)
{
    const QString grammar = window.workspace().grammar.Path();
    const QString path = QDir::tempPath() + QStringLiteral("/trelk-screenshot-conflicts.tkg");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write("<S>\r\n<S>=[if]<E>[then]<S>\r\n<S>=[if]<E>[then]<S>[else]<S>\r\n<S>=[id][=]<E>\r\n"
               "<E>=<E>[+]<E>\r\n<E>=[id]\r\n");
    file.close();
    bool ok = window.TKGOpen(path);
    if (ok) {
        window.SelectView(8);
        window.Analyse();
        const QSize size = window.size();
        window.resize(1270, 980);
        window.conflictsDock->show();
        window.conflictsDock->raise();
        window.conflictsPane->list->setCurrentRow(0);
        // Both trees in sight: the drawing gets most of the pane.
        if (auto* split = window.conflictsPane->findChild<QSplitter*>())
            split->setSizes({190, 330, 750});
        ok = Save(window, folder + QStringLiteral("/conflicts.png"));
        window.conflictsDock->hide();
        window.resize(size);
    }
    if (!grammar.isEmpty())
        window.TKGOpen(grammar);
    return ok;
}

} // namespace

int TakeScreenshots(frmMain& window, const QString& folder)
{
    QDir().mkpath(folder);
    bool ok = true;
    const struct {
        int view;
        const char* file;
    } shots[] = {{6, "main-ll.png"}, {8, "main-lalr.png"}, {2, "main-first.png"}};
    for (const auto& shot : shots) {
        window.SelectView(shot.view);
        window.Analyse();
        SelectFirstReduce(window);
        ok &= Save(window, folder + QStringLiteral("/") + QString::fromLatin1(shot.file));
    }
    ok &= SaveParseShots(window, folder);
    ok &= SaveConflictShot(window, folder);
    // The precedence grid on a copy of the example (a run saves its grammar), which has no empty rules.
    const QString grammar = window.workspace().grammar.Path();
    const QString copy = QDir::tempPath() + QStringLiteral("/trelk-screenshot-expr.tkg");
    QFile::remove(copy);
    QFile::copy(QStringLiteral(TRELK_DOCS_DIR "/../examples/expr.tkg"), copy);
    if (window.TKGOpen(copy)) {
        window.SelectView(11);
        window.Analyse();
        ok &= Save(window, folder + QStringLiteral("/main-opr.png"));
        if (!grammar.isEmpty())
            window.TKGOpen(grammar);
    }
    // The LALR(1) automaton of the dangling else, its conflict state chosen.
    const QString dangling = QDir::tempPath() + QStringLiteral("/trelk-screenshot-dangling-else.tkg");
    QFile::remove(dangling);
    QFile::copy(QStringLiteral(TRELK_DOCS_DIR "/../examples/dangling-else.tkg"), dangling);
    if (window.TKGOpen(dangling)) {
        window.SelectView(8);
        window.Analyse();
        window.resize(1240, 980);
        window.automatonDock->show();
        window.automatonDock->raise();
        window.resizeDocks({window.automatonDock}, {520}, Qt::Vertical);
        for (int i = 0; i < 10; ++i)
            QApplication::processEvents();
        const std::vector<Conflict> conflicts = ConflictsOf(window.workspace(), 8);
        if (!conflicts.empty()) {
            AutomatonPane& pane = *window.automatonPane;
            pane.ChooseState(conflicts.front().row);
            pane.view->scale(0.8, 0.8);
            pane.view->centerOn(pane.StateRect(conflicts.front().row).center());
        }
        ok &= Save(window, folder + QStringLiteral("/automaton.png"));
        window.automatonDock->hide();
        if (!grammar.isEmpty())
            window.TKGOpen(grammar);
    }
    frmSetts options(window.workspace().settings, &window);
    ok &= Save(options, folder + QStringLiteral("/options.png"));
    frmStat stat(window.workspace().grammar, &window);
    stat.List1->setCurrentRow(0);
    ok &= Save(stat, folder + QStringLiteral("/statistics.png"));
    frmRename rename(window.workspace().grammar.Name(), &window);
    ok &= Save(rename, folder + QStringLiteral("/rename.png"));
    frmAbout about(&window);
    ok &= Save(about, folder + QStringLiteral("/about.png"));
    return ok ? 0 : 1;
}
