/// \file
/// CodeList: a list of symbol codes without duplicates, in order of first
/// insertion, with a dense bit set beside it so that membership is O(1). The
/// bit set spans only the words between the lowest and the highest member, so
/// that a set of a few high codes (the non-terminals that start the rules of
/// one non-terminal, in a grammar of 100,000 symbols) takes a few words, not
/// a bit for every code below them.
#pragma once

#include <cstdint>
#include <vector>

/// All grammar sets, and the cells of the LL(1) and precedence tables, are
/// code lists. Codes are non-negative (0 is the end marker). Positions are
/// 0-based here; reports and the compiled file number members from 1.
class CodeList {
public:
    /// Appends code unless it is present; returns true when it was appended.
    bool Add(int code)
    {
        const std::size_t word = static_cast<std::size_t>(code) >> 6;
        if (m_bits.empty())
            m_base = word;
        if (word < m_base)
            GrowDown(word);
        if (word - m_base >= m_bits.size())
            m_bits.resize(word - m_base + 1, 0);
        std::uint64_t& bits = m_bits[word - m_base];
        const std::uint64_t mask = std::uint64_t{1} << (code & 63);
        if (bits & mask)
            return false;
        bits |= mask;
        m_items.push_back(code);
        return true;
    }

    bool Contains(int code) const
    {
        const std::size_t word = static_cast<std::size_t>(code) >> 6;
        return code >= 0 && word >= m_base && word - m_base < m_bits.size()
            && (m_bits[word - m_base] >> (code & 63)) & 1;
    }

    /// Adds every member of other, in other's order; true when anything was added.
    bool Merge(const CodeList& other);

    /// Replaces the members by the same codes in ascending order.
    void Sort();

    /// Keeps only the members for which keep(code) holds, in their order.
    template <typename Pred>
    void Filter(Pred keep)
    {
        std::vector<int> kept;
        kept.reserve(m_items.size());
        for (int c : m_items)
            if (keep(c))
                kept.push_back(c);
            else
                m_bits[(static_cast<std::size_t>(c) >> 6) - m_base] &= ~(std::uint64_t{1} << (c & 63));
        m_items.swap(kept);
    }

    void Clear()
    {
        m_items.clear();
        m_bits.clear();
        m_base = 0;
    }

    int Count() const { return static_cast<int>(m_items.size()); }
    /// The heap memory the list holds (members and bits, as allocated).
    std::size_t Bytes() const { return m_items.capacity() * sizeof(int) + m_bits.capacity() * sizeof(std::uint64_t); }
    bool IsEmpty() const { return m_items.empty(); }
    int operator[](int i) const { return m_items[i]; }
    const std::vector<int>& Items() const { return m_items; }
    std::vector<int>::const_iterator begin() const { return m_items.begin(); }
    std::vector<int>::const_iterator end() const { return m_items.end(); }

    /// Same members in the same order.
    friend bool operator==(const CodeList& a, const CodeList& b) { return a.m_items == b.m_items; }

private:
    /// Extends the bit set down to word, by at least its own size (so that
    /// members added in falling order cost amortised constant time).
    void GrowDown(std::size_t word);

    std::vector<int> m_items;           ///< members in order of first insertion
    std::vector<std::uint64_t> m_bits;  ///< bit c % 64 of word c / 64 - m_base set when code c is a member
    std::size_t m_base = 0;             ///< the word of the lowest code m_bits covers
};
