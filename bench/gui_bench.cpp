/// \file
/// trelk-gui-bench: the real main window, offscreen, on corpus grammars. For
/// each view it times Analyse: the moment within it at which the core was done
/// (the analyser's last elapsed-time report), the first paint of the output box
/// with the result, the end (the event loop idle again), the longest the
/// window went without a turn of its event loop while the run was in progress
/// (how long Stop could wait), and a switch back to the view once every view has
/// been analysed. The same Analyse without a window (what trelk-cli does) is
/// timed beside it.
///
///   trelk-gui-bench [--views 7,8] [--no-cli] [GRAMMAR ...]
///
/// GRAMMAR is a corpus name ("postgres", "scaling/stmts_n1100"); each is copied
/// to a scratch folder first, as Analyse saves its grammar and companion.
#include "session/AnalysisRun.h"
#include "storage/GrammarFile.h"
#include "ui/ListingView.h"
#include "ui/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace {

QString CorpusDir()
{
    const QByteArray env = qgetenv("TRELK_CORPUS");
    return env.isEmpty() ? QDir::cleanPath(QStringLiteral(TRELK_SOURCE_DIR "/../shared/corpus"))
                         : QString::fromLocal8Bit(env);
}

/// Messages go to stderr; the moment of the last elapsed-time report is kept.
class BenchHost final : public Host {
public:
    void critical(const QString& text) override { std::fprintf(stderr, "critical: %s\n", qPrintable(text)); }
    void information(const QString& text) override { std::fprintf(stderr, "information: %s\n", qPrintable(text)); }
    bool okCancel(const QString& text) override
    {
        std::fprintf(stderr, "question: %s\n", qPrintable(text));
        return true;
    }
    void yield() override {}
    void status(StatusField field, const QString&) override
    {
        if (field == StatusField::Elapsed)
            lastElapsed = clock.nsecsElapsed();
    }
    QElapsedTimer clock;
    qint64 lastElapsed = -1;
};

/// What trelk-cli's view command hands to the analysis run.
class BatchFrontend final : public AnalysisFrontend {
public:
    explicit BatchFrontend(QString text)
        : m_text(std::move(text))
    {
    }
    QString GrammarText() override { return m_text; }
    void SetText2(const QString& text) override { shown = text; }
    QString shown;

private:
    QString m_text;
};

double Ms(qint64 ns)
{
    return static_cast<double>(ns) / 1e6;
}

/// Runs the event loop until everything posted so far (paints included) is done.
void Idle()
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();
}

long PeakRssMiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

struct Row {
    double cli = -1, core = -1, painted = -1, idle = -1, gap = -1, back = -1;
};

/// Watches the window while Analyse runs: the first paint of a filled output
/// box, and the longest stretch without a turn of the event loop during the run.
class Watch final : public QObject {
public:
    Watch(frmMain& window, const QElapsedTimer& clock)
        : m_window(window)
        , m_clock(clock)
    {
        window.Text2->viewport()->installEventFilter(this);
        QObject::connect(&m_ticks, &QTimer::timeout, [this] { Tick(); });
        m_ticks.start(2);
    }
    void Arm()
    {
        painted = -1;
        gap = 0;
        m_last = 0;
    }
    qint64 painted = -1;
    qint64 gap = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && painted < 0 && !m_window.Text2->text().isEmpty())
            painted = m_clock.nsecsElapsed();
        return false;
    }

private:
    void Tick()
    {
        if (!m_window.Processing())
            return;
        const qint64 now = m_clock.nsecsElapsed();
        gap = std::max(gap, now - m_last);
        m_last = now;
    }
    frmMain& m_window;
    const QElapsedTimer& m_clock;
    QTimer m_ticks;
    qint64 m_last = 0;
};

} // namespace

