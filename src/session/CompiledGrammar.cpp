/// \file
/// The compiled grammar file: the tagged-value encoding, the one slot table
/// that TKCSave and TKCRead both walk, and the check that a restored state
/// belongs to the grammar text it was opened with.
#include "session/CompiledGrammar.h"

#include "analysers/LrItems.h"
#include "session/Workspace.h"
#include "storage/GrammarFile.h"

#include <QFile>
#include <QRegularExpression>
#include <type_traits>
#include <variant>

QString FileErrorDescription(int number)
{
    switch (number) {
    case FileErrorNumber::Overflow:
        return QStringLiteral("Overflow");
    case FileErrorNumber::OutOfMemory:
        return QStringLiteral("Out of memory");
    case FileErrorNumber::SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case FileErrorNumber::TypeMismatch:
        return QStringLiteral("Type mismatch");
    case FileErrorNumber::InputPastEnd:
        return QStringLiteral("Input past end of file");
    case FileErrorNumber::FileAccess:
        return QStringLiteral("Path/File access error");
    default:
        return QStringLiteral("Application-defined or object-defined error");
    }
}

void ReportFileError(Workspace& workspace, int number, const QString& source)
{
    Workspace::FileError& error = workspace.lastFileError;
    error.number = QString::number(number);
    error.description = FileErrorDescription(number);
    error.source = source;
    error.text = QStringLiteral("Error encountered: ") + error.number + QStringLiteral("\r\n") + error.description
               + QStringLiteral("\r\nSource: ") + source + QStringLiteral("\r\n");
    workspace.host().critical(error.text);
}

namespace {

using namespace FileErrorNumber;

// ---- The tagged-value encoding ------------------------------------------------

/// Type tags. An array tag has Array set and the element type in the low bits:
/// a 16-bit dimension count, per dimension a 32-bit count and a 32-bit lower
/// bound, then the elements with the first index varying fastest. Elements of
/// type Variant are complete tagged values; others are their data alone.
namespace Tag {
constexpr quint16 Empty = 0;
constexpr quint16 Null = 1;
constexpr quint16 Int16 = 2;
constexpr quint16 Int32 = 3;
constexpr quint16 Single = 4;
constexpr quint16 Double = 5;
constexpr quint16 Date = 7;  ///< 8 bytes, as a double
constexpr quint16 Text = 8;  ///< 16-bit byte count, then the UTF-8 bytes
constexpr quint16 Bool = 11; ///< 16 bits: 0 false, all bits set true
constexpr quint16 Variant = 12;
constexpr quint16 Byte = 17;
constexpr quint16 Array = 0x2000;
} // namespace Tag

const QByteArray kSignature = QByteArrayLiteral("\r\n2010 KAVEN TRELK");  // 18 bytes, no length field
constexpr qint32 kVersion = 1;
constexpr qsizetype kMaxTextBytes = 0xFFFF;
/// No grammar of ours comes near this many elements in one array: a count
/// beyond it is a damaged file, refused before anything is allocated.
constexpr quint64 kMaxElements = quint64{1} << 28;
/// Our values nest two deep; deeper nesting is a damaged file.
constexpr int kMaxDepth = 8;

/// A failure with its error number; thrown and caught inside this file only.
struct Failure {
    int number;
};
/// The file is of another format or version: stop without a message.
struct ForeignFile {};

class TkcWriter {
public:
    QByteArray bytes;

