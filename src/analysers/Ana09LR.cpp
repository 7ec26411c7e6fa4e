/// \file
/// The canonical LR(1) analyser.
#include "analysers/Ana09LR.h"

Ana09LR::Ana09LR(Model& model)
    : LrAnalyser(model, model.lr,
                 {GrammarFlag::AnalysedLR, GrammarFlag::LRVerdict, "LR", "This Grammar Is Not LR(1).", false, ConflictMethod::LR,
                  KeptLookaheads::Kernel})
{
}

bool Ana09LR::Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces)
{
    Lr1Automaton automaton;
    if (!BuildLr1(lg, frame, automaton))
        return false;
    const LrItems& items = lg.items;
    const std::size_t states = automaton.kernels.size();
    reduces.assign(states, {});
    m_results.lookaheads.assign(states, {});
    Lr1Closure closure(lg);
    for (std::size_t s = 0; s < states; ++s) {
        // A closure per state over tens of thousands of states: Stop is heard between them.
        m_model.host().yield();
        if (!InProcess())
            return false;
        const std::vector<int>& kernel = automaton.kernels[s];
        const std::vector<TerminalSet>& kernelLa = automaton.lookaheads[s];
        StateLookaheads& kept = m_results.lookaheads[s];
        kept.reserve(kernel.size());
        // Every kernel item keeps its look-aheads (the item listing shows them);
        // complete ones reduce under them.
        for (std::size_t i = 0; i < kernel.size(); ++i) {
            std::vector<int> members = kernelLa[i].Members();
            if (items.Complete(kernel[i]))
                reduces[s].emplace_back(items.Rule(kernel[i]), members);
            kept.push_back({kernel[i], std::move(members)});
        }
        // Empty rules of the closure reduce under the look-aheads of their non-terminal.
        for (int nt : closure.Compute(kernel, kernelLa))
            for (int r : items.RulesOf(nt))
                if (items.Length(r) == 0)
                    reduces[s].emplace_back(r, closure.Lookahead(nt).Members());
    }
    m_results.kernels = std::move(automaton.kernels);
    m_results.rows = std::move(automaton.rows);
    m_results.accessing = std::move(automaton.accessing);
    return true;
}
