/// \file
/// The slot table of the compiled grammar file: the one list of the 85 slots
/// that TKCSave writes and TKCRead reads back, each binding a workspace field
/// to the values of the codec (storage/TkcCodec.h).
#include "session/TkcSlots.h"

#include "session/CompiledGrammar.h"
#include "session/Workspace.h"
#include "storage/GrammarFile.h"

#include <QFile>
#include <QRegularExpression>
#include <type_traits>
#include <variant>

namespace {

using namespace FileErrorNumber;
using namespace Tkc;

// ---- What the slots hold -------------------------------------------------------

/// What a walk over the slots carries besides the workspace: the two texts that
/// TKCSave is given and TKCRead gives back.
struct Walk {
    Workspace& ws;
    QString grammarName;
    QString grammarPath;
};

/// A slot's place in the workspace, as a function from the workspace to the field.
template <typename T>
using Field = T& (*)(Workspace&);
#define TKC_FIELD(expr) [](Workspace& ws) -> auto& { return AsStored(expr); }

/// The value a slot binds: an Indexed table is bound as the std::vector it is.
template <typename T>
auto& AsStored(T& value)
{
    if constexpr (requires { typename T::Base; })
        return static_cast<typename T::Base&>(value);
    else
        return value;
}


/// Slot 1: the 18 signature bytes. A file that does not start with them (a
/// short file that does is merely cut) is of another format.
struct Signature {
    void Write(TkcWriter& out, Walk&) const { out.bytes.append(kSignature); }
    void Read(TkcReader& in, Walk&) const
    {
        // On purpose: another format is ignored without a message.
        if (!kSignature.startsWith(in.Peek(kSignature.size())))
            throw ForeignFile{};
        in.Bytes(kSignature.size());
    }
};

/// Slot 2: the format version, a raw 32-bit integer; another version is ignored silently.
struct Version {
    void Write(TkcWriter& out, Walk&) const { out.I32(kVersion); }
    void Read(TkcReader& in, Walk&) const
    {
        if (in.I32() != kVersion)
            throw ForeignFile{};  // on purpose: silently, as for another format
    }
};

/// Slots 3 and 85: the texts TKCSave is given and TKCRead gives back.
struct WalkText {
    QString Walk::*member;
    void Write(TkcWriter& out, Walk& w) const { out.Text(w.*member); }
    void Read(TkcReader& in, Walk& w) const { w.*member = in.Text(); }
};

/// Slot 4: Grammar::Parsed, as a list 0..0 of one true/false value.
struct ParsedList {
    void Write(TkcWriter& out, Walk& w) const
    {
        out.ArrayHeader(Tag::Variant, 1, 0);
        out.Bool(w.ws.grammar.Parsed());
    }
    void Read(TkcReader& in, Walk& w) const
    {
        if (in.ArrayHeader(Tag::Variant, 0, 2) != 1)
            throw Failure{SubscriptOutOfRange};
        in.ExpectTag(Tag::Bool);
        w.ws.grammar.SetParsed(in.BoolData());
    }
};

/// A raw 32-bit counter.
struct Counter {
    Field<int> field;
    void Write(TkcWriter& out, Walk& w) const { out.I32(field(w.ws)); }
    void Read(TkcReader& in, Walk& w) const { field(w.ws) = in.I32(); }
};

/// An array of texts (names, conflict lines) with its lower bound.
template <typename List>
struct TextArray {
    Field<List> field;
    qint32 lower;
    void Write(TkcWriter& out, Walk& w) const
    {
        const List& list = field(w.ws);
        out.ArrayHeader(Tag::Text, static_cast<std::size_t>(list.size()), lower);
        for (const QString& text : list)
            out.TextData(text);
    }
    void Read(TkcReader& in, Walk& w) const
    {
        const std::size_t count = in.ArrayHeader(Tag::Text, lower, 2);
        List list;
        list.reserve(static_cast<qsizetype>(count));
        for (std::size_t i = 0; i < count; ++i)
            list.push_back(in.TextData());
        field(w.ws) = std::move(list);
    }
};

/// The refused reduces of an LR table: written as the listing's lines, read
/// back into records. A line of another shape gives a record that no state
/// holds, so the restored state is discarded (LrResultsWithin); what the cell
/// kept is filled in there, once the rows are read.
struct LrConflictLines {
    Field<std::vector<Conflict>> field;
    ConflictMethod method;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<Conflict>& conflicts = field(w.ws);
        out.ArrayHeader(Tag::Text, conflicts.size(), 0);
        for (const Conflict& conflict : conflicts)
            out.TextData(LrConflictText(conflict));
    }
    void Read(TkcReader& in, Walk& w) const
    {
        static const QRegularExpression line(QStringLiteral("^Unable to write reduce (-\\d+) in \\[(\\d+),(\\d+)\\]\\.$"));
        const std::size_t count = in.ArrayHeader(Tag::Text, 0, 2);
        std::vector<Conflict> conflicts;
        conflicts.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const QRegularExpressionMatch m = line.match(in.TextData());
            Conflict conflict{method, -1, 0, 0, {0}, ConflictKind::ShiftReduce};
            bool rowOk = false, columnOk = false, entryOk = false;
            if (m.hasMatch()) {
                conflict.rejected = {m.captured(1).toInt(&entryOk)};
                conflict.row = m.captured(2).toInt(&rowOk);
                conflict.column = m.captured(3).toInt(&columnOk);
            }
            if (!(rowOk && columnOk && entryOk))
                conflict.row = -1;
            conflicts.push_back(std::move(conflict));
        }
        field(w.ws) = std::move(conflicts);
    }
};

