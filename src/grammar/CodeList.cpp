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