    void U16(quint16 v)
    {
        bytes.append(char(v & 0xFF));
        bytes.append(char(v >> 8));
    }
    void I32(qint32 v)
    {
        const quint32 u = static_cast<quint32>(v);
        for (int shift = 0; shift < 32; shift += 8)
            bytes.append(char((u >> shift) & 0xFF));
    }
    /// Text data: the byte count and the UTF-8 bytes. Never cut: too long is an error.
    void TextData(const QString& text)
    {
        const QByteArray utf8 = text.toUtf8();
        if (utf8.size() > kMaxTextBytes)
            throw Failure{Overflow};
        U16(static_cast<quint16>(utf8.size()));
        bytes.append(utf8);
    }
    void Text(const QString& text)
    {
        U16(Tag::Text);
        TextData(text);
    }
    void BoolData(bool value) { U16(value ? 0xFFFF : 0); }
    void Bool(bool value)
    {
        U16(Tag::Bool);
        BoolData(value);
    }
    void Int32(qint32 value)
    {
        U16(Tag::Int32);
        I32(value);
    }
    void ArrayHeader(quint16 elementTag, std::size_t count, qint32 lower)
    {
        U16(Tag::Array | elementTag);
        U16(1);
        I32(static_cast<qint32>(count));
        I32(lower);
    }
    void IntArray(const std::vector<int>& values, qint32 lower)
    {
        ArrayHeader(Tag::Int32, values.size(), lower);
        for (int v : values)
            I32(v);
    }
};

class TkcReader {
public:
    explicit TkcReader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    qsizetype Left() const { return m_bytes.size() - m_pos; }
    /// Up to n bytes ahead, without consuming them.
    QByteArray Peek(qsizetype n) const { return m_bytes.mid(m_pos, std::min(n, Left())); }
    QByteArray Bytes(qsizetype n)
    {
        Need(n);
        const QByteArray b = m_bytes.mid(m_pos, n);
        m_pos += n;
        return b;
    }
    quint16 U16()
    {
        Need(2);
        const auto* p = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
        m_pos += 2;
        return static_cast<quint16>(p[0] | (p[1] << 8));
    }
    qint32 I32()
    {
        Need(4);
        const auto* p = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
        m_pos += 4;
        return static_cast<qint32>(quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16)
                                   | (quint32(p[3]) << 24));
    }
    QString TextData()
    {
        const quint16 n = U16();
        return QString::fromUtf8(Bytes(n));
    }
    /// True/false data: any bits set read as true.
    bool BoolData() { return U16() != 0; }

    void ExpectTag(quint16 expected)
    {
        if (U16() != expected)
            throw Failure{TypeMismatch};
    }
    QString Text()
    {
        ExpectTag(Tag::Text);
        return TextData();
    }

    /// The rest of an array header whose tag has been read: the dimension count
    /// must be lowers.size() and each lower bound as given. Returns the counts,
    /// refused before anything is allocated when they cannot be real: more than
    /// kMaxElements elements, or more than the bytes left can hold at
    /// minElementBytes each.
    std::vector<std::size_t> Dimensions(std::initializer_list<qint32> lowers, int minElementBytes)
    {
        if (U16() != lowers.size())
            throw Failure{SubscriptOutOfRange};
        std::vector<std::size_t> counts;
        quint64 total = 1;
        for (qint32 lower : lowers) {
            const quint32 count = static_cast<quint32>(I32());
            if (I32() != lower)
                throw Failure{SubscriptOutOfRange};
            total *= count;
            if (total > kMaxElements)
                throw Failure{OutOfMemory};
            counts.push_back(count);
        }
        if (total * static_cast<quint64>(minElementBytes) > static_cast<quint64>(Left()))
            throw Failure{InputPastEnd};
        return counts;
    }
    /// A one-dimensional array of elementTag with the given lower bound; returns its count.
    std::size_t ArrayHeader(quint16 elementTag, qint32 lower, int minElementBytes)
    {
        ExpectTag(Tag::Array | elementTag);
        return Dimensions({lower}, minElementBytes)[0];
    }
    std::vector<int> IntArray(qint32 lower)
    {
        std::vector<int> values(ArrayHeader(Tag::Int32, lower, 4));
        for (int& v : values)
            v = I32();
        return values;
    }