/// An array of true/false marks, from 0.
struct Marks {
    Field<std::vector<char>> field;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<char>& marks = field(w.ws);
        out.ArrayHeader(Tag::Bool, marks.size(), 0);
        for (char m : marks)
            out.BoolData(m != 0);
    }
    void Read(TkcReader& in, Walk& w) const
    {
        std::vector<char> marks(in.ArrayHeader(Tag::Bool, 0, 2));
        for (char& m : marks)
            m = in.BoolData() ? 1 : 0;
        field(w.ws) = std::move(marks);
    }
};

/// Slot 22: the 32 grammar-wide flags, a list 0..31 of general values, each
/// empty (never written) or true/false.
struct Flags {
    void Write(TkcWriter& out, Walk& w) const
    {
        out.ArrayHeader(Tag::Variant, GrammarFlag::Count, 0);
        for (int i = 0; i < GrammarFlag::Count; ++i) {
            const std::optional<bool> value = w.ws.grammar.FlagValue(i);
            if (value)
                out.Bool(*value);
            else
                out.U16(Tag::Empty);
        }
    }
    void Read(TkcReader& in, Walk& w) const
    {
        if (in.ArrayHeader(Tag::Variant, 0, 2) != GrammarFlag::Count)
            throw Failure{SubscriptOutOfRange};
        Grammar& g = w.ws.grammar;
        for (int i = 0; i < GrammarFlag::Count; ++i) {
            const quint16 tag = in.U16();
            if (tag == Tag::Empty)
                g.SetFlagValue(i, std::nullopt);
            else if (tag == Tag::Bool)
                g.SetFlagValue(i, in.BoolData());
            else
                throw Failure{TypeMismatch};
        }
    }
};

/// A list of general values from 0, each an array of 32-bit integers with the
/// given lower bound: rules (from 1, as rules are numbered) and kernels (from 0).
struct IntLists {
    Field<std::vector<std::vector<int>>> field;
    qint32 innerLower;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<std::vector<int>>& lists = field(w.ws);
        out.ArrayHeader(Tag::Variant, lists.size(), 0);
        for (const std::vector<int>& list : lists)
            out.IntArray(list, innerLower);
    }
    void Read(TkcReader& in, Walk& w) const
    {
        std::vector<std::vector<int>> lists(in.ArrayHeader(Tag::Variant, 0, 2));
        for (std::vector<int>& list : lists)
            list = in.IntArray(innerLower);
        field(w.ws) = std::move(lists);
    }
};

