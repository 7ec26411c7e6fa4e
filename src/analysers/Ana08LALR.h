/// \file
/// Ana08LALR: the LALR(1) test on the LR(0) automaton, reduces under DeRemer and Pennello's LALR(1) look-aheads.
#pragma once

#include "analysers/LalrLookaheads.h"
#include "analysers/LrAnalyser.h"

class Ana08LALR final : public LrAnalyser {
public:
    explicit Ana08LALR(Model& model);

protected:
    bool Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces) override;
};
