/// \file
/// The LALR(1) analyser.
#include "analysers/Ana08LALR.h"

Ana08LALR::Ana08LALR(Model& model)
    : LrAnalyser(model, model.lalr,
                 {GrammarFlag::AnalysedLALR, GrammarFlag::LALRVerdict, "LALR", "This Grammar Is Not LALR(1).", true, ConflictMethod::LALR,
                  KeptLookaheads::Reduces})
{
}

bool Ana08LALR::Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces)
{
    Lr0Automaton automaton;
    if (!BuildLr0(lg, frame, automaton))
        return false;
    ReduceLookaheads lookaheads;
    if (!ComputeLalrLookaheads(lg, automaton, m_model, *this, lookaheads))
        return false;
    const std::vector<std::vector<int>>& kernels = automaton.kernels;
    reduces.assign(kernels.size(), {});
    m_results.lookaheads.assign(kernels.size(), {});
    for (std::size_t s = 0; s < kernels.size(); ++s) {
        const std::vector<int> complete = lg.CompleteItems(kernels[s]);
        StateLookaheads& kept = m_results.lookaheads[s];
        kept.reserve(complete.size());
        for (std::size_t i = 0; i < complete.size(); ++i) {
            std::vector<int> members = lookaheads[s][i].second.Members();
            reduces[s].emplace_back(lookaheads[s][i].first, members);
            kept.push_back({complete[i], std::move(members)});
        }
    }
    m_results.kernels = std::move(automaton.kernels);
    m_results.rows = std::move(automaton.rows);
    m_results.accessing = std::move(automaton.accessing);
    return true;
}
