/// Conflict explanations: every tree they give is checked here against the
/// grammar by a validator of its own, on small grammars with known kinds of
/// conflict and on every conflict of corpus grammars.
#include "session/AnalysisRun.h"
#include "session/ConflictExplainer.h"
#include "session/Views.h"
#include "analysers/Ana08LALR.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

/// Checks that every inner node's children are its rule's right side and its
/// symbol the rule's left side; appends the leaves. False at the first fault.
bool Validate(const Grammar& g, const DerivationTree& node, std::vector<int>& leaves)
{
    if (node.rule < 0) {
        leaves.push_back(node.symbol);
        return node.children.empty();
    }
    if (node.rule > g.ruleCount || g.rules[node.rule][0] != node.symbol)
        return false;
    std::vector<int> right;
    if (!g.ruleIsEmpty[node.rule])
        right.assign(g.rules[node.rule].begin() + 1, g.rules[node.rule].end());
    if (right.size() != node.children.size())
        return false;
    for (std::size_t i = 0; i < right.size(); ++i)
        if (node.children[i].symbol != right[i] || !Validate(g, node.children[i], leaves))
            return false;
    return true;
}

bool Contains(const DerivationTree& tree, int rule)
{
    if (tree.rule == rule)
        return true;
    for (const DerivationTree& child : tree.children)
        if (Contains(child, rule))
            return true;
    return false;
}

/// Every fact a counterexample claims, checked from its trees alone.
void ExpectSound(const Grammar& g, const ConflictExplanation& e, const QString& label)
{
    const std::string where = label.toStdString();
    const Counterexample& c = e.example;
    if (c.gaveUp)
        return;
    ASSERT_EQ(c.derivations.size(), 2u) << where;
    EXPECT_NE(c.derivations[0], c.derivations[1]) << where;
    for (int i = 0; i < 2; ++i) {
        std::vector<int> leaves;
        EXPECT_TRUE(Validate(g, c.derivations[i], leaves)) << where;
        EXPECT_EQ(leaves, c.forms[i]) << where;
        EXPECT_EQ(c.goalRooted, c.derivations[i].symbol == -2) << where;
        if (c.unifying) {
            EXPECT_EQ(leaves, c.sentence) << where;
        } else {
            EXPECT_TRUE(leaves.size() >= c.sentence.size()
                        && std::equal(c.sentence.begin(), c.sentence.end(), leaves.begin())) << where;
        }
    }
    if (e.state >= 0) {
        EXPECT_TRUE(Contains(c.derivations[0], -e.conflict.rejected.front())
                    || Contains(c.derivations[1], -e.conflict.rejected.front())) << where;
    }
}

/// Whether the tree has a node of rule whose leaves are followed at once by lookahead.
bool ClosesBefore(const DerivationTree& tree, int rule, int lookahead)
{
    std::vector<int> leaves;
    std::vector<std::pair<int, std::size_t>> ends;  // (rule, index after the node's last leaf)
    std::function<void(const DerivationTree&)> walk = [&](const DerivationTree& node) {
        if (node.rule < 0) {
            leaves.push_back(node.symbol);
            return;
        }
        for (const DerivationTree& child : node.children)
            walk(child);
        ends.emplace_back(node.rule, leaves.size());
    };
    walk(tree);
    return std::any_of(ends.begin(), ends.end(), [&](const auto& e) {
        return e.first == rule && e.second < leaves.size() && leaves[e.second] == lookahead;
    });
}

struct Explained {
    RecordingHost host;
    Workspace ws{&host};
    Explanations ex;

    Explained(const QString& text, int view, int budgetMs = 500, bool compareStronger = false)
    {
        RecordingFrontend fe{text};
        Analyse(ws, fe, view);
        ex = ExplainConflicts(ws, view, ExplainOptions{budgetMs, 200000, compareStronger});
    }
};

} // namespace

