/// \file
/// The automaton of an analysed LR view (SLR(1) and LALR(1) on the LR(0)
/// states, canonical LR(1) on its own) as a Graphviz DOT text: a node per
/// state listing its items as the item-set listing writes them, an edge per
/// shift and goto labelled with its symbol, the states with a conflict drawn
/// red and listed under the picture, the accept drawn as a node of its own.
/// Drawn whole, or as the neighbourhood of one state: the states within a
/// number of transitions of it, either way.
#pragma once

#include "model/Model.h"

#include <QString>
#include <QStringList>
#include <vector>

/// The most states and transitions a picture holds; a larger automaton is
/// drawn by neighbourhoods. Graphviz's layout time grows fast with the edges
/// (a C grammar's 41 states and 432 transitions take seconds to lay out).
constexpr int kMaxGraphStates = 400;
constexpr int kMaxGraphTransitions = 250;

struct GraphOptions {
    int centre = -1;     ///< the state whose neighbourhood is drawn; -1: the whole automaton
    int depth = 2;       ///< the transitions either way from centre a drawn state lies within
    int highlight = -1;  ///< a state drawn filled (the one a parse is in); -1 for none
    int maxStates = kMaxGraphStates;
    int maxTransitions = kMaxGraphTransitions;
};

struct AutomatonGraph {
    QString dot;              ///< the DOT text; empty when error says why
    QString error;            ///< why there is no picture, in a sentence
    std::vector<int> states;  ///< the states drawn, ascending
    int totalStates = 0;      ///< the states of the automaton
    int transitions = 0;      ///< the shifts and gotos between the states drawn
};

/// Whether view is one of the LR views (SLR(1), LALR(1), canonical LR(1)).
bool HasAutomaton(int view);
/// The number of states of view's automaton; 0 when it has not been built.
int AutomatonStates(const Model& model, int view);
/// Whether the whole automaton of view fits in one picture.
bool WholeAutomatonFits(const Model& model, int view, const GraphOptions& options = GraphOptions());
/// The states within depth transitions of centre, following the shifts and
/// gotos forwards and backwards, ascending. The automaton must hold centre.
std::vector<int> Neighbourhood(const LrResults& results, int centre, int depth);
/// The DOT text of view's automaton as options ask.
AutomatonGraph BuildAutomatonGraph(const Model& model, int view, const GraphOptions& options);
/// The items of one state in the grammar's notation, kernel first and then the
/// rest of its closure, with the look-aheads the method keeps ("<E> = <E> • [+] <T> , $ [+]").
QStringList StateItemLines(const Model& model, int view, int state);
