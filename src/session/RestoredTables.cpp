/// \file
/// The check of a restored LR table against the grammar: the automaton is
/// walked once from the kept kernels, each state's transitions and reduces are
/// worked out as the analyser works them out, and what the file holds must be
/// the same to the last entry.
#include "session/RestoredTables.h"

#include "analysers/LalrLookaheads.h"
#include "analysers/LrAnalyser.h"
#include "analysers/LrAutomaton.h"

#include <unordered_map>

namespace {

/// A state's name as the builders name it: its kernel items, each followed by
/// the words of its look-ahead set when the state has one (canonical LR(1)).
void StateKey(std::vector<std::uint64_t>& key, const std::vector<int>& kernel, const std::vector<TerminalSet>* las)
{
    key.clear();
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        key.push_back(static_cast<std::uint64_t>(kernel[i]));
        if (las) {
            const auto& words = (*las)[i].Words();
            key.insert(key.end(), words.begin(), words.end());
        }
    }
}

bool StrictlyAscending(const std::vector<int>& values)
{
    for (std::size_t i = 1; i < values.size(); ++i)
        if (values[i] <= values[i - 1])
            return false;
    return true;
}

/// An analyser frame for the look-ahead computation: never stopped.
class CheckRun final : public IAnazer {
public:
    CheckRun() { SetInProcess(true); }
    bool Analyze() override { return false; }
    QString TableDisplay() override { return QString(); }
    QString ExportDisplay() override { return QString(); }
};

} // namespace

