// The transformation commands: the frame, the naming of new non-terminals, the
// corner cases of unused-symbol removal and grouping, and the language kept by
// every command on the corpus and random grammars. The result files of textbook
// examples, the refusals and the file names are golden cases (transform-*).
#include "GrammarOracle.h"
#include "session/Workspace.h"
#include "storage/GrammarFile.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "transform/Transform.h"
#include "session/TransformCommand.h"
#include "session/OpenSave.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

/// The result parses, generates the same sentences up to maxLength, and has the
/// property its command promises.
::testing::AssertionResult Preserves(const QString& text, const QString& code, bool letters, int maxLength)
{
    // The operation runs on a freshly parsed grammar, as the frame runs it
    // between its preconditions and the result.
    RecordingHost quiet, host;
    Grammar before(&quiet), g(&host);
    if (!before.SetText(text) || !g.SetText(text))
        return ::testing::AssertionFailure() << "input does not parse";
    const std::set<QString> expected = BoundedSentences(before, maxLength);
    const QString result = ApplyTransformation(g, code, letters);
    const auto failure = [&]() {
        return ::testing::AssertionFailure() << code.toStdString() << (letters ? " (letters)" : "") << " of\n"
                                             << text.toStdString() << "\ngave\n"
                                             << result.toStdString() << "\n";
    };
    if (result.isEmpty()) {
        // Only the refusal of a grammar whose goal derives nothing at all.
        const bool refused = code != TransformCode::RemoveUnusedSymbols && code != TransformCode::LeftFactoring
            && expected.empty()
            && host.informations
                == QStringList{QStringLiteral("Not transformed: the goal <S> derives no terminal string.")};
        return refused ? ::testing::AssertionSuccess() : failure() << "no lines";
    }
    if (!host.Messages().isEmpty())
        return failure() << "messages: " << host.Messages().join(QLatin1Char('|')).toStdString();
    Grammar after(&host);
    if (!after.SetText(result)) {
        // Unused-symbol removal drops the rules of a barren goal, as it must.
        if (code == TransformCode::RemoveUnusedSymbols && expected.empty())
            return ::testing::AssertionSuccess();
        return failure() << "does not parse: " << host.criticals.join(QLatin1Char('|')).toStdString();
    }
    if (BoundedSentences(after, maxLength) != expected)
        return failure() << "other sentences";
    if (code == TransformCode::LeftRecursion && (HasLeftRecursion(after) || after.GetFlag(GrammarFlag::LeftRecursive)))
        return failure() << "still left-recursive";
    if (code == TransformCode::RemoveEmptyRules && HasEmptyRulesBeyondGoal(after))
        return failure() << "empty rules left";
    if (code == TransformCode::LeftFactoring && HasCommonFirstSymbols(after))
        return failure() << "common first symbols left";
    if (code == TransformCode::RemoveCycles && HasCycle(after))
        return failure() << "cycles left";
    if (code == TransformCode::GroupRules && !RulesGrouped(after))
        return failure() << "not grouped";
    return ::testing::AssertionSuccess();
}

// ---- The frame -------------------------------------------------------------------

TEST(TransformFrame, ResultFileNames)
{
    // A dot of a folder is not the file's; a file name without one gets the suffix.
    const char* const names[][3] = {{"/g/expr.tkg", "LR", "/g/expr-LR.tkg"},
                                    {"/g/expr-LR.tkg", "LF", "/g/expr-LR-LF.tkg"},
                                    {"C:\\g\\calc.txt", "UU", "C:\\g\\calc-UU.tkg"},
                                    {"/g.d/expr", "RE", "/g.d/expr-RE.tkg"}};
    for (const auto& [path, code, result] : names)
        EXPECT_EQ(TransformedPath(QString::fromUtf8(path), QString::fromUtf8(code)), QString::fromUtf8(result));
}