/// The look-aheads an LR method keeps: a list of general values from 0 (by
/// state), each an array from 0 of runs "item, count, terminals..." laid out
/// one after the other. A run whose count is negative or reaches past its
/// array is read as an entry of item -1, which no grammar has, so the restored
/// state is discarded (LrResultsWithin) as for any other number out of range.
struct Lookaheads {
    Field<std::vector<StateLookaheads>> field;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<StateLookaheads>& states = field(w.ws);
        out.ArrayHeader(Tag::Variant, states.size(), 0);
        std::vector<int> runs;
        for (const StateLookaheads& state : states) {
            runs.clear();
            for (const ItemLookahead& kept : state) {
                runs.push_back(kept.item);
                runs.push_back(static_cast<int>(kept.terminals.size()));
                runs.insert(runs.end(), kept.terminals.begin(), kept.terminals.end());
            }
            out.IntArray(runs, 0);
        }
    }
    void Read(TkcReader& in, Walk& w) const
    {
        std::vector<StateLookaheads> states(in.ArrayHeader(Tag::Variant, 0, 2));
        for (StateLookaheads& state : states) {
            const std::vector<int> runs = in.IntArray(0);
            for (std::size_t i = 0; i < runs.size();) {
                const std::size_t left = runs.size() - i;
                if (left < 2 || runs[i + 1] < 0 || static_cast<std::size_t>(runs[i + 1]) > left - 2) {
                    state.push_back({-1, {}});
                    break;
                }
                const auto first = runs.begin() + static_cast<std::ptrdiff_t>(i) + 2;
                state.push_back({runs[i], std::vector<int>(first, first + runs[i + 1])});
                i += 2 + static_cast<std::size_t>(runs[i + 1]);
            }
        }
        field(w.ws) = std::move(states);
    }
};

/// A set array: a list of general values from 0 (by code or by rule), each an
/// array of codes from 1, as set members are numbered. Integer arrays here and
/// below are written in the narrowest integer type that holds them (bytes,
/// 16-bit, 32-bit) and read in any of them.
struct Sets {
    Field<std::vector<CodeList>> field;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<CodeList>& sets = field(w.ws);
        out.ArrayHeader(Tag::Variant, sets.size(), 0);
        for (const CodeList& set : sets)
            out.IntArray(set.Items(), 1);
    }
    void Read(TkcReader& in, Walk& w) const
    {
        // A code list keeps a bit per code up to its largest member: members are
        // held to the restored symbol table, so that a damaged file cannot make
        // it allocate more than the file is long.
        const int codes = static_cast<int>(w.ws.grammar.symbolNames.size());
        std::vector<CodeList> sets(in.ArrayHeader(Tag::Variant, 0, 2));
        for (CodeList& set : sets)
            for (int code : in.IntArray(1)) {
                if (code < 0 || code >= codes)
                    throw Failure{SubscriptOutOfRange};
                set.Add(code);
            }
        field(w.ws) = std::move(sets);
    }
};

/// Slot 34: the LL(1) table, a rows x columns array of general values (first
/// index fastest): a cell is an integer (0 empty, -1 ACC, -2 POP, or a rule;
/// 16-bit when it fits), or for a conflict an array from 1 of every rule
/// entered, in order.
struct LLCells {
    void Write(TkcWriter& out, Walk& w) const
    {
        const LLTable& table = w.ws.ll.synta;
        out.U16(Tag::Array | Tag::Variant);
        out.U16(2);
        out.I32(table.Rows());
        out.I32(0);
        out.I32(table.Columns());
        out.I32(0);
        for (int column = 0; column < table.Columns(); ++column)
            for (int row = 0; row < table.Rows(); ++row) {
                if (table.IsConflict(row, column))
                    out.IntArray(table.Entries(row, column), 1);
                else
                    out.Integer(table.First(row, column));
            }
    }
    void Read(TkcReader& in, Walk& w) const
    {
        in.ExpectTag(Tag::Array | Tag::Variant);
        const std::vector<std::size_t> counts = in.Dimensions({0, 0}, 2);
        const int rows = static_cast<int>(counts[0]);
        const int columns = static_cast<int>(counts[1]);
        LLTable& table = w.ws.ll.synta;
        table.Reset(rows, columns);
        for (int column = 0; column < columns; ++column)
            for (int row = 0; row < rows; ++row) {
                const quint16 tag = in.U16();
                qint32 value = 0;
                if (in.IntegerAfterTag(tag, value)) {
                    table.Set(row, column, value);
                    continue;
                }
                const std::vector<int> entries = in.IntArrayAfterTag(tag, 1);
                if (entries.empty())
                    throw Failure{SubscriptOutOfRange};
                table.Set(row, column, entries[0]);
                for (std::size_t i = 1; i < entries.size(); ++i)
                    table.Enter(row, column, entries[i]);
            }
    }
};

