/// \file
/// LALR(1) look-aheads of the LR(0) automaton by DeRemer and Pennello's
/// relations ("Efficient Computation of LALR(1) Look-Ahead Sets", ACM TOPLAS
/// 4(4), 1982): DR and reads give Read, includes gives Follow, and lookback
/// gathers Follow into the look-ahead set of each reduce.
#pragma once

#include "analysers/LrAutomaton.h"
#include "grammar/Indexed.h"

#include <utility>
#include <vector>

/// By state: the pairs (rule, look-ahead set) of its complete items, in the
/// order of LrGrammar::CompleteItems.
using ReduceLookaheads = Indexed<std::vector<std::pair<int, TerminalSet>>>;

/// The LALR(1) look-aheads of every reduce of an LR(0) automaton. The two
/// digraph walks give the message loop a turn once per transition; false when
/// the analyser was stopped meanwhile (result is then incomplete).
bool ComputeLalrLookaheads(const LrGrammar& lg, const Lr0Automaton& automaton, Model& model,
                           IAnazer& analyser, ReduceLookaheads& result);
