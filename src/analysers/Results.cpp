/// \file
/// The LL(1) table representation.
#include "analysers/Results.h"

#include <algorithm>

void LLTable::Reset(int rows, int columns)
{
    m_rows = rows;
    m_columns = columns;
    m_first.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), kEmpty);
    m_more.clear();
}

bool LLTable::Enter(int row, int column, int r)
{
    int& first = m_first[Index(row, column)];
    if (first == kEmpty) {
        first = r;
        return true;
    }
    m_more[Index(row, column)].push_back(r);
    return false;
}

std::vector<int> LLTable::Entries(int row, int column) const
{
    const int first = First(row, column);
    if (first <= 0)
        return {};
    std::vector<int> entries{first};
    auto it = m_more.find(Index(row, column));
    if (it != m_more.end())
        entries.insert(entries.end(), it->second.begin(), it->second.end());
    return entries;
}

QString LLTable::CellText(int row, int column) const
{
    const int first = First(row, column);
    if (first == kEmpty)
        return QString();
    if (first == kAcc)
        return QStringLiteral("ACC");
    if (first == kPop)
        return QStringLiteral("POP");
    QString text = QString::number(first);
    auto it = m_more.find(Index(row, column));
    if (it != m_more.end())
        for (int r : it->second)
            text += QStringLiteral(", ") + QString::number(r);
    return text;
}

int RowEntry(const SparseRow& row, int code)
{
    auto it = std::lower_bound(row.begin(), row.end(), code,
                               [](const std::pair<int, int>& entry, int c) { return entry.first < c; });
    return it != row.end() && it->first == code ? it->second : 0;
}
