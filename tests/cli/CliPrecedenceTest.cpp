// trelk-cli on the precedence views: the relation codes and the cell width
// from --ini, the summary lines, and the refusals.
#include "support/TestPaths.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

QString WriteFile(const QString& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = ScratchDir(QStringLiteral("cli-prec-") + folder) + QLatin1Char('/') + name;
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
    return path;
}

const QByteArray kExpr = "<E>\r\n<E>=<E>[+]<T>\r\n<E>=<T>\r\n<T>=<T>[*]<F>\r\n<T>=<F>\r\n<F>=[(]<E>[)]\r\n<F>=[a]\r\n";

/// The summary line of a method without its elapsed time.
QString SummaryLine(const QString& out, const QString& method)
{
    for (const QString& line : out.split(QLatin1Char('\n')))
        if (line.startsWith(method))
            return line.left(line.lastIndexOf(QLatin1Char(' '))).trimmed();
    return QString();
}

TEST(CliPrecedence, IniCodesAndCellWidthReachTheTextsAndSummaryGivesTheVerdicts)
{
    const QString grammar = WriteFile(QStringLiteral("expr"), QStringLiteral("expr.tkg"), kExpr);
    const QByteArray iniBytes = "[Main]\r\nPSignLT=5\r\nPSignGT=7\r\nCellWidth=2\r\n";
    const QString ini = WriteFile(QStringLiteral("ini"), QStringLiteral("TRELK.ini"), iniBytes);
    CliRun r = Cli({QStringLiteral("--ini"), ini, QStringLiteral("view"), grammar, QStringLiteral("opr")});
    EXPECT_TRUE(r.out.startsWith(QStringLiteral("SYNTA[0,1]=5\nSYNTA[0,2]=5\n"))) << r.err.toStdString();
    EXPECT_TRUE(r.out.endsWith(QStringLiteral("\nSYNTA[5,4]=7\n")));
    // "CellWidth" 2 is read as 3 and raised to 4 by the precedence table.
    r = Cli({QStringLiteral("--ini"), ini, QStringLiteral("table"), grammar, QStringLiteral("11")});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.out.contains(QStringLiteral("#define LT 5  // <.\n#define EQ -1  // .=\n#define GT 7   // .>\n")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("/*        EOT  [+]  [*]  [(]  [)]  [a] */\n/*EOT */{   0,  LT,  LT,")));
    QFile f(ini);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), iniBytes);  // never written

    r = Cli({QStringLiteral("summary"), grammar, QStringLiteral("--require"), QStringLiteral("opr")});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(SummaryLine(r.out, QStringLiteral("simple precedence")),
              QStringLiteral("simple precedence   not simple precedence       table 9x9       2 conflicts"));
    EXPECT_EQ(SummaryLine(r.out, QStringLiteral("operator precedence")),
              QStringLiteral("operator precedence operator precedence         table 6x6       0 conflicts"));
    EXPECT_EQ(Cli({QStringLiteral("summary"), grammar, QStringLiteral("--require"), QStringLiteral("spr")}).status, 4);

    // Refused before a table: the reason stands where the size would.
    const QString empty = WriteFile(QStringLiteral("empty"), QStringLiteral("empty.tkg"), "<S>\r\n<S>=[a]<A>\r\n<A>=\r\n");
    r = Cli({QStringLiteral("summary"), empty});
    EXPECT_EQ(SummaryLine(r.out, QStringLiteral("operator precedence")),
              QStringLiteral("operator precedence not operator precedence     empty rules"));
    r = Cli({QStringLiteral("view"), empty, QStringLiteral("spr")});
    EXPECT_EQ(r.out, QStringLiteral("This Grammar Is Not Simple Precedence One.\nEmpty Rules Are Not Allowed.\n"));
    EXPECT_EQ(Cli({QStringLiteral("table"), empty, QStringLiteral("opr")}).status, 1);
}

} // namespace
