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

/// Runs one operation on a freshly parsed grammar, as the frame does between
/// its preconditions and the result: the text of the grammar for "GR", the
/// lines joined by CR LF for the others.
QString Apply(const QString& text, const QString& code, bool letters, Host& host)
{
    Grammar g(&host);
    EXPECT_TRUE(g.SetText(text)) << text.toStdString();
    QString result = ApplyTransformation(g, code, letters);
    if (code != TransformCode::GroupRules && result.endsWith(QStringLiteral("\r\n")))
        result.chop(2);  // lines joined, as the expected texts are written
    return result;
}

/// The result parses, generates the same sentences up to maxLength, and has the
/// property its command promises.
::testing::AssertionResult Preserves(const QString& text, const QString& code, bool letters, int maxLength)
{
    RecordingHost quiet;
    Grammar before(&quiet);
    if (!before.SetText(text))
        return ::testing::AssertionFailure() << "input does not parse";
    const std::set<QString> expected = BoundedSentences(before, maxLength);

    RecordingHost host;
    const QString result = Apply(text, code, letters, host);
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
    EXPECT_EQ(TransformedPath(QStringLiteral("/g/expr.tkg"), QStringLiteral("LR")), QStringLiteral("/g/expr-LR.tkg"));
    EXPECT_EQ(TransformedPath(QStringLiteral("/g/expr-LR.tkg"), QStringLiteral("LF")),
              QStringLiteral("/g/expr-LR-LF.tkg"));
    EXPECT_EQ(TransformedPath(QStringLiteral("C:\\g\\calc.txt"), QStringLiteral("UU")),
              QStringLiteral("C:\\g\\calc-UU.tkg"));
    // A dot of a folder is not the file's; a file name without one gets the suffix.
    EXPECT_EQ(TransformedPath(QStringLiteral("/g.d/expr"), QStringLiteral("RE")), QStringLiteral("/g.d/expr-RE.tkg"));
}

TEST(TransformFrame, PreconditionsStopQuietly)
{
    RecordingHost host;
    Workspace ws(&host);
    const QString text = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=[a]"});
    QString newText = QStringLiteral("old");
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("LR"), text, newText), QString());
    EXPECT_EQ(host.informations, QStringList{QStringLiteral("Save Grammar first.")});
    EXPECT_EQ(newText, QString());

    // Grouping one non-terminal's rules does nothing at all, not even the path check.
    host.informations.clear();
    ASSERT_TRUE(ws.grammar.SetText(Lines({"<E>", "<E>=[a]", "<E>=<E>[a]"})));
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("GR"), text, newText), QString());
    EXPECT_EQ(host.Messages(), QStringList());

    // A text that does not parse: the parser's message and nothing else.
    Workspace bad(&host);
    const QString dir = ScratchDir(QStringLiteral("transform-frame"));
    bad.grammar.SetPath(dir + QStringLiteral("/bad.tkg"));
    EXPECT_EQ(RunTransformation(bad, QStringLiteral("UU"), Lines({"<E>", "<E>=<F>"}), newText), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Non-terminal F is not defined.")});
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList());
    EXPECT_EQ(RunTransformation(bad, QStringLiteral("XX"), Lines({"<E>", "<E>=[a]"}), newText), QString());
}

TEST(TransformFrame, StoppedRunSavesTheEditorText)
{
    RecordingHost host;
    Workspace ws(&host);
    const QString dir = ScratchDir(QStringLiteral("transform-stop"));
    const QString text = Lines({"<S>", "<S>=[a]", "<S>=<B>", "<B>=<B>[c]"}) + QStringLiteral("\r\n");
    ws.grammar.SetPath(dir + QStringLiteral("/g.tkg"));
    ASSERT_TRUE(ws.grammar.SetText(text));
    host.stopAfter = host.yields + 1;
    host.stop = [&ws] { ws.Stop(); };
    QString newText;
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("UU"), text, newText), dir + QStringLiteral("/g-UU.tkg"));
    EXPECT_EQ(newText, QString());
    EXPECT_EQ(FileBytes(dir + QStringLiteral("/g-UU.tkg")), text.toUtf8());
}