    /// Passes over one complete tagged value of any kind (reserved slots).
    void SkipValue(int depth = 0)
    {
        const quint16 tag = U16();
        if (tag & Tag::Array) {
            const quint16 element = tag & ~Tag::Array;
            const int size = FixedSize(element);
            if (depth >= kMaxDepth || (size < 0 && element != Tag::Variant))
                throw Failure{TypeMismatch};
            const quint16 dims = U16();
            quint64 total = dims == 0 ? 0 : 1;
            for (quint16 d = 0; d < dims; ++d) {
                total *= static_cast<quint32>(I32());
                I32();
                if (total > kMaxElements)
                    throw Failure{OutOfMemory};
            }
            if (size == 0)
                return;  // empty or null elements have no data
            if (total * static_cast<quint64>(size < 0 ? 2 : size) > static_cast<quint64>(Left()))
                throw Failure{InputPastEnd};
            for (quint64 i = 0; i < total; ++i) {
                if (element == Tag::Variant)
                    SkipValue(depth + 1);
                else if (element == Tag::Text)
                    TextData();
                else
                    Bytes(size);
            }
            return;
        }
        if (tag == Tag::Text) {
            TextData();
            return;
        }
        const int size = FixedSize(tag);
        if (size < 0)
            throw Failure{TypeMismatch};
        Bytes(size);
    }

private:
    /// The data size of a scalar type; text counts as 2 (its count); -1 for no scalar type.
    static int FixedSize(quint16 tag)
    {
        switch (tag) {
        case Tag::Empty:
        case Tag::Null:
            return 0;
        case Tag::Byte:
            return 1;
        case Tag::Int16:
        case Tag::Bool:
        case Tag::Text:
            return 2;
        case Tag::Int32:
        case Tag::Single:
            return 4;
        case Tag::Double:
        case Tag::Date:
            return 8;
        default:
            return -1;
        }
    }
    void Need(qsizetype n) const
    {
        if (n > Left())
            throw Failure{InputPastEnd};
    }

    const QByteArray& m_bytes;
    qsizetype m_pos = 0;
};

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
#define TKC_FIELD(expr) [](Workspace& ws) -> auto& { return expr; }


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
/// given lower bound: rules (from 1, as rules are numbered), kernels and
/// look-ahead runs (from 0).
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

