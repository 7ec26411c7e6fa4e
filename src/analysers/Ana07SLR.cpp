/// \file
/// The SLR(1) analyser.
#include "analysers/Ana07SLR.h"

Ana07SLR::Ana07SLR(Model& model)
    : LrAnalyser(model, model.slr,
                 {GrammarFlag::AnalysedSLR, GrammarFlag::SLRVerdict, "SLR", "This Grammar Is Not SLR(1).", false, ConflictMethod::SLR})
{
}

bool Ana07SLR::Prepare()
{
    Grammar& g = m_model.grammar;
    if (!g.GetFlag(GrammarFlag::FollowRDone)) {
        g.SetInProcess(true);
        g.FindFollowB();
        g.FindFollowR();
    }
    return g.GetFlag(GrammarFlag::FollowRDone);
}

bool Ana07SLR::Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces)
{
    Lr0Automaton automaton;
    if (!BuildLr0(lg, frame, automaton))
        return false;
    const Grammar& g = lg.g;
    reduces.assign(automaton.kernels.size(), {});
    for (std::size_t s = 0; s < reduces.size(); ++s)
        for (int item : lg.CompleteItems(automaton.kernels[s])) {
            const int rule = lg.items.Rule(item);
            const int left = g.rules[rule][0];
            // Under FOLLOWR of the left side, in the set's order.
            reduces[s].emplace_back(rule, left > 0 ? g.followR[left].Items() : std::vector<int>());
        }
    m_results.kernels = std::move(automaton.kernels);
    m_results.rows = std::move(automaton.rows);
    m_results.accessing = std::move(automaton.accessing);
    return true;
}