// ---- New non-terminals -----------------------------------------------------------------

int NewName(Grammar& g, const QString& base, bool letters)
{
    g.MakeACopy();
    for (int c = g.firstNonterminal; c <= g.lastCode; ++c)
        if (g.SymbolName(c) == base)
            return NewNonterminal(g, c, letters);
    ADD_FAILURE() << "no " << base.toStdString();
    return 0;
}

TEST(TransformNaming, ApostrophesOrLetters)
{
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<A>", "<A>=<b>", "<b>=[x]"})));
    int code = NewName(g, QStringLiteral("E"), false);
    EXPECT_EQ(code, g.lastCode + 1);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("E'"));
    EXPECT_EQ(NewNonterminal(g, g.goal, false), g.lastCode + 2);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("E''"));
    NewName(g, QStringLiteral("E"), true);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("C"));  // A taken, b taken as B

    // Case does not count: e' makes the next one E''.
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<e'>", "<e'>=[x]"})));
    NewName(g, QStringLiteral("E"), false);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("E''"));
    // Terminal names play no part.
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=[A][E']"})));
    NewName(g, QStringLiteral("E"), true);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("A"));
    NewName(g, QStringLiteral("E"), false);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("E'"));
}

TEST(TransformNaming, LettersRunOutIntoPairsThenApostrophes)
{
    QStringList lines{QStringLiteral("<Q>")};
    for (char16_t a = u'A'; a <= u'Z'; ++a)
        lines << QStringLiteral("<Q>=<%1>").arg(QChar(a)) << QStringLiteral("<%1>=[x]").arg(QChar(a));
    Grammar g;
    ASSERT_TRUE(g.SetText(lines.join(QStringLiteral("\r\n"))));
    NewName(g, QStringLiteral("Q"), true);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("AA"));
    NewNonterminal(g, g.goal, true);
    EXPECT_EQ(g.copySymbolNames.back(), QStringLiteral("AB"));

    for (char16_t a = u'A'; a <= u'Z'; ++a)
        for (char16_t b = u'A'; b <= u'Z'; ++b)
            lines << QStringLiteral("<Q>=<%1%2>").arg(QChar(a), QChar(b))
                  << QStringLiteral("<%1%2>=[x]").arg(QChar(a), QChar(b));
    ASSERT_TRUE(g.SetText(lines.join(QStringLiteral("\r\n"))));
    NewName(g, QStringLiteral("Q"), true);
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
    EXPECT_EQ(RemoveUnusedSymbols(g), (QStringList{QStringLiteral("<S>"), QStringLiteral("<S>=[a]")}));

    // A = A alone (the parser never keeps it, a copy may hold it) does not make A productive.
    ASSERT_TRUE(g.SetText(Lines({"<S>", "<S>=[a]", "<S>=<A>", "<A>=[b]"})));
    g.MakeACopy();
    g.copyRules[3] = {g.lastCode, g.lastCode};
    EXPECT_EQ(RemoveUnusedSymbols(g), (QStringList{QStringLiteral("<S>"), QStringLiteral("<S>=[a]")}));

    g.MakeACopy();
    host.stopAfter = host.yields + 1;
    host.stop = [&g] { g.SetInProcess(false); };
    EXPECT_EQ(RemoveUnusedSymbols(g), QStringList());
}

TEST(GroupRules, TheCodesFollowTheGroupedText)
{
    // The grouped text is a golden case (transform-GR-order); the open grammar is parsed again from it.
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<T>", "<T>=[a]", "<E>=<E>[+]<T>"})));
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("a"));
    g.MakeACopy();
    GroupRules(g);
    EXPECT_EQ(g.Text(), Lines({"#0 <E>", "#1 <E>=<T>", "#2 <E>=<E>[+]<T>", "#3 <T>=[a]"}));
    EXPECT_TRUE(g.Parsed());
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("+"));
    EXPECT_EQ(host.Messages(), QStringList());
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
