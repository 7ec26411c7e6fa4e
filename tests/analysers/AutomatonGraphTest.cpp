/// The automaton as DOT text and as SVG: a node per drawn state, an edge per
/// shift and goto between drawn states, conflicts marked, neighbourhoods that
/// keep to their depth, and symbol names of any spelling carried through
/// Graphviz unharmed.
#include "render/DotToSvg.h"
#include "session/AnalysisRun.h"
#include "session/AutomatonGraph.h"
#include "session/Views.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QRegularExpression>
#include <QXmlStreamReader>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace {

const QString kDanglingElse =
    Lines({"<S>", "<S>=[if]<E>[then]<S>", "<S>=[if]<E>[then]<S>[else]<S>", "<S>=[x]", "<E>=[c]"});

struct Drawable {
    RecordingHost host;
    Workspace ws{&host};
    Drawable(const QString& text, int view)
    {
        RecordingFrontend fe{text};
        Analyse(ws, fe, view);
    }
    const LrResults& results(int view) const { return *LrResultsOf(ws, view); }
};

/// What a DOT text draws: its state nodes, its edges between states, the
/// states drawn red, and the state the accept edge leaves from.
struct Drawn {
    std::set<int> states;
    std::set<std::pair<int, int>> edges;
    std::set<int> red;
    int acceptFrom = -1;
    int edgeLines = 0;
};

Drawn Read(const QString& dot)
{
    Drawn d;
    static const QRegularExpression node(QStringLiteral("^  s(\\d+) \\[(.*)\\];$"));
    static const QRegularExpression edge(QStringLiteral("^  s(\\d+) -> s(\\d+) \\["));
    static const QRegularExpression accept(QStringLiteral("^  s(\\d+) -> accept \\["));
    for (const QString& line : dot.split(QLatin1Char('\n'))) {
        if (auto m = edge.match(line); m.hasMatch()) {
            d.edges.insert({m.captured(1).toInt(), m.captured(2).toInt()});
            ++d.edgeLines;
        } else if (auto m = accept.match(line); m.hasMatch()) {
            d.acceptFrom = m.captured(1).toInt();
        } else if (auto m = node.match(line); m.hasMatch()) {
            d.states.insert(m.captured(1).toInt());
            if (m.captured(2).contains(QStringLiteral("color=red")))
                d.red.insert(m.captured(1).toInt());
        }
    }
    return d;
}

/// The transitions of the automaton between states of a set.
std::set<std::pair<int, int>> Transitions(const LrResults& r, const std::set<int>& among)
{
    std::set<std::pair<int, int>> out;
    for (int s : among)
        for (const auto& [code, entry] : r.rows[s])
            if (entry > 0 && entry < r.States() && among.count(entry))
                out.insert({s, entry});
    return out;
}

/// The node groups of an SVG document and the texts drawn in it; false when it is not well-formed XML.
bool ReadSvg(const QByteArray& svg, int& nodes, std::vector<QString>& texts)
{
    QXmlStreamReader xml(svg);
    nodes = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QStringLiteral("g") && xml.attributes().value(QStringLiteral("class")) == QStringLiteral("node"))
            ++nodes;
        else if (xml.name() == QStringLiteral("text"))
            texts.push_back(xml.readElementText());
    }
    return !xml.hasError();
}

} // namespace

TEST(AutomatonGraph, DrawsEveryStateEachTransitionTheConflictAndTheAccept)
{
    for (int view : {View::SLR, View::LALR, View::LR}) {
        Drawable a(kDanglingElse, view);
        const LrResults& r = a.results(view);
        const AutomatonGraph graph = BuildAutomatonGraph(a.ws, view, GraphOptions());
        ASSERT_TRUE(graph.error.isEmpty()) << graph.error.toStdString();
        const Drawn d = Read(graph.dot);
        EXPECT_EQ(static_cast<int>(d.states.size()), r.States());
        std::set<int> all;
        for (int s = 0; s < r.States(); ++s)
            all.insert(s);
        EXPECT_EQ(d.edges, Transitions(r, all));
        EXPECT_EQ(d.edgeLines, static_cast<int>(d.edges.size()));
        // The dangling else: one state keeps the shift of [else] and refuses a reduce.
        std::set<int> conflicted;
        for (const Conflict& c : r.conflicts)
            conflicted.insert(c.row);
        ASSERT_EQ(conflicted.size(), 1u);
        EXPECT_EQ(d.red, conflicted);
        EXPECT_TRUE(graph.dot.contains(QStringLiteral("State %1 on [else]: shift ").arg(*conflicted.begin())));
        ASSERT_GE(d.acceptFrom, 0);
        EXPECT_EQ(RowEntry(r.rows[d.acceptFrom], 0), r.States());
    }
}