TEST(ConflictExplainer, AmbiguousGrammarsGetOneSentenceWithTwoTrees)
{
    const QString grammars[] = {
        Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"}),
        Lines({"<S>", "<S>=[if]<E>[then]<S>", "<S>=[if]<E>[then]<S>[else]<S>", "<S>=[x]", "<E>=[c]"}),
    };
    for (const QString& text : grammars) {
        Explained run(text, View::LALR);
        ASSERT_EQ(run.ex.conflicts.size(), 1u) << text.toStdString();
        const ConflictExplanation& e = run.ex.conflicts[0];
        EXPECT_EQ(e.conflict.kind, ConflictKind::ShiftReduce);
        EXPECT_TRUE(e.example.unifying && !e.example.gaveUp) << text.toStdString();
        EXPECT_FALSE(e.example.goalRooted);  // cut down to the smallest subtrees that hold the clash
        ExpectSound(run.ws.grammar, e, text);
        // The trees come in the order of the actions: the kept shift nests the
        // operand to the right (the inner rule takes the look-ahead), the refused
        // reduce closes the inner rule before it.
        ASSERT_EQ(e.example.derivations.size(), 2u);
        const int refusedRule = -e.conflict.rejected.front();
        EXPECT_FALSE(ClosesBefore(e.example.derivations[0], refusedRule, e.lookahead)) << text.toStdString();
        EXPECT_TRUE(ClosesBefore(e.example.derivations[1], refusedRule, e.lookahead)) << text.toStdString();
        // The terminal sentences of both trees are one sentence with no non-terminal.
        EXPECT_EQ(e.example.terminals[0], e.example.terminals[1]);
        for (int s : e.example.terminals[0])
            EXPECT_TRUE(run.ws.grammar.IsTerminal(s));
    }
}

TEST(ConflictExplainer, PrefixLeadsFromStateZeroToTheConflictState)
{
    const QString text =
        Lines({"<S>", "<S>=[if]<E>[then]<S>", "<S>=[if]<E>[then]<S>[else]<S>", "<S>=[x]", "<E>=[c]"});
    // LALR(1) meets the clash after one if-then; canonical LR(1) only inside a
    // second, since the outer statement is followed by the end marker alone.
    for (const auto& [view, length] : {std::pair{View::LALR, 4u}, std::pair{View::LR, 7u}}) {
        Explained run(text, view);
        ASSERT_EQ(run.ex.conflicts.size(), 1u);
        const ConflictExplanation& e = run.ex.conflicts[0];
        int state = 0;
        for (int symbol : e.prefix)
            state = RowEntry((run.ws.*(ViewOf(view).lrResults)).rows[state], symbol);
        EXPECT_EQ(state, e.state);
        EXPECT_EQ(e.prefix.size(), length);
    }
}

TEST(ConflictExplainer, LrTwoGrammarGetsTwoFormsSharingPrefixAndLookahead)
{
    Explained run(Lines({"<S>", "<S>=<A>[a][b]", "<S>=<B>[a][c]", "<A>=[x]", "<B>=[x]"}), View::LALR);
    ASSERT_EQ(run.ex.conflicts.size(), 1u);
    const ConflictExplanation& e = run.ex.conflicts[0];
    EXPECT_EQ(e.conflict.kind, ConflictKind::ReduceReduce);
    EXPECT_FALSE(e.example.unifying);
    ASSERT_FALSE(e.example.gaveUp);
    EXPECT_FALSE(e.example.goalRooted);  // the goal is the smallest pair of subtrees that differ here
    ExpectSound(run.ws.grammar, e, QStringLiteral("LR(2)"));
    std::vector<int> shared = e.prefix;
    shared.push_back(e.lookahead);
    EXPECT_EQ(e.example.sentence, shared);
    // One tree per reduce: the kept rule in the first, the refused one in the second.
    EXPECT_TRUE(Contains(e.example.derivations[0], -e.conflict.kept));
    EXPECT_TRUE(Contains(e.example.derivations[1], -e.conflict.rejected.front()));
    EXPECT_NE(e.example.terminals[0], e.example.terminals[1]);
}

