/// \file
/// The automata of the LR analysers: the LR(0) automaton (SLR(1) and LALR(1)
/// stand on it; its LALR(1) look-aheads are in LalrLookaheads.h) and the
/// canonical LR(1) automaton of Knuth. Both are built state by state in passes:
/// the pass frame shows progress, enforces the state and pass limits, and gives
/// the message loop a turn once per pass.
#pragma once

#include "model/IAnazer.h"
#include "analysers/LrItems.h"
#include "grammar/Indexed.h"
#include "model/Model.h"

#include <QElapsedTimer>
#include <cstdint>
#include <functional>
#include <vector>

/// The hash of a state's key in words (its kernel items and look-ahead bits),
/// for the maps that find a state by its key.
struct WordsHash {
    std::size_t operator()(const std::vector<std::uint64_t>& key) const noexcept
    {
        std::size_t h = key.size() * 0x9E3779B97F4A7C15ull;
        for (std::uint64_t v : key)
            h = (h ^ v) * 0x100000001B3ull;
        return h;
    }
};

/// A dense set of terminal codes 0..T (0 is the end marker).
class TerminalSet {
public:
    TerminalSet() = default;
    explicit TerminalSet(int terminals)
        : m_words((terminals + 64) / 64, 0)
    {
    }
    void Add(int t) { m_words[t >> 6] |= std::uint64_t{1} << (t & 63); }
    bool Contains(int t) const { return (m_words[t >> 6] >> (t & 63)) & 1; }
    /// Adds every member of other; true when anything was new.
    bool Merge(const TerminalSet& other)
    {
        std::uint64_t added = 0;
        for (int i = 0; i < m_words.size(); ++i) {
            const std::uint64_t before = m_words[i];
            m_words[i] |= other.m_words[i];
            added |= m_words[i] ^ before;
        }
        return added != 0;
    }
    bool IsEmpty() const
    {
        for (std::uint64_t w : m_words)
            if (w)
                return false;
        return true;
    }
    void Clear() { std::fill(m_words.begin(), m_words.end(), 0); }
    /// The members in ascending order.
    std::vector<int> Members() const;
    const std::vector<std::uint64_t>& Words() const { return m_words; }
    friend bool operator==(const TerminalSet& a, const TerminalSet& b) { return a.m_words == b.m_words; }

private:
    Indexed<std::uint64_t> m_words;  ///< bit t of word t / 64 set when t is a member
};

/// The state limit of every LR automaton.
constexpr int kMaxDfaState = 10000;

/// The pass loop shared by the LR analysers. Call Run after making state 0.
class PassFrame {
public:
    /// showPass: write "Pass: N" into the pass label (LALR(1)).
    PassFrame(Model& model, IAnazer& analyser, bool showPass);

    /// Expands state 0, then every state of each pass; expand(s) appends the new
    /// states it finds, count() tells how many there are. True when the
    /// automaton is complete; false after Stop or a limit (the message shown).
    bool Run(const std::function<void(int)>& expand, const std::function<int()>& count);

private:
    Model& m_model;
    IAnazer& m_analyser;
    bool m_showPass;
    QElapsedTimer m_started;
};

/// The LR(0) automaton: states are kernels of item sets.
struct Lr0Automaton {
    Indexed<std::vector<int>> kernels;  ///< by state: its kernel items, ascending
    Indexed<SparseRow> rows;            ///< by state: the transitions, by code
    Indexed<int> accessing;             ///< by state: the symbol that leads into it (-2 for state 0)
};

/// The canonical LR(1) automaton: a kernel item stands with its look-ahead set.
struct Lr1Automaton {
    Indexed<std::vector<int>> kernels;              ///< by state: kernel items, ascending
    Indexed<std::vector<TerminalSet>> lookaheads;   ///< by state, parallel to kernels
    Indexed<SparseRow> rows;                        ///< as in Lr0Automaton
    Indexed<int> accessing;
};

/// Grammar data the builders share: items, left corners, FIRST with the end marker.
class LrGrammar {
public:
    explicit LrGrammar(const Grammar& g);

    const Grammar& g;
    LrItems items;
    /// by non-terminal: the non-terminals that can begin it (itself included), in a fixed order.
    Indexed<std::vector<int>> leftCorners;
    /// by code: FIRST as a terminal set (terminals: themselves; the end marker written
    /// as "." in a rule counts as a terminal here).
    Indexed<TerminalSet> first;
    /// by item: FIRST of the symbols after the next one, and whether they are all nullable.
    Indexed<TerminalSet> tailFirst;
    Indexed<char> tailNullable;

    /// The items of a closure that are complete: kernel items at their end and the
    /// empty rules of the non-terminals the kernel can begin with.
    std::vector<int> CompleteItems(const std::vector<int>& kernel) const;
    /// Every item of the closure of a kernel, kernel first, then by rule.
    std::vector<int> Closure(const std::vector<int>& kernel) const;
    /// The non-terminals whose rules the closure of a kernel adds.
    std::vector<int> ClosureNonterminals(const std::vector<int>& kernel) const;

private:
    mutable Indexed<unsigned> m_mark;
    mutable unsigned m_stamp = 0;
};

/// Builds the LR(0) automaton through the pass frame. False after Stop or a limit.
bool BuildLr0(const LrGrammar& lg, PassFrame& frame, Lr0Automaton& automaton);

/// The closure of an LR(1) kernel: its non-terminals, each with one look-ahead
/// set that all its items share (seeded by the kernel items, then spread along
/// the left corners while what follows is nullable).
class Lr1Closure {
public:
    explicit Lr1Closure(const LrGrammar& lg);
    /// Computes the closure; returns its non-terminals.
    const std::vector<int>& Compute(const std::vector<int>& kernel, const std::vector<TerminalSet>& kernelLa);
    const TerminalSet& Lookahead(int nonterminal) const { return m_la[nonterminal]; }

private:
    const LrGrammar& m_lg;
    std::vector<int> m_nts;
    Indexed<TerminalSet> m_la;
    Indexed<char> m_queued;
    std::vector<int> m_work;
};

/// Builds the canonical LR(1) automaton through the pass frame.
bool BuildLr1(const LrGrammar& lg, PassFrame& frame, Lr1Automaton& automaton);