TEST(AutomatonGraph, NodesListTheItemsWithTheLookaheadsTheMethodKeeps)
{
    Drawable lalr(kDanglingElse, View::LALR);
    const QString dot = BuildAutomatonGraph(lalr.ws, View::LALR, GraphOptions()).dot;
    EXPECT_TRUE(dot.contains(QStringLiteral("&lt;S&gt; = [x] • , $ [else]<BR")));
    // State 0's closure is small: all of it is drawn.
    EXPECT_TRUE(dot.contains(QStringLiteral("&lt;S&gt; = • [x]<BR")));
    EXPECT_EQ(StateItemLines(lalr.ws, View::LALR, 4), QStringList{QStringLiteral("<E> = [c] • , [then]")});

    Drawable slr(kDanglingElse, View::SLR);
    EXPECT_EQ(StateItemLines(slr.ws, View::SLR, 4), QStringList{QStringLiteral("<E> = [c] •")});
    // Canonical LR(1) derives the closure's look-aheads from its kernel.
    Drawable lr(kDanglingElse, View::LR);
    const QStringList first = StateItemLines(lr.ws, View::LR, 0);
    EXPECT_TRUE(first.contains(QStringLiteral("<S> = • [x] , $"))) << first.join(u'|').toStdString();
    EXPECT_TRUE(StateItemLines(lr.ws, View::LR, lr.results(View::LR).States()).isEmpty());
}

TEST(AutomatonGraph, NeighbourhoodsKeepToTheirDepthEitherWay)
{
    Drawable a(ReadGrammarText(CorpusDir() + QStringLiteral("/ansic89.tkg")), View::LALR);
    const LrResults& r = a.results(View::LALR);
    const int n = r.States();
    std::vector<std::set<int>> next(static_cast<std::size_t>(n)), prev(static_cast<std::size_t>(n));
    for (int s = 0; s < n; ++s)
        for (const auto& [code, entry] : r.rows[s])
            if (entry > 0 && entry < n) {
                next[static_cast<std::size_t>(s)].insert(entry);
                prev[static_cast<std::size_t>(entry)].insert(s);
            }
    for (int centre : {0, 5, n / 2, n - 1}) {
        EXPECT_EQ(Neighbourhood(r, centre, 0), std::vector<int>{centre});
        std::set<int> one{centre};
        one.insert(next[static_cast<std::size_t>(centre)].begin(), next[static_cast<std::size_t>(centre)].end());
        one.insert(prev[static_cast<std::size_t>(centre)].begin(), prev[static_cast<std::size_t>(centre)].end());
        const std::vector<int> depth1 = Neighbourhood(r, centre, 1);
        EXPECT_EQ(std::set<int>(depth1.begin(), depth1.end()), one) << centre;
        // Depth 2 is depth 1 and the neighbours of its states.
        std::set<int> two = one;
        for (int s : one) {
            two.insert(next[static_cast<std::size_t>(s)].begin(), next[static_cast<std::size_t>(s)].end());
            two.insert(prev[static_cast<std::size_t>(s)].begin(), prev[static_cast<std::size_t>(s)].end());
        }
        const std::vector<int> depth2 = Neighbourhood(r, centre, 2);
        EXPECT_EQ(std::set<int>(depth2.begin(), depth2.end()), two) << centre;
    }
    // Every state is reached from state 0.
    EXPECT_EQ(static_cast<int>(Neighbourhood(r, 0, n).size()), n);

    // A drawn neighbourhood: its states, and only the transitions among them.
    GraphOptions near;
    near.centre = 0;
    near.depth = 1;
    const AutomatonGraph graph = BuildAutomatonGraph(a.ws, View::LALR, near);
    ASSERT_TRUE(graph.error.isEmpty()) << graph.error.toStdString();
    const Drawn d = Read(graph.dot);
    const std::vector<int> expected = Neighbourhood(r, 0, 1);
    EXPECT_EQ(d.states, std::set<int>(expected.begin(), expected.end()));
    EXPECT_EQ(d.edges, Transitions(r, d.states));
    EXPECT_EQ(graph.transitions, static_cast<int>(d.edges.size()));
}

TEST(AutomatonGraph, RefusesWhatCannotBeDrawnWithAClearMessage)
{
    Drawable a(ReadGrammarText(CorpusDir() + QStringLiteral("/ansic89.tkg")), View::LALR);
    AutomatonGraph whole = BuildAutomatonGraph(a.ws, View::LALR, GraphOptions());
    EXPECT_EQ(whole.error.toStdString(),
              "The LALR(1) automaton has 349 states and 2987 transitions, more than the 400 states and 250 "
              "transitions a picture holds: draw the neighbourhood of one state (--state N --depth K).");
    EXPECT_TRUE(whole.dot.isEmpty());
    EXPECT_FALSE(WholeAutomatonFits(a.ws, View::LALR));
    GraphOptions wide;
    wide.centre = 100;
    wide.depth = 3;
    const AutomatonGraph tooDeep = BuildAutomatonGraph(a.ws, View::LALR, wide);
    EXPECT_TRUE(tooDeep.error.startsWith(QStringLiteral("The states within 3 transitions of state 100 are ")))
        << tooDeep.error.toStdString();
    EXPECT_TRUE(tooDeep.error.endsWith(QStringLiteral(": choose a smaller depth.")));
    wide.centre = 349;
    EXPECT_EQ(BuildAutomatonGraph(a.ws, View::LALR, wide).error.toStdString(),
              "There is no state 349: the LALR(1) automaton has states 0 to 348.");
    EXPECT_EQ(BuildAutomatonGraph(a.ws, View::LR, GraphOptions()).error.toStdString(),
              "The LR(1) automaton has not been built: analyse the grammar first.");
    EXPECT_EQ(BuildAutomatonGraph(a.ws, View::LL, GraphOptions()).error.toStdString(),
              "Only the LR views (SLR(1), LALR(1), LR(1)) have an automaton to draw.");
}

