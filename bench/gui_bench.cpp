/// \file
/// trelk-gui-bench: the real main window, offscreen, on corpus grammars. For
/// each view it times Analyse until the output box and the grid are shown and
/// the event loop is idle again, the moment within that run at which the core
/// was done (the analyser's last elapsed-time report), and a switch back to the
/// view once every view has been analysed. The same Analyse without a window
/// (what trelk-cli does) is timed beside it.
///
///   trelk-gui-bench [--views 7,8] [--no-cli] [GRAMMAR ...]
///
/// GRAMMAR is a corpus name ("postgres", "scaling/stmts_n1100"); each is copied
/// to a scratch folder first, as Analyse saves its grammar and companion.
#include "session/AnalysisRun.h"
#include "storage/GrammarFile.h"
#include "ui/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
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
    double cli = -1, core = -1, shown = -1, back = -1;
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

    // "cli": Analyse without a window; "core": the window's analyser done (its
    // last elapsed-time report), from the start of Analyse; "shown": Analyse
    // until the text and grid are shown and the event loop is idle; "after":
    // shown - core, what the window adds after the core; "back": selecting the
    // analysed view again after another view until idle.
    std::printf("%-22s %-3s %9s %9s %9s %9s %9s\n", "grammar", "v", "cli ms", "core ms", "shown ms", "after ms",
                "back ms");
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
                window.Analyse();
                Idle();
                rows[v].shown = Ms(host.clock.nsecsElapsed());
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
            std::printf("%-22s %-3s %9s %9s %9s %9s %9s\n", qPrintable(name), ViewOf(v).glyph, qPrintable(cell(r.cli)),
                        qPrintable(cell(r.core)), qPrintable(cell(r.shown)),
                        qPrintable(cell(r.core < 0 ? -1 : r.shown - r.core)), qPrintable(cell(r.back)));
        }
        std::printf("%-22s peak RSS after the window: %ld MiB\n", qPrintable(name), windowRss);
        std::fflush(stdout);
    }
    return 0;
}
