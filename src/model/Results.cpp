/// \file
/// The LL(1) table and the precedence matrix representations.
#include "model/Results.h"

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

void PrecedenceMatrix::Reset(int size, std::array<int, 3> codes)
{
    m_size = size;
    m_codes = codes;
    m_cells.assign(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), 0);
}

bool PrecedenceMatrix::Add(int row, int column, Relation relation)
{
    std::uint8_t& cell = m_cells[Index(row, column)];
    const int count = Count(cell);
    for (int i = 0; i < count; ++i)
        if (m_codes[static_cast<std::size_t>(((cell >> (2 * i)) & 3) - 1)] == m_codes[relation])
            return false;
    cell = static_cast<std::uint8_t>(cell | ((relation + 1) << (2 * count)));
    return true;
}

bool PrecedenceMatrix::SetRawCells(std::vector<std::uint8_t> cells)
{
    if (cells.size() != static_cast<std::size_t>(m_size) * static_cast<std::size_t>(m_size))
        return false;
    for (std::uint8_t cell : cells) {
        // Up to three relations, two bits each from the lowest, none after an empty place.
        if (cell & 0xC0)
            return false;
        bool ended = false;
        for (int i = 0; i < 3; ++i) {
            const int relation = (cell >> (2 * i)) & 3;
            if (relation == 0)
                ended = true;
            else if (ended)
                return false;
        }
    }
    m_cells = std::move(cells);
    return true;
}

std::vector<int> PrecedenceMatrix::Codes(int row, int column) const
{
    const std::uint8_t cell = m_cells[Index(row, column)];
    std::vector<int> codes;
    for (int i = 0; i < Count(cell); ++i)
        codes.push_back(m_codes[static_cast<std::size_t>(((cell >> (2 * i)) & 3) - 1)]);
    return codes;
}

bool PrecedenceMatrix::HasCode(int row, int column, int code) const
{
    const std::uint8_t cell = m_cells[Index(row, column)];
    for (int i = 0; i < Count(cell); ++i)
        if (m_codes[static_cast<std::size_t>(((cell >> (2 * i)) & 3) - 1)] == code)
            return true;
    return false;
}

QString PrecedenceMatrix::CellText(int row, int column) const
{
    QString text;
    for (int code : Codes(row, column)) {
        if (!text.isEmpty())
            text += QStringLiteral(", ");
        text += QString::number(code);
    }
    return text;
}

int PrecedenceMatrix::ConflictCount() const
{
    int conflicts = 0;
    for (std::uint8_t cell : m_cells)
        conflicts += Count(cell) > 1;
    return conflicts;
}
