/// \file
/// The kept results of the analysers: tables as data (read by the grid, the C
/// generator, the compiled grammar file and the JSON output) and texts.
#pragma once

#include "grammar/Grammar.h"
#include "model/Conflicts.h"

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

/// The three status texts copied from the window's labels after a run.
struct SavedStatus {
    QString state;
    QString pass;
    QString elapsed;
};

/// The LL(1) syntax table SYNTA: rows 0..N (the stack symbol), columns 0..T
/// (the look-ahead, 0 = end of text). A cell is empty, "ACC", "POP", or one or
/// more rule numbers in the order entered (more than one is a conflict).
class LLTable {
public:
    static constexpr int kEmpty = 0;
    static constexpr int kAcc = -1;
    static constexpr int kPop = -2;

    void Reset(int rows, int columns);
    void Clear() { Reset(0, 0); }
    /// The bytes Reset(rows, columns) asks for.
    static std::uint64_t Bytes(int rows, int columns)
    {
        return static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(columns) * sizeof(int);
    }
    int Rows() const { return m_rows; }
    int Columns() const { return m_columns; }

    /// Enters rule r; returns false when the cell already held something (a conflict).
    bool Enter(int row, int column, int r);
    void Set(int row, int column, int code) { m_first[Index(row, column)] = code; }
    /// kEmpty, kAcc, kPop or the first rule entered.
    int First(int row, int column) const { return m_first[Index(row, column)]; }
    /// Every rule entered into the cell, in order (empty for ACC/POP/empty cells).
    std::vector<int> Entries(int row, int column) const;
    bool IsConflict(int row, int column) const { return m_more.count(Index(row, column)) != 0; }
    /// "", "ACC", "POP", "7" or "2, 5".
    QString CellText(int row, int column) const;
    int ConflictCount() const { return static_cast<int>(m_more.size()); }

    friend bool operator==(const LLTable& a, const LLTable& b)
    {
        return a.m_rows == b.m_rows && a.m_columns == b.m_columns && a.m_first == b.m_first && a.m_more == b.m_more;
    }

private:
    std::size_t Index(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
    }
    int m_rows = 0;
    int m_columns = 0;
    std::vector<int> m_first;                               ///< rows x columns, row-major
    std::unordered_map<std::size_t, std::vector<int>> m_more; ///< conflict cells: the rules after the first

};

/// What the LL(1) analyser keeps between runs.
struct LLResults {
    LLTable synta;              ///< the syntax table
    QString text = NotAnalyzed; ///< the result text shown and exported
    SavedStatus saved;          ///< the status texts of the last run

    void Reset()
    {
        synta.Clear();
        text = NotAnalyzed;
        saved = SavedStatus();
    }
};

/// A precedence relation matrix: rows and columns 0..N (simple precedence) or
/// 0..T (operator precedence), row the left symbol, column the right one. Each
/// cell is a list of relation codes without duplicates, in order of first
/// insertion; two or more codes are a conflict. The codes come from the
/// settings ("PSignLT", "PSignEQ", "PSignGT") and may be negative or equal to
/// each other, so a cell is kept as the relations entered (two bits each, at
/// most three: one byte a cell) and compared by their codes.
class PrecedenceMatrix {
public:
    enum Relation { LT = 0, EQ = 1, GT = 2 };

    /// size x size empty cells; codes[LT], codes[EQ], codes[GT] are the relation codes.
    void Reset(int size, std::array<int, 3> codes);
    void Clear() { Reset(0, m_codes); }
    int Size() const { return m_size; }
    int Code(Relation relation) const { return m_codes[relation]; }

    /// Adds the relation's code to the cell unless the code is there; true when added.
    bool Add(int row, int column, Relation relation);
    /// The codes of the cell in order of first insertion.
    std::vector<int> Codes(int row, int column) const;
    bool IsEmpty(int row, int column) const { return m_cells[Index(row, column)] == 0; }
    bool IsConflict(int row, int column) const { return Count(m_cells[Index(row, column)]) > 1; }
    bool HasCode(int row, int column, int code) const;
    /// "-2, 1": the codes as signed decimals joined by ", "; "" for an empty cell.
    QString CellText(int row, int column) const;
    int ConflictCount() const;