TEST(ConflictExplainer, LlConflictsShowBothPredictedRules)
{
    // Not ambiguous: the two rules share a first terminal only.
    Explained factored(Lines({"<S>", "<S>=[a]<B>", "<S>=[a]<C>", "<B>=[b]", "<C>=[c]"}), View::LL);
    ASSERT_EQ(factored.ex.conflicts.size(), 1u);
    const ConflictExplanation& f = factored.ex.conflicts[0];
    EXPECT_FALSE(f.example.unifying || f.example.gaveUp);
    ExpectSound(factored.ws.grammar, f, QStringLiteral("factored"));
    EXPECT_EQ(f.example.derivations[0].rule, f.rules[0]);
    EXPECT_EQ(f.example.derivations[1].rule, f.rules[1]);
    EXPECT_EQ(f.prefix, std::vector<int>{f.row});

    // Ambiguous: <S> derives [a] in two ways, both predicted under [a].
    Explained ambiguous(Lines({"<S>", "<S>=<A>", "<S>=<B>", "<A>=[a]", "<B>=[a]"}), View::LL);
    ASSERT_EQ(ambiguous.ex.conflicts.size(), 1u);
    const ConflictExplanation& a = ambiguous.ex.conflicts[0];
    EXPECT_TRUE(a.example.unifying);
    ExpectSound(ambiguous.ws.grammar, a, QStringLiteral("ambiguous"));
}

TEST(ConflictExplainer, PrecedenceConflictsNameTheRuleOfEachRelation)
{
    Explained run(Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"}), View::OPR);
    ASSERT_EQ(run.ex.conflicts.size(), 1u);
    const ConflictExplanation& e = run.ex.conflicts[0];
    ASSERT_EQ(e.actions.size(), 2);
    for (const QString& action : e.actions)
        EXPECT_TRUE(action.contains(QStringLiteral("rule 1 <E>=<E>[+]<E>"))) << action.toStdString();
    EXPECT_NE(e.actions[0].left(2), e.actions[1].left(2));
}

TEST(ConflictExplainer, StopEndsTheSearch)
{
    RecordingHost host;
    Workspace ws{&host};
    RecordingFrontend fe{ReadGrammarText(CorpusDir() + QStringLiteral("/bc.tkg"))};
    Analyse(ws, fe, View::LALR);
    ASSERT_GT(ws.lalr.conflicts.size(), 3u);
    host.stopAfter = host.yields + 3;
    host.stop = [&ws] { ws.Stop(); };
    const Explanations ex = ExplainConflicts(ws, View::LALR, ExplainOptions{10000, 1 << 30});
    EXPECT_TRUE(ex.stopped);
    EXPECT_LT(ex.conflicts.size(), ws.lalr.conflicts.size());
}

TEST(ConflictExplainer, EveryTreeOfSmallCorpusGrammarsIsSound)
{
    int found = 0, unifying = 0;
    for (const char* name : {"calc", "bc", "ansic89"}) {
        for (int view : {View::SLR, View::LALR, View::LR}) {
            const QString path = CorpusDir() + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".tkg");
            Explained run(ReadGrammarText(path), view, 20);
            EXPECT_EQ(run.ex.conflicts.size(), (run.ws.*(ViewOf(view).lrResults)).conflicts.size()) << name;
            for (const ConflictExplanation& e : run.ex.conflicts) {
                ExpectSound(run.ws.grammar, e, QString::fromLatin1(name));
                found += !e.example.gaveUp;
                unifying += e.example.unifying;
            }
        }
    }
    EXPECT_GT(found, 0);
    EXPECT_GT(unifying, 0);
}

/// A corpus grammar and the unifying examples its LALR(1) conflicts must get
/// at least: as many as the counterexample search of GNU Bison finds on it.
struct CorpusCase {
    const char* name;
    int unifying;
};

