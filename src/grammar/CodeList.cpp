/// \file
/// CodeList operations that are not worth inlining.
#include "grammar/CodeList.h"

#include <algorithm>

bool CodeList::Merge(const CodeList& other)
{
    bool added = false;
    for (int c : other.m_items)
        added |= Add(c);
    return added;
}

void CodeList::Sort()
{
    std::sort(m_items.begin(), m_items.end());
}

void CodeList::GrowDown(std::size_t word)
{
    const std::size_t reach = m_base > m_bits.size() ? m_base - m_bits.size() : 0;
    const std::size_t base = std::min(word, reach);
    m_bits.insert(m_bits.begin(), m_base - base, 0);
    m_base = base;
}