/// A set array: a list of general values from 0 (by code or by rule), each an
/// array of codes from 1, as set members are numbered.
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
/// index fastest): a cell is an integer (0 empty, -1 ACC, -2 POP, or a rule),
/// or for a conflict an array from 1 of every rule entered, in order.
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
                    out.Int32(table.First(row, column));
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
                if (tag == Tag::Int32) {
                    table.Set(row, column, in.I32());
                    continue;
                }
                if (tag != (Tag::Array | Tag::Int32))
                    throw Failure{TypeMismatch};
                const std::size_t count = in.Dimensions({1}, 4)[0];
                if (count == 0)
                    throw Failure{SubscriptOutOfRange};
                table.Set(row, column, in.I32());
                for (std::size_t i = 1; i < count; ++i)
                    table.Enter(row, column, in.I32());
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
        for (const SparseRow& row : rows) {
            out.ArrayHeader(Tag::Int32, row.size() * 2, 0);
            for (const auto& [code, entry] : row) {
                out.I32(code);
                out.I32(entry);
            }
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
/// symbols and look-ahead runs (when it has them) must all have that many entries.
struct StateCount {
    Field<LrResults> field;
    void Write(TkcWriter& out, Walk& w) const { out.I32(field(w.ws).States()); }
    void Read(TkcReader& in, Walk& w) const
    {
        const LrResults& r = field(w.ws);
        const std::size_t states = static_cast<std::size_t>(in.I32());
        if (states != r.rows.size() || states != r.kernels.size() || states != r.accessing.size()
            || (!r.lookaheads.empty() && states != r.lookaheads.size()))
            throw Failure{SubscriptOutOfRange};
    }
};

/// How a text too long for a text value (more than 65535 bytes) is kept.
enum class TextUse {
    Exact,  ///< it must be kept as it is: too long is an error (Overflow), never cut
    Remade, ///< the program makes it again: written as "", "build on demand"
};

/// A text slot. Remade texts: the reports and LR listings are built from the
/// kept data when first asked for, the grammar text by every Text() call; the
/// symbol listing and the LL(1) listing are made again by CheckRestoredState.
struct Text {
    Field<QString> field;
    TextUse use;
    void Write(TkcWriter& out, Walk& w) const
    {
        const QString& text = field(w.ws);
        // A UTF-16 unit takes at most three UTF-8 bytes: most texts need no measuring.
        const bool fits = text.size() * 3 <= kMaxTextBytes || text.toUtf8().size() <= kMaxTextBytes;
        out.Text(use == TextUse::Remade && !fits ? QString() : text);
    }
    void Read(TkcReader& in, Walk& w) const { field(w.ws) = in.Text(); }
};

/// Slot 49: the precedence analysers' state, a list 0..6 of general values:
/// 0 and 1 the simple-precedence matrix (its size and relation codes as an
/// integer array, its cells as a byte array, row-major, as PrecedenceMatrix
/// stores them), 2 and 3 the same for operator precedence, 4 the eight
/// precedence flags (possible, sets done, sets valid, table built; simple then
/// operator), 5 and 6 the two result texts. A result text too long for a text
/// value is written "", and on reading its analysis counts as not run: a
/// reopened grammar runs it again.
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
        for (const QString* text : {&p.sprText, &p.oprText})
            out.Text(text->toUtf8().size() <= kMaxTextBytes ? *text : QString());
    }
    void Read(TkcReader& in, Walk& w) const
    {
        Workspace& ws = w.ws;
        PrecedenceState& p = ws.grammar.precedence;
        if (in.ArrayHeader(Tag::Variant, 0, 2) != kItems)
            throw Failure{SubscriptOutOfRange};
        for (PrecedenceResults* r : {&ws.spr, &ws.opr}) {
            // Empty, or over every symbol (simple) / the end marker and the terminals (operator).
            const int full = r == &ws.spr ? ws.grammar.lastCode + 1 : ws.grammar.terminalCount + 1;
            const std::vector<int> head = in.IntArray(0);
            if (head.size() != 4 || (head[0] != 0 && head[0] != full))
                throw Failure{SubscriptOutOfRange};
            const std::size_t count = in.ArrayHeader(Tag::Byte, 0, 1);
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
        // A listing that did not fit: the analysis runs again when asked for.
        if (p.sprText.isEmpty() && p.sprTableBuilt) {
            p.sprTableBuilt = false;
            ws.grammar.SetFlag(GrammarFlag::AnalysedSPR, false);
        }
        if (p.oprText.isEmpty() && p.oprTableBuilt) {
            p.oprTableBuilt = false;
            ws.grammar.SetFlag(GrammarFlag::AnalysedOPR, false);
        }
    }
};

using Binding = std::variant<Signature, Version, WalkText, ParsedList, Counter, TextArray<std::vector<QString>>,
                             LrConflictLines, Marks, Flags, IntLists, Sets, LLCells, Rows, Ints, StateCount,
                             Text, Precedence>;

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
    {43, IntLists{TKC_FIELD(ws.lalr.lookaheads), 0}},
    {44, IntLists{TKC_FIELD(ws.lr.kernels), 0}},  // canonical LR(1), by state
    {45, Rows{TKC_FIELD(ws.lr.rows)}},
    {46, Ints{TKC_FIELD(ws.lr.accessing)}},
    {47, LrConflictLines{TKC_FIELD(ws.lr.conflicts), ConflictMethod::LR}},
    {48, IntLists{TKC_FIELD(ws.lr.lookaheads), 0}},
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

// ---- The check of a restored state ----------------------------------------------

/// The grammar part restored is what a parse of the text gives. The parse is
/// the only writer of these fields and of flags 0, 2, 22, 23 and 24.
bool SameParse(const Grammar& g, const Grammar& p)
{
    for (int flag : {GrammarFlag::Parsed, GrammarFlag::FirstDone, GrammarFlag::NoEqualRightSides,
                     GrammarFlag::HasEmptyRule, GrammarFlag::LeftRecursive})
        if (g.GetFlag(flag) != p.GetFlag(flag))
            return false;
    // An empty symbol listing was too long to keep: the caller takes the parse's.
    return g.Parsed() && g.symbolNames == p.symbolNames && g.rules == p.rules && g.terminalNames == p.terminalNames
        && g.nonterminalNames == p.nonterminalNames && g.ruleCount == p.ruleCount && g.lastCode == p.lastCode
        && g.terminalCount == p.terminalCount && g.firstNonterminal == p.firstNonterminal && g.goal == p.goal
        && g.ruleIsEmpty == p.ruleIsEmpty && g.hasEmptyRule == p.hasEmptyRule && g.nullable == p.nullable
        && g.leftRecursive == p.leftRecursive && g.ruleNullable == p.ruleNullable
        && g.maxRuleLength == p.maxRuleLength && g.maxTerminalName == p.maxTerminalName
        && g.maxNonterminalName == p.maxNonterminalName && g.maxName == p.maxName && g.first == p.first
        && g.firstOfRule == p.firstOfRule && g.directFirst == p.directFirst && g.llRejection == p.llRejection
        && (g.symbolListing == p.symbolListing || g.symbolListing.isEmpty());
}