/// LR rows: a list of general values from 0 (by state), each an array from 0 of
/// the row's (code, entry) pairs laid out one after the other.
struct Rows {
    Field<std::vector<SparseRow>> field;
    void Write(TkcWriter& out, Walk& w) const
    {
        const std::vector<SparseRow>& rows = field(w.ws);
        out.ArrayHeader(Tag::Variant, rows.size(), 0);
        std::vector<int> flat;
        for (const SparseRow& row : rows) {
            flat.clear();
            for (const auto& [code, entry] : row) {
                flat.push_back(code);
                flat.push_back(entry);
            }
            out.IntArray(flat, 0);
        }
    }
    void Read(TkcReader& in, Walk& w) const
    {
        std::vector<SparseRow> rows(in.ArrayHeader(Tag::Variant, 0, 2));
        for (SparseRow& row : rows) {
            const std::vector<int> flat = in.IntArray(0);
            if (flat.size() % 2 != 0)
                throw Failure{SubscriptOutOfRange};
            row.reserve(flat.size() / 2);
            for (std::size_t i = 0; i < flat.size(); i += 2)
                row.emplace_back(flat[i], flat[i + 1]);
        }
        field(w.ws) = std::move(rows);
    }
};

/// An array of 32-bit integers from 0.
struct Ints {
    Field<std::vector<int>> field;
    void Write(TkcWriter& out, Walk& w) const { out.IntArray(field(w.ws), 0); }
    void Read(TkcReader& in, Walk& w) const { field(w.ws) = in.IntArray(0); }
};

/// Slots 64-66: an LR analyser's state count, raw. Its kernels, rows, accessing
/// symbols and look-aheads (when it keeps them) must all have that many entries.
struct StateCount {
    Field<LrResults> field;
    void Write(TkcWriter& out, Walk& w) const { out.I32(field(w.ws).States()); }
    void Read(TkcReader& in, Walk& w) const
    {
        const LrResults& r = field(w.ws);
        const qint32 states = in.I32();
        if (states != r.rows.size() || states != r.kernels.size() || states != r.accessing.size()
            || (!r.lookaheads.empty() && states != r.lookaheads.size()))
            throw Failure{SubscriptOutOfRange};
    }
};

/// How a text slot is kept.
enum class TextUse {
    Exact,  ///< it must be kept as it is: too long is an error (Overflow), never cut
    Remade, ///< the program makes it again from the kept data: always written as ""
};

/// A text slot. Remade texts: the reports and LR listings are built from the
/// kept data when first asked for, the grammar text by every Text() call; the
/// symbol listing and the LL(1) listing are made again by CheckRestoredState,
/// which also puts aside whatever such a slot holds (files of earlier builds
/// kept them).
struct Text {
    Field<QString> field;
    TextUse use;
    void Write(TkcWriter& out, Walk& w) const { out.Text(use == TextUse::Remade ? QString() : field(w.ws)); }
    void Read(TkcReader& in, Walk& w) const { field(w.ws) = in.Text(); }
};