TEST(AutomatonGraph, RendersToSvgWithANodeGroupPerStateAndTheAccept)
{
    Drawable a(ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg")), View::LR);
    const AutomatonGraph graph = BuildAutomatonGraph(a.ws, View::LR, GraphOptions());
    ASSERT_TRUE(graph.error.isEmpty());
    const SvgPicture picture = DotToSvg(graph.dot.toUtf8());
    ASSERT_TRUE(picture.Ok()) << picture.error.toStdString();
    int nodes = 0;
    std::vector<QString> texts;
    ASSERT_TRUE(ReadSvg(picture.svg, nodes, texts));
    EXPECT_EQ(nodes, a.results(View::LR).States() + 1);
    EXPECT_NE(std::find(texts.begin(), texts.end(), QStringLiteral("<term> = <term> • [*] <fact> , [\\n] [+] [-] [*] [/]")),
              texts.end());
}

TEST(AutomatonGraph, OddSymbolNamesComeThroughGraphvizAsWritten)
{
    // Names with every character DOT, HTML labels or XML treat specially.
    const std::vector<std::string> odd = {"a\"b", "\\", "<x>", "{|}", "&amp;", "'", "\\n", "x y", "é€", "&#1;", "\\\"", ">>", "<<"};
    std::mt19937 rng(7);
    for (int round = 0; round < 12; ++round) {
        std::vector<std::string> names = odd;
        std::shuffle(names.begin(), names.end(), rng);
        names.resize(5);
        QStringList rules{QStringLiteral("<S %1>").arg(round)};
        for (const std::string& name : names)
            rules << QStringLiteral("<S %1>=[%2]<S %1>").arg(round).arg(QString::fromStdString(name));
        rules << QStringLiteral("<S %1>=[end]").arg(round);
        Drawable a(rules.join(QStringLiteral("\r\n")), View::LALR);
        ASSERT_TRUE(IsAnalysed(a.ws, View::LALR))
            << rules.join(u'|').toStdString() << a.host.Messages().join(u'|').toStdString();
        const AutomatonGraph graph = BuildAutomatonGraph(a.ws, View::LALR, GraphOptions());
        ASSERT_TRUE(graph.error.isEmpty()) << graph.error.toStdString();
        const SvgPicture picture = DotToSvg(graph.dot.toUtf8());
        ASSERT_TRUE(picture.Ok()) << picture.error.toStdString() << "\n" << graph.dot.toStdString();
        int nodes = 0;
        std::vector<QString> texts;
        ASSERT_TRUE(ReadSvg(picture.svg, nodes, texts));
        EXPECT_EQ(nodes, a.results(View::LALR).States() + 1);
        // Every terminal labels an edge, spelt as the grammar spells it.
        const Grammar& g = a.ws.grammar;
        for (int t = 1; t <= g.terminalCount; ++t)
            EXPECT_NE(std::find(texts.begin(), texts.end(), g.GetSymbolS(t)), texts.end())
                << g.GetSymbolS(t).toStdString();
    }
}

TEST(AutomatonGraph, GraphvizComplaintsBecomeMessages)
{
    // Twice: Graphviz counts lines on across reads, so no line is named.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(DotToSvg("digraph {\n a -> ; }").error.toStdString(),
                  "Graphviz could not read the graph: syntax error near ';'");
    EXPECT_EQ(DotToSvg("").error.toStdString(), "Graphviz could not read the graph.");
    SvgLimits small;
    small.maxNodes = 2;
    EXPECT_EQ(DotToSvg("digraph { a -> b -> c; }", small).error.toStdString(),
              "The graph has 3 nodes and 2 edges, more than the 2 nodes and 500 edges a picture may have.");
    small.maxDotBytes = 10;
    EXPECT_EQ(DotToSvg("digraph { a -> b; }", small).error.toStdString(),
              "The graph text has 19 bytes, more than the 10 a picture may have.");
    // An HTML label that is not well-formed is refused, not drawn half.
    const SvgPicture bad = DotToSvg("digraph { a [label=<<B>x</I>>]; }");
    EXPECT_FALSE(bad.Ok());
    EXPECT_TRUE(bad.svg.isEmpty());
}
