/// \file
/// The check of an LR table that a compiled grammar file restored: the kept
/// kernels, look-aheads, rows and refused reduces must be exactly what the
/// analyser makes of the grammar.
#pragma once

#include "model/Conflicts.h"
#include "model/Results.h"

class LrGrammar;

/// True when results (of method SLR, LALR or LR, with its analysed flag set)
/// hold together with the grammar of lg: every state is reached, no two are
/// the same, each transition leads to the state of the kernel (and, for LR(1),
/// the look-aheads) that the closure of its source gives, the look-aheads are
/// those the method computes, and the rows and the refused reduces are what
/// writing the reduces gives, in the analyser's order. Works in time linear in
/// the automaton, without building it again. followR is the grammar's FOLLOWR
/// (the look-aheads of SLR(1)).
bool LrTableHolds(const LrResults& results, const LrGrammar& lg, ConflictMethod method,
                  const std::vector<CodeList>& followR);
