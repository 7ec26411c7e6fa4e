/// \file
/// Ana07SLR: the SLR(1) test on the LR(0) automaton, reduces under FOLLOWR of the rule's left side.
#pragma once

#include "analysers/LrAnalyser.h"

class Ana07SLR final : public LrAnalyser {
public:
    explicit Ana07SLR(Model& model);

protected:
    bool Prepare() override;
    bool Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces) override;
};
