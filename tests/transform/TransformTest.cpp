// The transformation commands: the frame, the naming of new non-terminals, the
// exact results of unused-symbol removal and rule grouping, and the four
// language-preserving transformations on hand examples, the corpus and random
// grammars.
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

QString Apply(const QString& text, const QString& code, bool letters = false)
{
    RecordingHost host;
    const QString result = Apply(text, code, letters, host);
    EXPECT_EQ(host.Messages(), QStringList()) << code.toStdString();
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

QString ReadFile(const QString& path)
{
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(f.readAll());
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

TEST(TransformFrame, WritesTheResultBesideTheGrammar)
{
    RecordingHost host;
    Workspace ws(&host);
    const QString dir = ScratchDir(QStringLiteral("transform-write"));
    const QString source = dir + QStringLiteral("/calc.tkg");
    ASSERT_TRUE(QFile::copy(CorpusDir() + QStringLiteral("/calc.tkg"), source));
    QString text, error;
    ASSERT_TRUE(TKGOpen(ws, source, text, error)) << error.toStdString();

    QString newText;
    const QString written = RunTransformation(ws, QStringLiteral("LR"), text, newText);
    EXPECT_EQ(written, dir + QStringLiteral("/calc-LR.tkg"));
    EXPECT_EQ(host.Messages(), QStringList());
    EXPECT_FALSE(ws.grammar.InProcess());
    EXPECT_TRUE(newText.startsWith(QStringLiteral("<input>\r\n<input>=<input'>\r\n")));
    EXPECT_TRUE(newText.endsWith(QStringLiteral("\r\n")));
    EXPECT_EQ(ReadFile(written), newText);  // every line ends in CR LF, the last one too

    // A further command appends its own suffix; grouping shows the grammar's text.
    Workspace next(&host);
    ASSERT_TRUE(TKGOpen(next, written, text, error));
    EXPECT_EQ(RunTransformation(next, QStringLiteral("GR"), text, newText), dir + QStringLiteral("/calc-LR-GR.tkg"));
    EXPECT_TRUE(newText.startsWith(QStringLiteral("#0 <input>\r\n#1 <input>=<input'>\r\n")));
    EXPECT_EQ(ReadFile(dir + QStringLiteral("/calc-LR-GR.tkg")), newText + QStringLiteral("\r\n"));
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
    EXPECT_EQ(ReadFile(dir + QStringLiteral("/g-UU.tkg")), text);
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

TEST(RemoveUnusedSymbols, ExactResults)
{
    // B is barren: its rule and S = B go.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[a]", "<S>=<B>", "<B>=<B>[c]"}), QStringLiteral("UU")),
              Lines({"<S>", "<S>=[a]"}));
    // A non-terminal whose every rule needs itself is barren.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[a]", "<S>=<A>", "<A>=<A>[b]", "<A>=<S><A>"}), QStringLiteral("UU")),
              Lines({"<S>", "<S>=[a]"}));
    // C, named by no right part, goes; named by its own rule, it stays.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[a]", "<C>=[a]"}), QStringLiteral("UU")), Lines({"<S>", "<S>=[a]"}));
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[a]", "<C>=[a]", "<C>=[a]<C>"}), QStringLiteral("UU")),
              Lines({"<S>", "<S>=[a]", "<C>=[a]", "<C>=[a]<C>"}));
    // Empty rules and the end marker are kept as written; order never changes.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<L>.", "<L>=", "<L>=<L>[x]"}), QStringLiteral("UU")),
              Lines({"<S>", "<S>=<L>.", "<L>=.", "<L>=<L>[x]"}));
}

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