TEST(TransformFrame, PreconditionsStopQuietlyAndAStoppedRunWritesNothing)
{
    RecordingHost host;
    Workspace ws(&host);
    const QString dir = ScratchDir(QStringLiteral("transform-frame"));
    const QString text = Lines({"<S>", "<S>=[a]", "<S>=<B>", "<B>=<B>[c]"}) + QStringLiteral("\r\n");
    QString newText = QStringLiteral("old");
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("LR"), text, newText), QString());
    EXPECT_EQ(host.informations, QStringList{QStringLiteral("Save Grammar first.")});
    EXPECT_EQ(newText, QString());

    // Grouping one non-terminal's rules does nothing at all, not even the path check.
    host.informations.clear();
    ASSERT_TRUE(ws.grammar.SetText(Lines({"<E>", "<E>=[a]", "<E>=<E>[a]"})));
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("GR"), text, newText), QString());
    EXPECT_EQ(host.Messages(), QStringList());

    // A text that does not parse, or an unknown code: nothing written.
    Workspace bad(&host);
    bad.grammar.SetPath(dir + QStringLiteral("/bad.tkg"));
    EXPECT_EQ(RunTransformation(bad, QStringLiteral("UU"), Lines({"<E>", "<E>=<F>"}), newText), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Non-terminal F is not defined.")});
    EXPECT_EQ(RunTransformation(bad, QStringLiteral("XX"), Lines({"<E>", "<E>=[a]"}), newText), QString());
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList());
    ws.grammar.SetPath(dir + QStringLiteral("/g.tkg"));

    // Stopped: no result, and no file.
    ASSERT_TRUE(ws.grammar.SetText(text));
    host.stopAfter = host.yields + 1;
    host.stop = [&ws] { ws.Stop(); };
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("UU"), text, newText), QString());
    EXPECT_EQ(newText, QString());
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList());
}

// ---- New non-terminals (the common namings are golden cases: transform-*-name*, -letters*) -----

TEST(TransformNaming, PairsOfLettersRunOutIntoApostrophes)
{
    QStringList lines{QStringLiteral("<Q>")};
    for (char16_t a = u'A'; a <= u'Z'; ++a)
        for (char16_t b = u'A'; b <= u'Z'; ++b)
            lines << QStringLiteral("<Q>=<%1%2>").arg(QChar(a), QChar(b)) << QStringLiteral("<%1%2>=[x]").arg(QChar(a), QChar(b));
    for (char16_t a = u'A'; a <= u'Z'; ++a)
        lines << QStringLiteral("<Q>=<%1>").arg(QChar(a)) << QStringLiteral("<%1>=[x]").arg(QChar(a));
    Grammar g;
    ASSERT_TRUE(g.SetText(lines.join(QStringLiteral("\r\n"))));
    g.MakeACopy();
    EXPECT_EQ(NewNonterminal(g, g.goal, true), g.lastCode + 1);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("Q'"));
}

// ---- Unused symbols and grouping: exact results -----------------------------------------

TEST(RemoveUnusedSymbols, IdenticalLinesOnceAndStop)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(Lines({"<S>", "<S>=[a]", "<S>=[b]"})));
    g.symbolNames[static_cast<std::size_t>(2 + 2)] = QStringLiteral("a");  // as a rename can leave it
    g.MakeACopy();
    g.SetInProcess(true);
    const QStringList sa{QStringLiteral("<S>"), QStringLiteral("<S>=[a]")};
    EXPECT_EQ(RemoveUnusedSymbols(g), sa);

    // A = A alone (the parser never keeps it, a copy may hold it) does not make A productive.
    ASSERT_TRUE(g.SetText(Lines({"<S>", "<S>=[a]", "<S>=<A>", "<A>=[b]"})));
    g.MakeACopy();
    g.copyRules[3] = {g.lastCode, g.lastCode};
    EXPECT_EQ(RemoveUnusedSymbols(g), sa);

    g.MakeACopy();
    host.stopAfter = host.yields + 1;
    host.stop = [&g] { g.SetInProcess(false); };
    EXPECT_EQ(RemoveUnusedSymbols(g), QStringList());
}

TEST(GroupRules, TheCodesFollowTheGroupedText)
{
    // The grouped text is a golden case (transform-GR-order); the open grammar is parsed again from it.
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<T>", "<T>=[a]", "<E>=<E>[+]<T>"})));
    g.MakeACopy();
    GroupRules(g);
    EXPECT_TRUE(g.Parsed());
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("+"));
}

// ---- Equivalence and target properties ---------------------------------------------------

TEST(Transformations, PreserveTheLanguageOfRandomGrammars)
{
    std::mt19937 rng(20240611);
    for (int k = 0; k < 400; ++k) {
        const QString text = RandomGrammarText(rng);
        for (const QString& code : TransformCode::All())
            EXPECT_TRUE(Preserves(text, code, k % 2 == 1, 6)) << "grammar " << k;
    }
}

TEST(Transformations, PreserveTheLanguageOfCorpusGrammars)
{
    int checked = 0;
    for (const QString& path : CorpusGrammars()) {
        const QString text = ReadGrammarText(path);
        Grammar g;
        if (!g.SetText(text) || g.ruleCount > 60)
            continue;  // the bounded enumeration is for small grammars
        ++checked;
        for (const QString& code : TransformCode::All())
            EXPECT_TRUE(Preserves(text, code, false, 5)) << path.toStdString();
    }
    EXPECT_GE(checked, 5);
}

} // namespace
