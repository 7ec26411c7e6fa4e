/// \file
/// CodeList: a list of symbol codes without duplicates, in order of first
/// insertion, with a dense bit set beside it so that membership is O(1).
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
        if (word >= m_bits.size())
            m_bits.resize(word + 1, 0);
        const std::uint64_t mask = std::uint64_t{1} << (code & 63);
        if (m_bits[word] & mask)
            return false;
        m_bits[word] |= mask;
        m_items.push_back(code);
        return true;
    }

    bool Contains(int code) const
    {
        const std::size_t word = static_cast<std::size_t>(code) >> 6;
        return code >= 0 && word < m_bits.size() && (m_bits[word] >> (code & 63)) & 1;
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
                m_bits[static_cast<std::size_t>(c) >> 6] &= ~(std::uint64_t{1} << (c & 63));
        m_items.swap(kept);
    }

    void Clear()
    {
        m_items.clear();
        m_bits.clear();
    }

    int Count() const { return static_cast<int>(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }
    int operator[](int i) const { return m_items[i]; }
    const std::vector<int>& Items() const { return m_items; }
    std::vector<int>::const_iterator begin() const { return m_items.begin(); }
    std::vector<int>::const_iterator end() const { return m_items.end(); }

    /// Same members in the same order.
    friend bool operator==(const CodeList& a, const CodeList& b) { return a.m_items == b.m_items; }

private:
    std::vector<int> m_items;           ///< members in order of first insertion
    std::vector<std::uint64_t> m_bits;  ///< bit c set when code c is a member
};
