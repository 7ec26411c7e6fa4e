/// \file
/// Pictures of the workbench for the manual.
#include "ui/Screenshots.h"

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
#include <QFile>
#include <QListWidget>
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