int main(int argc, char** argv)
{
    // The offscreen platform's own screen (800 x 800) is below the window's start-up size.
    const QString screen = QDir::tempPath() + QStringLiteral("/trelk-gui-bench-screen.json");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        QFile file(screen);
        if (file.open(QIODevice::WriteOnly))
            file.write("{\"screens\":[{\"name\":\"s0\",\"x\":0,\"y\":0,\"width\":1280,\"height\":1024,"
                       "\"logicalDpi\":96,\"logicalBaseDpi\":96,\"dpr\":1.0}]}\n");
        file.close();
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.toLocal8Bit());
    }
    QApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    std::vector<int> views;
    bool cli = true;
    QStringList names;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--views") && i + 1 < args.size()) {
            for (const QString& v : args[++i].split(QLatin1Char(',')))
                views.push_back(v.toInt());
        } else if (args[i] == QStringLiteral("--no-cli")) {
            cli = false;
        } else {
            names << args[i];
        }
    }
    if (views.empty())
        for (int v = 0; v < View::Count; ++v)
            views.push_back(v);
    if (names.isEmpty())
        names = {QStringLiteral("postgres"), QStringLiteral("mysql"), QStringLiteral("scaling/exprprec_L650"),
                 QStringLiteral("scaling/stmts_n1100")};

    // Times in ms from the start of Analyse. "cli": Analyse without a window;
    // "core": the window's analyser done (its last elapsed-time report);
    // "shown": the output box first painted with the result; "idle": the event
    // loop idle again (after the save of grammar and companion); "gap": the
    // longest the run went without a turn of the event loop; "back": selecting
    // the analysed view again, after another view, until idle.
    std::printf("%-22s %-3s %8s %8s %8s %8s %8s %8s\n", "grammar", "v", "cli", "core", "shown", "idle", "gap",
                "back");
    for (const QString& name : names) {
        QTemporaryDir scratch;
        const QString source = CorpusDir() + QLatin1Char('/') + name + QStringLiteral(".tkg");
        const QString copy = scratch.path() + QStringLiteral("/g.tkg");
        if (!QFile::copy(source, copy)) {
            std::fprintf(stderr, "cannot copy %s\n", qPrintable(source));
            return 3;
        }
        std::vector<Row> rows(View::Count);
        {
            BenchHost host;
            frmMain window(&host, QString());
            Watch watch(window, host.clock);
            window.show();
            Idle();
            if (!window.TKGOpen(copy))
                return 3;
            Idle();
            for (int v : views) {
                window.SelectView(v);
                Idle();
                host.lastElapsed = -1;
                host.clock.start();
                watch.Arm();
                window.Analyse();
                Idle();
                rows[v].idle = Ms(host.clock.nsecsElapsed());
                rows[v].painted = Ms(watch.painted);
                rows[v].gap = Ms(watch.gap);
                if (ViewOf(v).IsAnalyser() && host.lastElapsed >= 0)
                    rows[v].core = Ms(host.lastElapsed);
            }
            for (int v : views) {
                window.SelectView(v == View::Grammar ? View::Symbols : View::Grammar);
                Idle();
                QElapsedTimer t;
                t.start();
                window.SelectView(v);
                Idle();
                rows[v].back = Ms(t.nsecsElapsed());
            }
        }
        const long windowRss = PeakRssMiB();
        if (cli) {
            QString text, error;
            ReadGrammarFile(source, text, error);
            Workspace ws;
            BatchFrontend frontend(text);
            for (int v : views) {
                QElapsedTimer t;
                t.start();
                Analyse(ws, frontend, v);
                rows[v].cli = Ms(t.nsecsElapsed());
            }
        }
        auto cell = [](double ms) { return ms < 0 ? QStringLiteral("-") : QString::number(ms, 'f', 0); };
        for (int v : views) {
            const Row& r = rows[v];
            std::printf("%-22s %-3s %8s %8s %8s %8s %8s %8s\n", qPrintable(name), ViewOf(v).glyph,
                        qPrintable(cell(r.cli)), qPrintable(cell(r.core)), qPrintable(cell(r.painted)),
                        qPrintable(cell(r.idle)), qPrintable(cell(r.gap)), qPrintable(cell(r.back)));
        }
        std::printf("%-22s peak RSS after the window: %ld MiB\n", qPrintable(name), windowRss);
        std::fflush(stdout);
    }
    return 0;
}
