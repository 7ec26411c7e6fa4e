/// \file
/// trelk-bench: times the core's stages on corpus grammars (median of several
/// runs): reading the file, parsing it (SetText, which includes FIRST and the
/// left-recursion test), and after the parse all the grammar sets together
/// (FOLLOWB, FOLLOWL, FOLLOWR and every grammar report built once).
#include "grammar/Grammar.h"
#include "storage/GrammarFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

/// Median wall time of fn in milliseconds over runs calls.
double MedianMs(int runs, const std::function<void()>& fn)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        fn();
        times.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

QString CorpusDir()
{
    const QByteArray env = qgetenv("TRELK_CORPUS");
    return env.isEmpty() ? QDir::cleanPath(QStringLiteral(TRELK_SOURCE_DIR "/../shared/corpus"))
                         : QString::fromLocal8Bit(env);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList names = app.arguments().mid(1);
    if (names.isEmpty())
        names = {QStringLiteral("calc"), QStringLiteral("java"), QStringLiteral("php"), QStringLiteral("postgres"),
                 QStringLiteral("mysql"), QStringLiteral("scaling/exprprec_L650"), QStringLiteral("scaling/stmts_n1100"),
                 QStringLiteral("scaling/lr1notlalr_n650")};
    const int runs = 7;
    // "follow ms" times the three follow sets alone, "sets ms" the same plus
    // every grammar report built once; "/parse" relates the latter to the parse.
    std::printf("%-26s %7s %7s %9s %9s %7s %9s %9s %7s\n", "grammar", "rules", "KiB", "read ms", "parse ms", "ratio",
                "follow ms", "sets ms", "/parse");
    for (const QString& name : names) {
        const QString path = CorpusDir() + QLatin1Char('/') + name + QStringLiteral(".tkg");
        QString text, error;
        if (!ReadGrammarFile(path, text, error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return 3;
        }
        const double readMs = MedianMs(runs, [&] {
            QString t, e;
            ReadGrammarFile(path, t, e);
        });
        Grammar g;
        const double parseMs = MedianMs(runs, [&] {
            if (!g.SetText(text))
                std::fprintf(stderr, "%s does not parse\n", qPrintable(name));
        });
        // The sets are computed once per parse, so every run parses afresh
        // (untimed) and times the sets alone.
        std::vector<double> followTimes, setTimes;
        qsizetype reportChars = 0;
        for (int i = 0; i < runs; ++i) {
            g.SetText(text);
            QElapsedTimer t;
            t.start();
            g.FindFollowB();
            g.FindFollowL();
            g.FindFollowR();
            followTimes.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
            reportChars = g.CommentedRules().size() + g.CommentedSymbolsDisplay().size() + g.CommentedFirst().size()
                        + g.CommentedBasis().size() + g.CommentedFollowL().size() + g.CommentedFollowR().size()
                        + g.CommentedFollowSets().size();
            setTimes.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
        }
        std::sort(followTimes.begin(), followTimes.end());
        std::sort(setTimes.begin(), setTimes.end());
        const double followMs = followTimes[followTimes.size() / 2];
        const double setsMs = setTimes[setTimes.size() / 2];
        if (!g.GetFlag(GrammarFlag::FollowRDone) || reportChars == 0)
            std::fprintf(stderr, "%s: the sets were not computed\n", qPrintable(name));
        std::printf("%-26s %7d %7lld %9.2f %9.2f %7.1f %9.2f %9.2f %7.1f\n", qPrintable(name), g.ruleCount,
                    static_cast<long long>(text.size() / 1024), readMs, parseMs, parseMs / readMs, followMs, setsMs,
                    setsMs / parseMs);
    }
    return 0;
}