/// Every member of every set is a code of the grammar; a set array that its
/// flag says is computed has one set per code.
bool SetsWithin(const std::vector<CodeList>& sets, const Grammar& g, bool computed)
{
    const std::size_t codes = static_cast<std::size_t>(g.lastCode) + 1;
    if (sets.size() > codes || (computed && sets.size() != codes))
        return false;
    for (const CodeList& set : sets)
        for (int code : set)
            if (code > g.lastCode)
                return false;
    return true;
}

bool LLTableWithin(const LLTable& table, const Grammar& g)
{
    if (table.Rows() != g.lastCode + 1 || table.Columns() != g.terminalCount + 1)
        return false;
    for (int row = 0; row < table.Rows(); ++row)
        for (int column = 0; column < table.Columns(); ++column) {
            const int first = table.First(row, column);
            if (first > g.ruleCount || first < LLTable::kPop || (first <= 0 && table.IsConflict(row, column)))
                return false;
            for (int r : table.Entries(row, column))
                if (r < 1 || r > g.ruleCount)
                    return false;
        }
    return true;
}

bool LrResultsWithin(const LrResults& r, const Grammar& g, int itemCount)
{
    const std::size_t states = r.rows.size();
    if (states == 0 || r.kernels.size() != states || r.accessing.size() != states
        || (!r.lookaheads.empty() && r.lookaheads.size() != states))
        return false;
    const int accept = static_cast<int>(states);
    for (std::size_t s = 0; s < states; ++s) {
        int previous = -1;
        for (const auto& [code, entry] : r.rows[s]) {
            if (code <= previous || code > g.lastCode || entry < -g.ruleCount || entry > accept)
                return false;
            previous = code;
        }
        for (int item : r.kernels[s])
            if (item < 0 || item >= itemCount)
                return false;
        if (r.accessing[s] < -2 || r.accessing[s] > g.lastCode)
            return false;
        if (r.lookaheads.empty())
            continue;
        // Runs of "item, count, members...".
        const std::vector<int>& runs = r.lookaheads[s];
        for (std::size_t i = 0; i < runs.size();) {
            if (i + 1 >= runs.size() || runs[i] < 0 || runs[i] >= itemCount || runs[i + 1] < 0
                || static_cast<std::size_t>(runs[i + 1]) > runs.size() - i - 2)
                return false;
            const std::size_t end = i + 2 + static_cast<std::size_t>(runs[i + 1]);
            for (i += 2; i < end; ++i)
                if (runs[i] < 0 || runs[i] > g.terminalCount)
                    return false;
        }
    }
    // Each refused reduce names a filled cell of a state on a terminal.
    for (const Conflict& c : r.conflicts)
        if (c.row < 0 || static_cast<std::size_t>(c.row) >= states || c.column < 0 || c.column > g.terminalCount
            || c.rejected.size() != 1 || c.rejected[0] >= 0 || c.rejected[0] < -g.ruleCount || c.kept == 0)
            return false;
    return true;
}