    /// The relation codes the matrix was made with (LT, EQ, GT).
    const std::array<int, 3>& RelationCodes() const { return m_codes; }
    /// The cells as stored, row-major (the compiled grammar file keeps them so).
    const std::vector<std::uint8_t>& RawCells() const { return m_cells; }
    /// Restores the stored cells; false (nothing changed) when their number or a
    /// cell's encoding is not one this matrix can hold.
    bool SetRawCells(std::vector<std::uint8_t> cells);

private:
    static int Count(std::uint8_t cell) { return cell == 0 ? 0 : (cell & 0x0C) == 0 ? 1 : (cell & 0x30) == 0 ? 2 : 3; }
    std::size_t Index(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_size) + static_cast<std::size_t>(column);
    }
    int m_size = 0;
    std::array<int, 3> m_codes{-2, -1, 1};
    /// row-major; per cell up to three relations, each stored as relation + 1 in
    /// two bits, the first entered in the lowest bits; 0 is an empty cell.
    std::vector<std::uint8_t> m_cells;
};

/// What a precedence analyser keeps between runs (its flags and result text
/// live in Grammar::precedence, which the precedence step writes too).
struct PrecedenceResults {
    PrecedenceMatrix synta;  ///< the relation matrix
    SavedStatus saved;       ///< the status texts of the last run

    /// Rows (and columns) of the matrix: N+1 or T+1; 0 before a run.
    int Size() const { return synta.Size(); }
    /// The codes of a cell in order of first insertion (empty for an empty cell).
    std::vector<int> Cell(int row, int column) const { return synta.Codes(row, column); }

    void Reset()
    {
        synta.Clear();
        saved = SavedStatus();
    }
};

/// A row of an LR table kept sparse: (code, entry) pairs in ascending code
/// order; an absent code has the entry 0. Dense rows of the large grammars
/// would take tens of megabytes for cells that are mostly empty.
using SparseRow = std::vector<std::pair<int, int>>;

/// The entry of row for code (0 when absent).
int RowEntry(const SparseRow& row, int code);

/// The look-aheads an LR method keeps for one item of a state.
struct ItemLookahead {
    int item;                    ///< the item, numbered as LrItems does
    std::vector<int> terminals;  ///< its look-ahead codes, ascending (0 is the end marker)

    friend bool operator==(const ItemLookahead&, const ItemLookahead&) = default;
};
/// The look-aheads kept for the items of one state.
using StateLookaheads = std::vector<ItemLookahead>;

/// The items of a state whose look-aheads an LR method keeps.
enum class KeptLookaheads {
    /// SLR(1): none; its reduces are written under FOLLOWL.
    None,
    /// LALR(1): each complete item of the state's closure, that is its complete
    /// kernel items in kernel order, then the empty rules of the non-terminals
    /// the closure adds (LrGrammar::CompleteItems): the look-aheads its reduce
    /// is written under (an empty set for the accepting item of rule 0). Other
    /// items have none kept.
    Reduces,
    /// Canonical LR(1): each kernel item in kernel order, complete or not, with
    /// its LR(1) look-aheads; those of the closure's items follow from them
    /// (Lr1Closure).
    Kernel,
};

/// What an LR analyser (SLR(1), LALR(1), canonical LR(1)) keeps between runs.
/// The two texts are large for large automata; they are built from the kept
/// data when first asked for.
struct LrResults {
    Indexed<std::vector<int>> kernels;     ///< by state: kernel items (numbered as LrItems does)
    Indexed<SparseRow> rows;               ///< by state: shift/goto > 0, reduce < 0, absent 0, M+1 accept
    Indexed<int> accessing;                ///< by state: the symbol that leads into it (-2 for state 0)
    /// The reduces that could not be written, one record each, in the order met
    /// (model/Conflicts.h; the listing writes them as LrConflictText).
    std::vector<Conflict> conflicts;
    /// by state: the look-aheads of the items the method keeps them for, in
    /// the order KeptLookaheads gives; empty for SLR(1).
    Indexed<StateLookaheads> lookaheads;
    QString tableText = NotAnalyzed;  ///< verdict and table listing ("" until built)
    QString itemText = NotAnalyzed;   ///< verdict and item-set listing ("" until built)
    SavedStatus saved;

    int States() const { return static_cast<int>(rows.size()); }
    void Reset()
    {
        kernels.clear();
        rows.clear();
        accessing.clear();
        conflicts.clear();
        lookaheads.clear();
        tableText = itemText = NotAnalyzed;
        saved = SavedStatus();
    }
};