TEST(GroupRules, ExactResults)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<T>", "<T>=[a]", "<E>=<E>[+]<T>"})));
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("a"));
    g.MakeACopy();
    GroupRules(g);
    EXPECT_EQ(g.Text(), Lines({"#0 <E>", "#1 <E>=<T>", "#2 <E>=<E>[+]<T>", "#3 <T>=[a]"}));
    EXPECT_TRUE(g.Parsed());
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("+"));  // codes follow the grouped text

    const QString grouped = Lines({"<S>", "<S>=<A><B>", "<S>=[s]", "<A>=[a]", "<A>=", "<B>=[b]<S>"});
    EXPECT_EQ(Apply(grouped, QStringLiteral("GR")),
              Lines({"#0 <S>", "#1 <S>=<A><B>", "#2 <S>=[s]", "#3 <A>=[a]", "#4 <A>=.", "#5 <B>=[b]<S>"}));
    EXPECT_EQ(host.Messages(), QStringList());
}

// ---- The four unspecified transformations on textbook examples --------------------------

TEST(Transformations, TextbookResults)
{
    const QString expr = ReadGrammarText(QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg"));
    EXPECT_EQ(Apply(expr, QStringLiteral("LR")),
              Lines({"<E>", "<E>=<T><E'>", "<E'>=[+]<T><E'>", "<E'>=.", "<T>=<F><T'>", "<T'>=[*]<F><T'>", "<T'>=.",
                     "<F>=[(]<E>[)]", "<F>=[a]"}));
    EXPECT_EQ(Apply(expr, QStringLiteral("LR"), true),
              Lines({"<E>", "<E>=<T><A>", "<A>=[+]<T><A>", "<A>=.", "<T>=<F><B>", "<B>=[*]<F><B>", "<B>=.",
                     "<F>=[(]<E>[)]", "<F>=[a]"}));
    // Indirect recursion through S: A = S d becomes A = A a d | b d first.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<A>[a]", "<S>=[b]", "<A>=<A>[c]", "<A>=<S>[d]", "<A>=[e]"}),
                    QStringLiteral("LR")),
              Lines({"<S>", "<S>=<A>[a]", "<S>=[b]", "<A>=[b][d]<A'>", "<A>=[e]<A'>", "<A'>=[c]<A'>",
                     "<A'>=[a][d]<A'>", "<A'>=."}));

    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[i]<E>[t]<S>", "<S>=[i]<E>[t]<S>[e]<S>", "<S>=[a]", "<E>=[b]"}),
                    QStringLiteral("LF")),
              Lines({"<S>", "<S>=[i]<E>[t]<S><S'>", "<S'>=.", "<S'>=[e]<S>", "<S>=[a]", "<E>=[b]"}));

    EXPECT_EQ(Apply(Lines({"<S>", "<S>=[a]<S>[b]", "<S>="}), QStringLiteral("RE")),
              Lines({"<S'>", "<S'>=<S>", "<S'>=.", "<S>=[a]<S>[b]", "<S>=[a][b]"}));
    // The goal keeps its empty rule when no right side names it; B, deriving
    // only the empty sentence, goes.
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<A>[x]<B>", "<S>=", "<A>=[a]", "<A>=", "<B>="}), QStringLiteral("RE")),
              Lines({"<S>", "<S>=<A>[x]", "<S>=[x]", "<S>=.", "<A>=[a]"}));

    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<A>", "<A>=<B>", "<B>=<A>", "<B>=[b]", "<A>=[a]"}), QStringLiteral("RC")),
              Lines({"<S>", "<S>=<A>", "<A>=[b]", "<A>=[a]"}));
    // A cycle through a nullable neighbour: A = A B with B =>* (empty).
    EXPECT_TRUE(Preserves(Lines({"<S>", "<S>=<S><B>", "<S>=[a]", "<B>=", "<B>=[b]"}), QStringLiteral("RC"), false, 6));
}

TEST(Transformations, RefusesABarrenGoal)
{
    RecordingHost host;
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<S>[a]"}), QStringLiteral("LR"), false, host), QString());
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<A>", "<A>=<S>", "<B>=[a]"}), QStringLiteral("RC"), false, host), QString());
    EXPECT_EQ(Apply(Lines({"<S>", "<S>=<S><B>", "<B>=", "<C>=[c]"}), QStringLiteral("RE"), false, host), QString());
    const QString refusal = QStringLiteral("Not transformed: the goal <S> derives no terminal string.");
    EXPECT_EQ(host.informations, (QStringList{refusal, refusal, refusal}));
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