bool LrTableHolds(const LrResults& r, const LrGrammar& lg, ConflictMethod method, const std::vector<CodeList>& followR)
{
    const Grammar& g = lg.g;
    const LrItems& items = lg.items;
    const int states = r.States();
    const int t = g.terminalCount;
    const bool lr1 = method == ConflictMethod::LR;
    const bool lalr = method == ConflictMethod::LALR;
    if (states == 0 || r.kernels.size() != states || r.accessing.size() != states
        || r.lookaheads.size() != ((lr1 || lalr) ? states : 0))
        return false;
    if (r.kernels[0] != std::vector<int>{items.Item(0, 0)} || r.accessing[0] != -2)
        return false;

    // The kept look-ahead sets, and every state under its name.
    Indexed<std::vector<TerminalSet>> kernelLa(lr1 ? states : 0);
    std::unordered_map<std::vector<std::uint64_t>, int, WordsHash> index;
    index.reserve(static_cast<std::size_t>(states));
    std::vector<std::uint64_t> key;
    for (int s = 0; s < states; ++s) {
        const std::vector<int>& kernel = r.kernels[s];
        if (kernel.empty() || !StrictlyAscending(kernel))
            return false;
        for (int item : kernel)
            if (item < 0 || item >= items.Count())
                return false;
        if (lr1 || lalr) {
            const StateLookaheads& kept = r.lookaheads[s];
            const std::vector<int> owners = lr1 ? kernel : lg.CompleteItems(kernel);
            if (kept.size() != owners.size())
                return false;
            for (std::size_t i = 0; i < kept.size(); ++i) {
                if (kept[i].item != owners[i] || !StrictlyAscending(kept[i].terminals))
                    return false;
                for (int x : kept[i].terminals)
                    if (x < 0 || x > t)
                        return false;
            }
        }
        if (lr1) {
            std::vector<TerminalSet>& las = kernelLa[s];
            for (const ItemLookahead& kept : r.lookaheads[s]) {
                las.emplace_back(t);
                for (int x : kept.terminals)
                    las.back().Add(x);
            }
        }
        StateKey(key, kernel, lr1 ? &kernelLa[s] : nullptr);
        if (!index.try_emplace(key, s).second)
            return false;  // two states of one name
    }
    if (lr1 && r.lookaheads[0].front().terminals != std::vector<int>{0})
        return false;

    // Each state's transitions, as the builders find them.
    const int codes = g.lastCode + 1;
    Indexed<SparseRow> transitions(states);
    Indexed<char> reached(states, 0);
    reached[0] = 1;
    Lr1Closure closure(lg);
    struct Entry {
        int item;
        const TerminalSet* la;
    };
    Indexed<std::vector<Entry>> bucket(codes);
    std::vector<int> touched, kernel;
    std::vector<TerminalSet> las;
    for (int s = 0; s < states; ++s) {
        const std::vector<int>& from = r.kernels[s];
        auto put = [&](int symbol, int item, const TerminalSet* la) {
            if (bucket[symbol].empty())
                touched.push_back(symbol);
            bucket[symbol].push_back({item, la});
        };
        for (std::size_t i = 0; i < from.size(); ++i)
            if (!items.Complete(from[i]))
                put(items.Next(from[i]), from[i] + 1, lr1 ? &kernelLa[s][i] : nullptr);
        const std::vector<int> nts = lr1 ? closure.Compute(from, kernelLa[s]) : lg.ClosureNonterminals(from);
        for (int nt : nts)
            for (int rule : items.RulesOf(nt))
                if (items.Length(rule) > 0) {
                    const int c = items.Item(rule, 0);
                    put(items.Next(c), c + 1, lr1 ? &closure.Lookahead(nt) : nullptr);
                }
        std::sort(touched.begin(), touched.end());
        for (int x : touched) {
            std::vector<Entry>& b = bucket[x];
            std::sort(b.begin(), b.end(), [](const Entry& a, const Entry& c) { return a.item < c.item; });
            kernel.clear();
            las.clear();
            for (const Entry& e : b) {
                kernel.push_back(e.item);
                if (lr1)
                    las.push_back(*e.la);
            }
            b.clear();
            // The row names the target, except where the accept entry took the
            // place of a move on the end marker: then the target is looked up.
            int target = RowEntry(r.rows[s], x);
            if (target <= 0 || target >= states || r.kernels[target] != kernel
                || (lr1 && kernelLa[target] != las)) {
                StateKey(key, kernel, lr1 ? &las : nullptr);
                const auto found = index.find(key);
                if (found == index.end())
                    return false;
                target = found->second;
            }
            if (r.accessing[target] != x)
                return false;
            transitions[s].emplace_back(x, target);
            reached[target] = 1;
        }
        touched.clear();
    }
    for (char seen : reached)
        if (!seen)
            return false;

    // The look-aheads of each state's reduces, in the order the analyser writes them.
    ReduceLookaheads lalrSets;
    if (lalr) {
        Lr0Automaton automaton{r.kernels, transitions, r.accessing};
        Model quiet;
        CheckRun run;
        if (!ComputeLalrLookaheads(lg, automaton, quiet, run, lalrSets))
            return false;
    }
    auto reducesOf = [&](int s) {
        std::vector<std::pair<int, std::vector<int>>> reduces;
        const std::vector<int>& from = r.kernels[s];
        if (method == ConflictMethod::SLR) {
            for (int item : lg.CompleteItems(from)) {
                const int rule = items.Rule(item);
                const int left = g.rules[rule][0];
                reduces.emplace_back(rule, left > 0 ? followR[left].Items() : std::vector<int>());
            }
        } else if (lalr) {
            for (const auto& [rule, set] : lalrSets[s])
                reduces.emplace_back(rule, set.Members());
        } else {
            for (std::size_t i = 0; i < from.size(); ++i)
                if (items.Complete(from[i]))
                    reduces.emplace_back(items.Rule(from[i]), r.lookaheads[s][i].terminals);
            for (int nt : closure.Compute(from, kernelLa[s]))
                for (int rule : items.RulesOf(nt))
                    if (items.Length(rule) == 0)
                        reduces.emplace_back(rule, closure.Lookahead(nt).Members());
        }
        return reduces;
    };
    if (lalr)
        for (int s = 0; s < states; ++s)
            for (std::size_t i = 0; i < r.lookaheads[s].size(); ++i)
                if (r.lookaheads[s][i].terminals != lalrSets[s][i].second.Members())
                    return false;

    // The rows and refused reduces that writing the reduces gives.
    const int accept = states;
    const int acceptState = RowEntry(transitions[0], g.goal);
    std::vector<int> dense(static_cast<std::size_t>(codes), 0);
    std::size_t conflict = 0;
    for (int s = 0; s < states; ++s) {
        bool agrees = true;
        const SparseRow row = WriteRow(transitions[s], s == acceptState && acceptState > 0 ? accept : 0, reducesOf(s),
                                       dense, touched, [&](int column, int kept, int rejected) {
                                           const Conflict* c = conflict < r.conflicts.size() ? &r.conflicts[conflict++]
                                                                                              : nullptr;
                                           agrees = agrees && c && c->row == s && c->column == column
                                                 && c->kept == kept && c->rejected == std::vector<int>{rejected};
                                       });
        if (!agrees || row != r.rows[s])
            return false;
    }
    return conflict == r.conflicts.size();
}
