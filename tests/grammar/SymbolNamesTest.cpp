// Identifiers for generated C: mnemonics, replacements, transliteration, and
// the enumeration body of CommentedSymbolsDisplay.
#include "grammar/Grammar.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace {

/// The identifier of every symbol of a grammar, terminals then non-terminals.
QStringList Names(const QString& text)
{
    Grammar g;
    EXPECT_TRUE(g.SetText(text)) << text.toStdString();
    QStringList out;
    for (int c = 1; c <= g.lastCode; ++c)
        out << g.GetSymbolName(c, QStringLiteral("TOK_EOT"));
    return out;
}

QStringList L(std::initializer_list<const char*> items)
{
    QStringList out;
    for (const char* i : items)
        out << QString::fromUtf8(i);
    return out;
}

TEST(SymbolNames, MnemonicsOnTheWholeName)
{
    // "=" and "==" share EQ, "!=" and "<>" share NE, on purpose.
    EXPECT_EQ(Names(QStringLiteral("<S>\r\n<S>=[+][=][==][!=][<>][\\][\"]['][<=][&&]")),
              L({"TOK_ADD", "TOK_EQ", "TOK_EQ", "TOK_NE", "TOK_NE", "TOK_IDIV", "TOK_QUOTE", "TOK_SINQU", "TOK_LE",
                 "TOK_LAND", "SYM_S"}));
    // A non-terminal gets SYM_ with the same mnemonics.
    EXPECT_EQ(Names(QStringLiteral("<(>\r\n<(>=[a]<$>\r\n<$>=[$]")), L({"TOK_A", "TOK_DOLLAR", "SYM_LP", "SYM_DOLLAR"}));
}

TEST(SymbolNames, ReplacementsAndTransliteration)
{
    // Every Cyrillic letter once; "В" -> "W" and "Ж" -> "V" on purpose.
    EXPECT_EQ(Names(QString::fromUtf8("<выражение>\r\n<выражение>=[if][a.b][a-b][a+b][x$y][<<=][Объект]<Ёжик>\r\n"
                                      "<Ёжик>=[щука][Тыква][Эхо][юла][Цапля][Чай][Шар][вЖ][ьъ1_][гдзмсф]")),
              L({"TOK_IF", "TOK_A_B", "TOK_A_B", "TOK_A_B", "TOK_X$Y", "TOK____", "TOK_OBEKT", "TOK_SCHUKA",
                 "TOK_TYKWA", "TOK_EHO", "TOK_JULA", "TOK_TSAPLJA", "TOK_CHAJ", "TOK_SHAR", "TOK_WV", "TOK_1_", "TOK_GDZMSF",
                 "SYM_WYRAVENIE", "SYM_EVIK"}));
}

TEST(SymbolNames, TheEndMarkerTakesTheCallersText)
{
    Grammar g;
    ASSERT_TRUE(g.SetText(QStringLiteral("<E>\r\n<E>=[a]")));
    EXPECT_EQ(g.GetSymbolName(0, QStringLiteral("TOK_EOT")), QStringLiteral("TOK_EOT"));
    EXPECT_EQ(g.GetSymbolName(0, QStringLiteral("anything")), QStringLiteral("anything"));
}

TEST(SymbolNames, CommentedSymbolsDisplay)
{
    Grammar g;
    EXPECT_EQ(g.CommentedSymbolsDisplay(), NotAnalyzed);
    ASSERT_TRUE(g.SetText(QStringLiteral("<E>\r\n<E>=<E>[+]<T>\r\n<E>=<T>\r\n<T>=[a]")));
    const QString expected = QString::fromUtf8("// 0 EOT\r\n"
                                               "// 1 [+]\r\n"
                                               "// 2 [a]\r\n"
                                               "// 3 <E>\r\n"
                                               "// 4 <T>\r\n"
                                               "    // токены\r\n"
                                               "    TOK_EOT = 0,\r\n"
                                               "    TOK_ADD,\r\n"
                                               "    TOK_A,\r\n"
                                               "    TOK_LAST = TOK_A,\r\n"
                                               "    // нетерминалы\r\n"
                                               "    SYM_E,\r\n"
                                               "    SYM_T,\r\n"
                                               "    SYM_LAST = SYM_T,\r\n"
                                               "    // конец символов грамматики\r\n");
    EXPECT_EQ(g.CommentedSymbolsDisplay(), expected);

    // Without terminals the non-terminals go on from TOK_EOT; wide codes are padded.
    QString text = QStringLiteral("<S>\r\n<S>=<N1>\r\n");
    for (int i = 1; i < 10; ++i)
        text += QStringLiteral("<N%1>=<N%2>\r\n").arg(i).arg(i + 1);
    text += QStringLiteral("<N10>=");
    ASSERT_TRUE(g.SetText(text));
    const QString display = g.CommentedSymbolsDisplay();
    EXPECT_TRUE(display.startsWith(QStringLiteral("//  0 EOT\r\n//  1 <S>\r\n//  2 <N1>\r\n"))) << display.toStdString();
    EXPECT_TRUE(display.contains(QStringLiteral("// 11 <N10>\r\n    // токены\r\n    TOK_EOT = 0,\r\n"
                                                "    TOK_LAST = TOK_EOT,\r\n")))
        << display.toStdString();
    EXPECT_TRUE(display.endsWith(QStringLiteral("    SYM_N10,\r\n    SYM_LAST = SYM_N10,\r\n"
                                                "    // конец символов грамматики\r\n")));
}

} // namespace