/// Slot 49: the precedence analysers' state, a list 0..6 of general values:
/// 0 and 1 the simple-precedence matrix (its size and relation codes as an
/// integer array, its cells as a byte array, row-major, as PrecedenceMatrix
/// stores them), 2 and 3 the same for operator precedence, 4 the eight
/// precedence flags (possible, sets done, sets valid, table built; simple then
/// operator), 5 and 6 the two result texts. The result text of a built matrix
/// is written "": CheckRestoredState makes it again from the matrix.
struct Precedence {
    static constexpr int kItems = 7;
    void Write(TkcWriter& out, Walk& w) const
    {
        Workspace& ws = w.ws;
        PrecedenceState& p = ws.grammar.precedence;
        out.ArrayHeader(Tag::Variant, kItems, 0);
        for (const PrecedenceResults* r : {&ws.spr, &ws.opr}) {
            const std::array<int, 3>& codes = r->synta.RelationCodes();
            out.IntArray({r->synta.Size(), codes[0], codes[1], codes[2]}, 0);
            const std::vector<std::uint8_t>& cells = r->synta.RawCells();
            out.ArrayHeader(Tag::Byte, cells.size(), 0);
            out.bytes.append(reinterpret_cast<const char*>(cells.data()), static_cast<qsizetype>(cells.size()));
        }
        const bool flags[8] = {p.sprPossible,  p.sprSetsDone,  p.sprSetsValid,  p.sprTableBuilt,
                               p.oprPossible,  p.oprSetsDone,  p.oprSetsValid,  p.oprTableBuilt};
        out.ArrayHeader(Tag::Bool, 8, 0);
        for (bool f : flags)
            out.BoolData(f);
        out.Text(p.sprTableBuilt ? QString() : p.sprText);
        out.Text(p.oprTableBuilt ? QString() : p.oprText);
    }
    void Read(TkcReader& in, Walk& w) const
    {
        Workspace& ws = w.ws;
        PrecedenceState& p = ws.grammar.precedence;
        if (in.ArrayHeader(Tag::Variant, 0, 2) != kItems)
            throw Failure{SubscriptOutOfRange};
        for (PrecedenceResults* r : {&ws.spr, &ws.opr}) {
            // Empty, or over every symbol (simple) / the end marker and the terminals
            // (operator). The counts are as read, unchecked: no arithmetic in int.
            const qint64 full = r == &ws.spr ? qint64{ws.grammar.lastCode} + 1 : qint64{ws.grammar.terminalCount} + 1;
            const std::vector<int> head = in.IntArray(0);
            if (head.size() != 4 || head[0] < 0 || (head[0] != 0 && head[0] != full))
                throw Failure{SubscriptOutOfRange};
            const std::size_t count = in.ArrayHeader(Tag::Byte, 0, 1);
            // The cells come before the matrix is made, so that its size is one the file holds.
            if (static_cast<quint64>(count) != quint64(head[0]) * quint64(head[0]))
                throw Failure{SubscriptOutOfRange};
            const QByteArray raw = in.Bytes(static_cast<qsizetype>(count));
            r->synta.Reset(head[0], {head[1], head[2], head[3]});
            if (!r->synta.SetRawCells(std::vector<std::uint8_t>(raw.begin(), raw.end())))
                throw Failure{SubscriptOutOfRange};
        }
        if (in.ArrayHeader(Tag::Bool, 0, 2) != 8)
            throw Failure{SubscriptOutOfRange};
        bool* flags[8] = {&p.sprPossible,  &p.sprSetsDone,  &p.sprSetsValid,  &p.sprTableBuilt,
                          &p.oprPossible,  &p.oprSetsDone,  &p.oprSetsValid,  &p.oprTableBuilt};
        for (bool* f : flags)
            *f = in.BoolData();
        p.sprText = in.Text();
        p.oprText = in.Text();
    }
};

using Binding = std::variant<Signature, Version, WalkText, ParsedList, Counter, TextArray<std::vector<QString>>,
                             LrConflictLines, Marks, Flags, IntLists, Lookaheads, Sets, LLCells, Rows, Ints,
                             StateCount, Text, Precedence>;

struct Slot {
    int number;  ///< 1..85, for reference: slots are not numbered in the file
    Binding binding;
};

constexpr TextUse Exact = TextUse::Exact;
constexpr TextUse Remade = TextUse::Remade;

