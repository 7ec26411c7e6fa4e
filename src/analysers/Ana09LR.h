/// \file
/// Ana09LR: the LR(1) test on the canonical LR(1) automaton (Knuth), reduces under each item's own look-aheads.
#pragma once

#include "analysers/LrAnalyser.h"

class Ana09LR final : public LrAnalyser {
public:
    explicit Ana09LR(Model& model);

protected:
    bool Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces) override;
};