void PrintTo(const CorpusCase& c, std::ostream* os)
{
    *os << c.name;
}

class CorpusExplained : public ::testing::TestWithParam<CorpusCase> {};

TEST_P(CorpusExplained, EveryConflictGetsASoundExample)
{
    const CorpusCase& c = GetParam();
    const QString path = CorpusDir() + QLatin1Char('/') + QLatin1String(c.name) + QStringLiteral(".tkg");
    Explained run(ReadGrammarText(path), View::LALR, 50);
    ASSERT_EQ(run.ex.conflicts.size(), run.ws.lalr.conflicts.size());
    int unifying = 0;
    for (const ConflictExplanation& e : run.ex.conflicts) {
        EXPECT_FALSE(e.example.gaveUp) << c.name << " state " << e.state;
        ExpectSound(run.ws.grammar, e, QString::fromLatin1(c.name));
        unifying += e.example.unifying;
    }
    EXPECT_GE(unifying, c.unifying) << c.name;
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusExplained,
                         ::testing::Values(CorpusCase{"bc", 111}, CorpusCase{"bash", 45}, CorpusCase{"java", 4},
                                           CorpusCase{"gawk", 169}, CorpusCase{"go14", 203}, CorpusCase{"python", 0},
                                           CorpusCase{"php", 1800}, CorpusCase{"postgres", 1300}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ConflictExplainer, ConflictsAStrongerMethodDoesNotHaveAreMarked)
{
    // SLR(1) but not LALR(1)'s conflict: [=] follows <R> somewhere, not after <L> at the start.
    const QString assignment = Lines({"<S>", "<S>=<L>[=]<R>", "<S>=<R>", "<L>=[*]<R>", "<L>=[id]", "<R>=<L>"});
    // LALR(1) but not canonical LR(1)'s: two states of [c] merged into one.
    const QString merged = Lines({"<S>", "<S>=[a]<A>[d]", "<S>=[b]<B>[d]", "<S>=[a]<B>[e]", "<S>=[b]<A>[e]",
                                  "<A>=[c]", "<B>=[c]"});
    const QString dangling = Lines({"<S>", "<S>=[if]<E>[then]<S>", "<S>=[if]<E>[then]<S>[else]<S>", "<S>=[x]", "<E>=[c]"});

    Explained slr(assignment, View::SLR, 50, true);
    ASSERT_EQ(slr.ex.conflicts.size(), 1u);
    EXPECT_EQ(slr.ex.conflicts[0].notes,
              (QStringList{QStringLiteral("LALR(1) has no conflict here: [=] does not follow the reduced rule in this state."),
                           QStringLiteral("Canonical LR(1) has no conflict here: its state with these items has none on [=].")}));
    // Without the comparison nothing is claimed.
    EXPECT_EQ(Explained(assignment, View::SLR, 50).ex.conflicts[0].notes, QStringList());

    Explained lalr(merged, View::LALR, 50, true);
    ASSERT_EQ(lalr.ex.conflicts.size(), 2u);
    for (const ConflictExplanation& e : lalr.ex.conflicts)
        EXPECT_EQ(e.notes, QStringList{QStringLiteral("Canonical LR(1) has no conflict here: it splits this state into "
                                                      "2 states, none of which conflicts on %1.")
                                           .arg(lalr.ws.grammar.GetSymbolS(e.lookahead))});
    // The stronger runs leave the view's own analyser current, so Stop still reaches the search.
    EXPECT_NE(dynamic_cast<Ana08LALR*>(lalr.ws.current.get()), nullptr);

    // A real ambiguity stays in every method: no note.
    for (int view : {View::SLR, View::LALR}) {
        Explained d(dangling, view, 50, true);
        ASSERT_EQ(d.ex.conflicts.size(), 1u);
        EXPECT_EQ(d.ex.conflicts[0].notes, QStringList()) << view;
    }
}