// The one slot table: TKCSave writes these slots in this order and TKCRead
// restores each into the very field it was written from.
const Slot kSlots[] = {
    {1, Signature{}},  // CR LF "2010 KAVEN TRELK"
    {2, Version{}},  // 1
    {3, WalkText{&Walk::grammarName}},  // the grammar's Name
    {4, ParsedList{}},  // Grammar::Parsed(), list 0..0
    // The grammar model.
    {5, TextArray<std::vector<QString>>{TKC_FIELD(ws.grammar.symbolNames), -2}},  // names by code, -2..last
    {6, TextArray<std::vector<QString>>{TKC_FIELD(ws.grammar.terminalNames), 0}},
    {7, TextArray<std::vector<QString>>{TKC_FIELD(ws.grammar.nonterminalNames), 0}},
    {8, IntLists{TKC_FIELD(ws.grammar.rules), 1}},  // rules 0..R: left side, right side
    {9, Marks{TKC_FIELD(ws.grammar.ruleIsEmpty)}},  // by rule
    {10, Marks{TKC_FIELD(ws.grammar.hasEmptyRule)}},  // by code
    {11, Marks{TKC_FIELD(ws.grammar.nullable)}},  // by code
    {12, Marks{TKC_FIELD(ws.grammar.leftRecursive)}},  // by code
    {13, Marks{TKC_FIELD(ws.grammar.ruleNullable)}},  // by rule
    {14, Counter{TKC_FIELD(ws.grammar.ruleCount)}},  // R
    {15, Counter{TKC_FIELD(ws.grammar.lastCode)}},  // T + N
    {16, Counter{TKC_FIELD(ws.grammar.terminalCount)}},  // T
    {17, Counter{TKC_FIELD(ws.grammar.firstNonterminal)}},  // T + 1
    {18, Counter{TKC_FIELD(ws.grammar.goal)}},
    {19, Counter{TKC_FIELD(ws.grammar.maxRuleLength)}},
    {20, Counter{TKC_FIELD(ws.grammar.maxTerminalName)}},
    {21, Counter{TKC_FIELD(ws.grammar.maxNonterminalName)}},
    {22, Flags{}},  // the 32 flags
    {23, Counter{TKC_FIELD(ws.grammar.maxName)}},  // The sets.
    {24, Sets{TKC_FIELD(ws.grammar.first)}},  // by code
    {25, Sets{TKC_FIELD(ws.grammar.firstOfRule)}},  // by rule
    {26, Sets{TKC_FIELD(ws.grammar.followB)}},  // by code
    {27, Sets{TKC_FIELD(ws.grammar.followL)}},
    {28, Sets{TKC_FIELD(ws.grammar.followR)}},
    {29, Sets{TKC_FIELD(ws.grammar.directFirst)}},
    {30, Sets{TKC_FIELD(ws.grammar.leftSet)}},
    {31, Sets{TKC_FIELD(ws.grammar.rightSet)}},
    {32, Sets{TKC_FIELD(ws.grammar.leftTermSet)}},
    {33, Sets{TKC_FIELD(ws.grammar.rightTermSet)}},  // The analysers' tables.
    {34, LLCells{}},  // LL(1) SYNTA
    {35, IntLists{TKC_FIELD(ws.slr.kernels), 0}},  // SLR(1), by state
    {36, Rows{TKC_FIELD(ws.slr.rows)}},
    {37, Ints{TKC_FIELD(ws.slr.accessing)}},
    {38, LrConflictLines{TKC_FIELD(ws.slr.conflicts), ConflictMethod::SLR}},
    {39, IntLists{TKC_FIELD(ws.lalr.kernels), 0}},  // LALR(1), by state
    {40, Rows{TKC_FIELD(ws.lalr.rows)}},
    {41, Ints{TKC_FIELD(ws.lalr.accessing)}},
    {42, LrConflictLines{TKC_FIELD(ws.lalr.conflicts), ConflictMethod::LALR}},
    {43, Lookaheads{TKC_FIELD(ws.lalr.lookaheads)}},
    {44, IntLists{TKC_FIELD(ws.lr.kernels), 0}},  // canonical LR(1), by state
    {45, Rows{TKC_FIELD(ws.lr.rows)}},
    {46, Ints{TKC_FIELD(ws.lr.accessing)}},
    {47, LrConflictLines{TKC_FIELD(ws.lr.conflicts), ConflictMethod::LR}},
    {48, Lookaheads{TKC_FIELD(ws.lr.lookaheads)}},
    {49, Precedence{}},  // the precedence matrices, flags and result texts
    // Texts.
    {50, Text{TKC_FIELD(ws.grammar.grammarText), Remade}},
    {51, Text{TKC_FIELD(ws.grammar.symbolListing), Remade}},
    {52, Text{TKC_FIELD(ws.grammar.firstReport), Remade}},
    {53, Text{TKC_FIELD(ws.grammar.followBReport), Remade}},
    {54, Text{TKC_FIELD(ws.grammar.followLReport), Remade}},
    {55, Text{TKC_FIELD(ws.grammar.followRReport), Remade}},
    {56, Text{TKC_FIELD(ws.grammar.llRejection), Exact}},
    {57, Text{TKC_FIELD(ws.ll.text), Remade}},
    {58, Text{TKC_FIELD(ws.slr.tableText), Remade}},
    {59, Text{TKC_FIELD(ws.slr.itemText), Remade}},
    {60, Text{TKC_FIELD(ws.lalr.tableText), Remade}},
    {61, Text{TKC_FIELD(ws.lalr.itemText), Remade}},
    {62, Text{TKC_FIELD(ws.lr.tableText), Remade}},
    {63, Text{TKC_FIELD(ws.lr.itemText), Remade}},
    {64, StateCount{TKC_FIELD(ws.slr)}},
    {65, StateCount{TKC_FIELD(ws.lalr)}},
    {66, StateCount{TKC_FIELD(ws.lr)}},  // The saved status texts (state, pass, elapsed) of the six analysers.
    {67, Text{TKC_FIELD(ws.ll.saved.state), Exact}},
    {68, Text{TKC_FIELD(ws.ll.saved.pass), Exact}},
    {69, Text{TKC_FIELD(ws.ll.saved.elapsed), Exact}},
    {70, Text{TKC_FIELD(ws.slr.saved.state), Exact}},
    {71, Text{TKC_FIELD(ws.slr.saved.pass), Exact}},
    {72, Text{TKC_FIELD(ws.slr.saved.elapsed), Exact}},
    {73, Text{TKC_FIELD(ws.lalr.saved.state), Exact}},
    {74, Text{TKC_FIELD(ws.lalr.saved.pass), Exact}},
    {75, Text{TKC_FIELD(ws.lalr.saved.elapsed), Exact}},
    {76, Text{TKC_FIELD(ws.lr.saved.state), Exact}},
    {77, Text{TKC_FIELD(ws.lr.saved.pass), Exact}},
    {78, Text{TKC_FIELD(ws.lr.saved.elapsed), Exact}},
    {79, Text{TKC_FIELD(ws.spr.saved.state), Exact}},
    {80, Text{TKC_FIELD(ws.spr.saved.pass), Exact}},
    {81, Text{TKC_FIELD(ws.spr.saved.elapsed), Exact}},
    {82, Text{TKC_FIELD(ws.opr.saved.state), Exact}},
    {83, Text{TKC_FIELD(ws.opr.saved.pass), Exact}},
    {84, Text{TKC_FIELD(ws.opr.saved.elapsed), Exact}},
    {85, WalkText{&Walk::grammarPath}},  // the grammar file's full path
};
static_assert(std::extent_v<decltype(kSlots)> == 85, "the file has 85 slots");

