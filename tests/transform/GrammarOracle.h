/// \file
/// Slow, plain references for the transformation tests: the sentences a grammar
/// generates up to a length, the properties each transformation must establish,
/// and random grammars to feed them.
#pragma once

#include "grammar/Grammar.h"

#include <QString>
#include <random>
#include <set>

/// Every sentence of the parsed grammar with at most maxLength terminals, each
/// written as its terminal names joined by single spaces ("" for the empty
/// sentence). Computed as the least fixed point of the length-bounded
/// languages of the non-terminals, so it is exact for any grammar.
std::set<QString> BoundedSentences(const Grammar& g, int maxLength);

/// A =>+ A ... for some A, looking through nullable prefixes (hidden left
/// recursion included).
bool HasLeftRecursion(const Grammar& g);
/// A =>+ A for some A (unit rules, or rules whose other symbols are nullable).
bool HasCycle(const Grammar& g);
/// Two rules of one non-terminal whose right sides begin with the same symbol.
bool HasCommonFirstSymbols(const Grammar& g);
/// An empty rule of a non-terminal other than the goal, or an empty rule of a
/// goal that some right side names.
bool HasEmptyRulesBeyondGoal(const Grammar& g);
/// The rules of every non-terminal stand together.
bool RulesGrouped(const Grammar& g);