/// The analysers' results lie within the grammar, for every analysis the
/// flags say has run. Takes the texts that were too long to keep from the
/// parse, or has their analysis run again.
bool AnalysesWithin(Workspace& ws, const Grammar& parsed)
{
    Grammar& g = ws.grammar;
    if (g.symbolListing.isEmpty())
        g.symbolListing = parsed.symbolListing;
    if (!SetsWithin(g.followB, g, g.GetFlag(GrammarFlag::FollowBDone))
        || !SetsWithin(g.followL, g, g.GetFlag(GrammarFlag::FollowLDone))
        || !SetsWithin(g.followR, g, g.GetFlag(GrammarFlag::FollowRDone)))
        return false;
    for (const auto* sets : {&g.leftSet, &g.rightSet, &g.leftTermSet, &g.rightTermSet})
        if (!SetsWithin(*sets, g, false))
            return false;

    if (g.GetFlag(GrammarFlag::AnalysedLL)) {
        if (!LLTableWithin(ws.ll.synta, g))
            return false;
        if (ws.ll.text.isEmpty()) {
            // Its listing was too long to keep: LL(1) runs again when asked for,
            // with the permission the parse gave (a conflict verdict clears it).
            ws.ll.Reset();
            g.SetFlag(GrammarFlag::AnalysedLL, false);
            g.SetFlagValue(GrammarFlag::LLPermitted, parsed.FlagValue(GrammarFlag::LLPermitted));
        }
    }
    const int itemCount = LrItems(g).Count();
    const std::tuple<const LrResults*, int, int> lrs[] = {{&ws.slr, GrammarFlag::AnalysedSLR, GrammarFlag::SLRVerdict},
                                                    {&ws.lalr, GrammarFlag::AnalysedLALR, GrammarFlag::LALRVerdict},
                                                    {&ws.lr, GrammarFlag::AnalysedLR, GrammarFlag::LRVerdict}};
    // A table's verdict is that it has no conflict.
    for (const auto& [results, flag, verdict] : lrs)
        if (g.GetFlag(flag)
            && (!LrResultsWithin(*results, g, itemCount) || g.GetFlag(verdict) != results->conflicts.empty()))
            return false;
    return true;
}

} // namespace

bool TKCSave(Workspace& workspace, const QString& path, const QString& grammarPath, const QString& grammarName)
{
    QFile::remove(path);  // no file to delete is no failure
    Walk walk{workspace, grammarName, grammarPath};
    try {
        TkcWriter out;
        out.bytes.reserve(1 << 16);
        for (const Slot& slot : kSlots)
            std::visit([&](const auto& binding) { binding.Write(out, walk); }, slot.binding);
        QString error;
        if (!WriteWholeFile(path, out.bytes, error))
            throw Failure{FileAccess};
    } catch (const Failure& failure) {
        ReportFileError(workspace, failure.number, QStringLiteral("TKCSave"));
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
    try {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            throw Failure{FileAccess};
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError)
            throw Failure{FileAccess};
        TkcReader in(bytes);
        for (const Slot& slot : kSlots)
            std::visit([&](const auto& binding) { binding.Read(in, walk); }, slot.binding);
    } catch (const ForeignFile&) {
        return TkcReadResult::Foreign;
    } catch (const Failure& failure) {
        ReportFileError(workspace, failure.number, QStringLiteral("TKCRead"));
        result = TkcReadResult::Failed;
    }
    // The file keeps only the refused reduces; what each cell kept is in the rows.
    for (LrResults* results : {&workspace.slr, &workspace.lalr, &workspace.lr})
        for (Conflict& c : results->conflicts)
            if (c.row >= 0 && static_cast<std::size_t>(c.row) < results->rows.size()) {
                c.kept = RowEntry(results->rows[static_cast<std::size_t>(c.row)], c.column);
                c.kind = c.kept < 0 ? ConflictKind::ReduceReduce : ConflictKind::ShiftReduce;
            }
    grammarName = walk.grammarName;
    grammarPath = walk.grammarPath;
    return result;
}

bool CheckRestoredState(Workspace& workspace, const QString& text)
{
    Grammar parsed;  // a silent host: the caller's own parse shows any message
    if (parsed.SetText(text) && SameParse(workspace.grammar, parsed) && AnalysesWithin(workspace, parsed))
        return true;
    workspace.grammar.Clear();
    workspace.ResetResults();
    return false;
}