#undef TKC_FIELD

} // namespace

bool TKCSave(Workspace& workspace, const QString& path, const QString& grammarPath, const QString& grammarName)
{
    QFile::remove(path);  // no file to delete is no failure
    Walk walk{workspace, grammarName, grammarPath};
    QString error;
    try {
        TkcWriter out;
        out.bytes.reserve(1 << 16);
        for (const Slot& slot : kSlots)
            std::visit([&](const auto& binding) { binding.Write(out, walk); }, slot.binding);
        if (!WriteWholeFile(path, out.bytes, error))
            throw Failure{FileAccess};
    } catch (const Failure& failure) {
        ReportFileError(workspace, failure.number, QStringLiteral("TKCSave"), error);
        return false;
    }
    return true;
}

TkcReadResult TKCRead(Workspace& workspace, const QString& path, QString& grammarPath, QString& grammarName)
{
    if (!QFile::exists(path))
        return TkcReadResult::Missing;
    Walk walk{workspace, QString(), QString()};
    TkcReadResult result = TkcReadResult::Restored;
    QString readError;  // the file and the system's reason when the file itself fails
    try {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            readError = QStringLiteral("Cannot read ") + path + QStringLiteral(": ") + file.errorString();
            throw Failure{FileAccess};
        }
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            readError = QStringLiteral("Cannot read ") + path + QStringLiteral(": ") + file.errorString();
            throw Failure{FileAccess};
        }
        TkcReader in(bytes);
        for (const Slot& slot : kSlots)
            std::visit([&](const auto& binding) { binding.Read(in, walk); }, slot.binding);
    } catch (const ForeignFile&) {
        return TkcReadResult::Foreign;
    } catch (const Failure& failure) {
        ReportFileError(workspace, failure.number, QStringLiteral("TKCRead"), readError);
        result = TkcReadResult::Failed;
    }
    // The file keeps only the refused reduces; what each cell kept is in the rows.
    for (LrResults* results : {&workspace.slr, &workspace.lalr, &workspace.lr})
        for (Conflict& c : results->conflicts)
            if (c.row >= 0 && c.row < results->rows.size()) {
                c.kept = RowEntry(results->rows[c.row], c.column);
                c.kind = c.kept < 0 ? ConflictKind::ReduceReduce : ConflictKind::ShiftReduce;
            }
    grammarName = walk.grammarName;
    grammarPath = walk.grammarPath;
    return result;
}
