/// \file
/// trelk-bench: times the core's stages on corpus grammars (median of several
/// runs): reading the file, parsing it (SetText, which includes FIRST and the
/// left-recursion test).
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
    std::printf("%-26s %7s %7s %9s %9s %7s\n", "grammar", "rules", "KiB", "read ms", "parse ms", "ratio");
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
        std::printf("%-26s %7d %7lld %9.2f %9.2f %7.1f\n", qPrintable(name), g.ruleCount,
                    static_cast<long long>(text.size() / 1024), readMs, parseMs, parseMs / readMs);
    }
    return 0;
}
