// The compiled grammar file: the round trip of a fully analysed workspace, the
// file layout, foreign and damaged companions, stale companions, texts too long
// for a text value, and saving and opening a grammar with its companion.
#include "analysers/LrAnalyser.h"
#include "session/CompiledGrammar.h"
#include "storage/GrammarFile.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "session/OpenSave.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

// Not LL(1) (two conflict cells), not SLR(1) (two refused reduces), LALR(1) and
// LR(1) with look-aheads, an empty rule and nullable non-terminals.
const char* const kSample[] = {"<S>", "<S>=<A>[a]", "<S>=[b]<A>[c]", "<S>=[d][c]", "<S>=[b][d][a]",
                               "<A>=[d]", "<A>=<B>", "<B>=."};

QString SampleText()
{
    QString text;
    for (const char* line : kSample)
        text += QString::fromLatin1(line) + QStringLiteral("\r\n");
    return text;
}

/// Runs Analyse on every view, as the window would, and asks for every listing
/// so that the texts built on demand are there to be kept.
void AnalyseAll(Workspace& ws, const QString& text)
{
    RecordingFrontend frontend(text);
    for (int view = View::Grammar; view < View::Count; ++view)
        Analyse(ws, frontend, view);
    for (int view : {View::SLR, View::LALR, View::LR}) {
        auto analyser = MakeAnalyser(ws, view);
        analyser->ExportDisplay();
        static_cast<LrAnalyser&>(*analyser).ItemDisplay();
    }
    ws.grammar.CommentedFirst();
    ws.grammar.CommentedBasis();
    ws.grammar.CommentedFollowL();
    ws.grammar.CommentedFollowR();
}

bool AnyAnalysisKept(const Grammar& g)
{
    for (int view = View::LL; view <= View::OPR; ++view)
        if (g.GetFlag(view))
            return true;
    return g.Parsed();
}

TEST(CompiledGrammar, RoundTripRestoresEveryKeptResult)
{
    Workspace a;
    AnalyseAll(a, SampleText());
    a.ll.saved = {QStringLiteral("state ü"), QStringLiteral("Pass: 1"), QStringLiteral("0,001")};
    a.grammar.SetFlagValue(30, false);  // false and never written are kept apart
    // The sample exercises every shape the file has.
    ASSERT_EQ(a.ll.synta.ConflictCount(), 2);
    ASSERT_EQ(a.slr.conflicts.size(), 2u);
    ASSERT_FALSE(a.lalr.lookaheads.empty());
    ASSERT_FALSE(a.lr.itemText.isEmpty());

    const QString path = ScratchDir(QStringLiteral("tkc-roundtrip")) + QStringLiteral("/g.tkc");
    RecordingHost host;
    a.setHost(&host);
    ASSERT_TRUE(TKCSave(a, path, QStringLiteral("/some/where/g.tkg"), QStringLiteral("g")));
    Workspace b(&host);
    QString grammarPath, grammarName;
    ASSERT_EQ(TKCRead(b, path, grammarPath, grammarName), TkcReadResult::Restored);
    EXPECT_EQ(host.criticals, QStringList());
    EXPECT_EQ(grammarPath, QStringLiteral("/some/where/g.tkg"));
    EXPECT_EQ(grammarName, QStringLiteral("g"));

    // Written again from the restored state, the file is the same byte for byte:
    // every slot came back into the field it was written from.
    const QString again = ScratchDir(QStringLiteral("tkc-roundtrip-again")) + QStringLiteral("/g.tkc");
    ASSERT_TRUE(TKCSave(b, again, grammarPath, grammarName));
    EXPECT_EQ(FileBytes(again), FileBytes(path));

    // And the data itself, where a reading could lose what a writing keeps.
    EXPECT_TRUE(b.grammar.Parsed());
    EXPECT_EQ(b.grammar.rules, a.grammar.rules);
    EXPECT_EQ(b.grammar.followB, a.grammar.followB);  // members in their order
    for (int i = 0; i < GrammarFlag::Count; ++i)
        EXPECT_EQ(b.grammar.FlagValue(i), a.grammar.FlagValue(i)) << "flag " << i;
    EXPECT_TRUE(b.ll.synta == a.ll.synta);
    EXPECT_EQ(b.ll.saved.state, QStringLiteral("state ü"));
    for (const auto& [ra, rb] : {std::pair{&a.slr, &b.slr}, {&a.lalr, &b.lalr}, {&a.lr, &b.lr}}) {
        EXPECT_EQ(rb->rows, ra->rows);
        EXPECT_EQ(rb->kernels, ra->kernels);
        EXPECT_EQ(rb->lookaheads, ra->lookaheads);
        EXPECT_EQ(rb->conflicts, ra->conflicts);
        // The listings are made again from the tables, not kept.
        EXPECT_EQ(rb->itemText, QString());
        EXPECT_EQ(rb->tableText, QString());
    }
    // The item listings built again from the restored look-aheads, closures included.
    for (Workspace* ws : {&a, &b}) {
        ws->settings.displayAllItems = 1;
        ws->lalr.itemText.clear();
        ws->lr.itemText.clear();
    }
    for (int view : {View::LALR, View::LR})
        EXPECT_EQ(ItemListing(b, view), ItemListing(a, view)) << "view " << view;
}

TEST(CompiledGrammar, LookaheadsOfAnotherShapeDiscardTheStateWithAReport)
{
    Workspace a;
    AnalyseAll(a, SampleText());
    // A marker entry closes the last state's runs; in the bytes it becomes item 1
    // with no terminal (a run that fits) or with one that is not there.
    a.lalr.lookaheads.back().push_back({0x5A5A5A5A, {}});
    const QString path = ScratchDir(QStringLiteral("tkc-lookaheads")) + QStringLiteral("/g.tkc");
    ASSERT_TRUE(TKCSave(a, path, QString(), QString()));
    const QByteArray marker("\x5A\x5A\x5A\x5A\x00\x00\x00\x00", 8);
    const QByteArray saved = FileBytes(path);
    const qsizetype at = saved.indexOf(marker);
    ASSERT_GT(at, 0);
    ASSERT_EQ(saved.lastIndexOf(marker), at);
    for (const char count : {0, 1}) {
        SCOPED_TRACE(int(count));
        QByteArray bytes = saved;
        bytes.replace(at, 8, QByteArray("\x01\x00\x00\x00", 4) + QByteArray(1, count) + QByteArray(3, '\0'));
        ASSERT_TRUE(WriteFileBytes(path, bytes));
        RecordingHost host;
        Workspace b(&host);
        QString grammarPath, grammarName;
        ASSERT_EQ(TKCRead(b, path, grammarPath, grammarName), TkcReadResult::Restored);
        EXPECT_EQ(b.lalr.lookaheads.back().back().item, count == 0 ? 1 : -1);
        // An item the state does not reduce, or a run past its state: either is damage.
        EXPECT_FALSE(CheckRestoredState(b, SampleText()));
        EXPECT_TRUE(b.lalr.lookaheads.empty());
        EXPECT_EQ(host.criticals,
                  QStringList{QStringLiteral("Error encountered: 9\r\nSubscript out of range\r\nSource: TKCRead\r\n")});
    }
}

TEST(CompiledGrammar, RoundTripKeepsThePrecedenceTables)
{
    // A grammar both precedence methods accept, with a simple-precedence conflict.
    Workspace a;
    AnalyseAll(a, QStringLiteral("<E>\r\n<E>=<E>[+]<T>\r\n<E>=<T>\r\n<T>=<T>[*]<F>\r\n<T>=<F>\r\n"
                                 "<F>=[(]<E>[)]\r\n<F>=[a]\r\n"));
    ASSERT_TRUE(a.grammar.GetFlag(GrammarFlag::AnalysedSPR));
    ASSERT_TRUE(a.grammar.GetFlag(GrammarFlag::AnalysedOPR));
    ASSERT_GT(a.spr.synta.ConflictCount(), 0);
    a.opr.saved = {QStringLiteral("s"), QStringLiteral("p"), QStringLiteral("0,002")};
    const QString path = ScratchDir(QStringLiteral("tkc-precedence")) + QStringLiteral("/e.tkc");
    ASSERT_TRUE(TKCSave(a, path, QStringLiteral("/x/e.tkg"), QStringLiteral("e")));
    RecordingHost host;
    Workspace b(&host);
    QString grammarPath, grammarName;
    ASSERT_EQ(TKCRead(b, path, grammarPath, grammarName), TkcReadResult::Restored);
    EXPECT_TRUE(host.criticals.isEmpty());
    for (const auto& [ra, rb] : {std::pair{&a.spr, &b.spr}, {&a.opr, &b.opr}}) {
        ASSERT_EQ(rb->Size(), ra->Size());
        EXPECT_EQ(rb->synta.RawCells(), ra->synta.RawCells());
        EXPECT_EQ(rb->synta.RelationCodes(), ra->synta.RelationCodes());
        for (int r = 0; r < ra->Size(); ++r)
            for (int c = 0; c < ra->Size(); ++c)
                EXPECT_EQ(rb->synta.CellText(r, c), ra->synta.CellText(r, c));
    }
    EXPECT_EQ(b.opr.saved.elapsed, QStringLiteral("0,002"));
    // The result texts of built matrices are made again from them.
    EXPECT_EQ(b.grammar.precedence.sprText, QString());
    EXPECT_TRUE(CheckRestoredState(b, QStringLiteral("<E>\r\n<E>=<E>[+]<T>\r\n<E>=<T>\r\n<T>=<T>[*]<F>\r\n<T>=<F>\r\n"
                                                     "<F>=[(]<E>[)]\r\n<F>=[a]\r\n")));
    EXPECT_TRUE(host.criticals.isEmpty());
    EXPECT_EQ(b.grammar.precedence.sprText, a.grammar.precedence.sprText);
    EXPECT_EQ(b.grammar.precedence.oprText, a.grammar.precedence.oprText);
    EXPECT_TRUE(b.grammar.precedence.oprTableBuilt);
    EXPECT_TRUE(b.grammar.GetFlag(GrammarFlag::AnalysedOPR));
}

/// A decoder written from the file's description alone: a tagged value's tag,
/// and its text when it is one. Walks past the value.
struct ValueInfo {
    quint16 tag = 0;
    QString text;
    std::vector<quint16> elementTags;  // of a one-dimensional list of general values
};

class LayoutWalker {
public:
    explicit LayoutWalker(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }
    bool AtEnd() const { return m_pos == m_bytes.size(); }
    qsizetype Offset() const { return m_pos; }
    quint32 Int(int width)
    {
        quint32 v = 0;
        for (int i = 0; i < width; ++i)
            v |= quint32(quint8(m_bytes.at(m_pos++))) << (8 * i);
        return v;
    }
    ValueInfo Value()
    {
        ValueInfo info;
        info.tag = static_cast<quint16>(Int(2));
        if (info.tag & 0x2000) {
            const int dims = static_cast<int>(Int(2));
            quint64 count = 1;
            for (int d = 0; d < dims; ++d) {
                count *= Int(4);
                Int(4);
            }
            for (quint64 i = 0; i < count; ++i) {
                if ((info.tag & ~0x2000) == 12)
                    info.elementTags.push_back(Value().tag);
                else
                    Scalar(info.tag & ~0x2000);
            }
        } else if (info.tag == 8) {
            const int n = static_cast<int>(Int(2));
            info.text = QString::fromUtf8(m_bytes.mid(m_pos, n));
            m_pos += n;
        } else {
            Scalar(info.tag);
        }
        return info;
    }

private:
    void Scalar(quint16 tag)
    {
        static const std::map<quint16, int> sizes = {{0, 0}, {1, 0}, {2, 2}, {3, 4}, {4, 4}, {5, 8},
                                                     {7, 8},  {11, 2}, {17, 1}};
        if (tag == 8)
            m_pos += static_cast<qsizetype>(Int(2));
        else
            m_pos += sizes.at(tag);
    }
    QByteArray m_bytes;
    qsizetype m_pos = 0;
};

TEST(CompiledGrammar, FileFollowsTheSlotLayout)
{
    Workspace ws;
    AnalyseAll(ws, SampleText());
    const QString path = ScratchDir(QStringLiteral("tkc-layout")) + QStringLiteral("/g.tkc");
    ASSERT_TRUE(TKCSave(ws, path, QStringLiteral("/g/Грамматика.tkg"), QStringLiteral("Грамматика")));
    const QByteArray bytes = FileBytes(path);
    ASSERT_EQ(bytes.left(18), QByteArray("\r\n2010 KAVEN TRELK"));

    // Slots 2-85: 'i' a raw 32-bit integer, 'v' a tagged value.
    const std::string layout = std::string("i") + "vv" + std::string(9, 'v') + std::string(5, 'i')
                             + std::string(3, 'i') + "v" + "i" + std::string(26, 'v') + std::string(14, 'v')
                             + std::string(3, 'i') + std::string(18, 'v') + "v";
    ASSERT_EQ(layout.size(), 84u);
    LayoutWalker walker(bytes.mid(18));
    std::vector<ValueInfo> slots(86);
    std::vector<quint32> ints(86);
    for (int slot = 2; slot <= 85; ++slot) {
        ASSERT_FALSE(walker.AtEnd()) << "slot " << slot;
        if (layout[static_cast<std::size_t>(slot - 2)] == 'i')
            ints[static_cast<std::size_t>(slot)] = walker.Int(4);
        else
            slots[static_cast<std::size_t>(slot)] = walker.Value();
    }
    EXPECT_TRUE(walker.AtEnd());
    EXPECT_EQ(ints[2], 1u);
    EXPECT_EQ(slots[3].text, QStringLiteral("Грамматика"));
    EXPECT_EQ(slots[85].text, QStringLiteral("/g/Грамматика.tkg"));
    EXPECT_EQ(slots[4].elementTags, std::vector<quint16>{11});
    EXPECT_EQ(slots[22].tag, 0x2000 | 12);
    ASSERT_EQ(slots[22].elementTags.size(), 32u);
    for (quint16 tag : slots[22].elementTags)
        EXPECT_TRUE(tag == 0 || tag == 11) << tag;
    EXPECT_EQ(ints[14], static_cast<quint32>(ws.grammar.ruleCount));
    EXPECT_EQ(ints[64], static_cast<quint32>(ws.slr.States()));
    for (int slot : {5, 6, 7, 8, 9, 10, 11, 12, 13})
        EXPECT_TRUE(slots[static_cast<std::size_t>(slot)].tag & 0x2000) << "slot " << slot;
    for (int slot = 24; slot <= 49; ++slot)
        EXPECT_TRUE(slots[static_cast<std::size_t>(slot)].tag & 0x2000) << "slot " << slot;
    for (int slot = 50; slot <= 84; ++slot)
        if (slot < 64 || slot > 66) {
            EXPECT_EQ(slots[static_cast<std::size_t>(slot)].tag, 8) << "slot " << slot;
        }
    // Texts the program makes again from the kept data are written empty.
    for (int slot : {50, 51, 52, 53, 54, 55, 57, 58, 59, 60, 61, 62, 63})
        EXPECT_EQ(slots[static_cast<std::size_t>(slot)].text, QString()) << "slot " << slot;
    EXPECT_EQ(slots[56].text, ws.grammar.llRejection);
    // The LR rows hold small codes and states: bytes, or 16-bit values with a reduce.
    ASSERT_FALSE(slots[40].elementTags.empty());
    for (quint16 tag : slots[40].elementTags)
        EXPECT_TRUE(tag == (0x2000 | 17) || tag == (0x2000 | 2)) << tag;
    EXPECT_EQ(slots[78].text, ws.lr.saved.elapsed);
}

TEST(CompiledGrammar, IntegerArraysGoInTheNarrowestTypeAndAnyWidthIsRead)
{
    struct Case {
        std::vector<int> values;
        quint16 tag;
        int bytes;  // of the element data
    };
    const Case cases[] = {
        {{0, 7, 255}, Tkc::Tag::Byte, 3},
        {{0, 256}, Tkc::Tag::Int16, 4},
        {{-1, 5}, Tkc::Tag::Int16, 4},
        {{-32768, 32767}, Tkc::Tag::Int16, 4},
        {{32768}, Tkc::Tag::Int32, 4},
        {{-32769, 0}, Tkc::Tag::Int32, 8},
        {{}, Tkc::Tag::Byte, 0},
    };
    for (const Case& c : cases) {
        TkcWriter out;
        out.IntArray(c.values, 1);
        ASSERT_EQ(out.bytes.size(), 12 + c.bytes);
        EXPECT_EQ(quint8(out.bytes[0]) | quint8(out.bytes[1]) << 8, Tkc::Tag::Array | c.tag);
        TkcReader in(out.bytes);
        EXPECT_EQ(in.IntArray(1), c.values);
        EXPECT_EQ(in.Left(), 0);
    }
    // 32-bit arrays, as earlier builds wrote every array, are read as well.
    TkcWriter wide;
    wide.ArrayHeader(Tkc::Tag::Int32, 2, 0);
    wide.I32(3);
    wide.I32(-70000);
    TkcReader in(wide.bytes);
    EXPECT_EQ(in.IntArray(0), (std::vector<int>{3, -70000}));
    // Single integers: 16-bit when they fit.
    TkcWriter one;
    one.Integer(-2);
    one.Integer(40000);
    EXPECT_EQ(one.bytes, QByteArray("\x02\x00\xFE\xFF\x03\x00\x40\x9C\x00\x00", 10));
}

TEST(CompiledGrammar, ExtremeCountsAreRefusedBeforeAnyArithmetic)
{
    // The symbol count at the largest 32-bit value, and a simple-precedence
    // matrix that claims to span it: the file holds only the real cells, so it
    // is refused before a matrix of that size is made.
    Workspace a;
    AnalyseAll(a, QStringLiteral("<E>\r\n<E>=<E>[+]<T>\r\n<E>=<T>\r\n<T>=[a]\r\n"));
    ASSERT_TRUE(a.grammar.GetFlag(GrammarFlag::AnalysedSPR));
    const QString path = ScratchDir(QStringLiteral("tkc-extreme")) + QStringLiteral("/e.tkc");
    ASSERT_TRUE(TKCSave(a, path, QString(), QString()));
    QByteArray bytes = FileBytes(path);

    LayoutWalker walker(bytes.mid(18));
    walker.Int(4);
    for (int slot = 3; slot <= 14; ++slot)
        slot == 14 ? void(walker.Int(4)) : void(walker.Value());
    const qsizetype lastCode = 18 + walker.Offset();
    ASSERT_EQ(qFromLittleEndian<qint32>(bytes.constData() + lastCode), a.grammar.lastCode);
    bytes.replace(lastCode, 8, QByteArray("\xFE\xFF\xFF\x7F\xFF\xFF\xFF\x7F", 8));  // slots 15 and 16

    TkcWriter head;
    const std::array<int, 3>& codes = a.spr.synta.RelationCodes();
    head.IntArray({a.spr.Size(), codes[0], codes[1], codes[2]}, 0);
    const qsizetype at = bytes.indexOf(head.bytes);
    ASSERT_GT(at, lastCode);
    TkcWriter huge;
    huge.ArrayHeader(Tkc::Tag::Int32, 4, 0);
    for (int v : {0x7FFFFFFF, codes[0], codes[1], codes[2]})
        huge.I32(v);
    bytes.replace(at, head.bytes.size(), huge.bytes);
    ASSERT_TRUE(WriteFileBytes(path, bytes));

    RecordingHost host;
    Workspace b(&host);
    QString grammarPath, grammarName;
    EXPECT_EQ(TKCRead(b, path, grammarPath, grammarName), TkcReadResult::Failed);
    EXPECT_EQ(host.criticals,
              QStringList{QStringLiteral("Error encountered: 9\r\nSubscript out of range\r\nSource: TKCRead\r\n")});
    EXPECT_EQ(b.spr.Size(), 0);
}

TEST(CompiledGrammar, ForeignAndMissingCompanionsAreIgnoredSilently)
{
    const QString dir = ScratchDir(QStringLiteral("tkc-foreign"));
    Workspace source;
    AnalyseAll(source, SampleText());
    const QString good = dir + QStringLiteral("/good.tkc");
    ASSERT_TRUE(TKCSave(source, good, QString(), QString()));
    QByteArray otherVersion = FileBytes(good);
    otherVersion[18] = 2;
    QByteArray lowerCase = FileBytes(good);
    lowerCase[7] = 'k';

    RecordingHost host;
    for (const QByteArray& bytes : {otherVersion, lowerCase, QByteArray("PK\x03\x04"), QByteArray("\r\n2010 KAVEN")}) {
        const QString path = dir + QStringLiteral("/other.tkc");
        ASSERT_TRUE(WriteFileBytes(path, bytes));
        Workspace ws(&host);
        QString grammarPath, grammarName;
        const TkcReadResult result = TKCRead(ws, path, grammarPath, grammarName);
        if (bytes.size() == 12) {
            // Our signature cut short is a damaged file of ours, not another format.
            EXPECT_EQ(result, TkcReadResult::Failed);
            continue;
        }
        EXPECT_EQ(result, TkcReadResult::Foreign);
        EXPECT_FALSE(AnyAnalysisKept(ws.grammar));
        EXPECT_EQ(ws.grammar.symbolNames.size(), 3u);
    }
    EXPECT_EQ(host.criticals.size(), 1);

    Workspace ws(&host);
    QString grammarPath, grammarName;
    EXPECT_EQ(TKCRead(ws, dir + QStringLiteral("/absent.tkc"), grammarPath, grammarName), TkcReadResult::Missing);
    EXPECT_EQ(host.criticals.size(), 1);

    // Opened through TKGOpen, a grammar beside a foreign companion opens unanalysed.
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/g.tkg"), SampleText().toUtf8()));
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/g.tkc"), otherVersion));
    QString text, error;
    ASSERT_TRUE(TKGOpen(ws, dir + QStringLiteral("/g.tkg"), text, error));
    EXPECT_EQ(text, SampleText());
    EXPECT_FALSE(AnyAnalysisKept(ws.grammar));
    EXPECT_EQ(host.criticals.size(), 1);
}

TEST(CompiledGrammar, DamagedFilesGiveOneErrorReportAndKeepWhatWasRestored)
{
    const QString dir = ScratchDir(QStringLiteral("tkc-damaged"));
    Workspace source;
    AnalyseAll(source, SampleText());
    const QString good = dir + QStringLiteral("/good.tkc");
    ASSERT_TRUE(TKCSave(source, good, QStringLiteral("/g/calc.tkg"), QStringLiteral("calc")));
    const QByteArray bytes = FileBytes(good);
    // Slot 3 starts at 22: tag 8, count 4, "calc"; slot 4 at 30: tag, dimension
    // count, element count at 34, lower bound at 38.
    ASSERT_EQ(bytes.mid(22, 8), QByteArray("\x08\x00\x04\x00" "calc", 8));

    struct Case {
        const char* what;
        QByteArray bytes;
        int number;
        const char* description;
    };
    QByteArray wrongKind = bytes, hugeCount = bytes, wrongBound = bytes;
    wrongKind[22] = 3;
    hugeCount.replace(34, 4, QByteArray("\xFF\xFF\xFF\x7F", 4));
    wrongBound[38] = 1;
    const Case cases[] = {
        {"cut inside the symbol names", bytes.left(60), 62, "Input past end of file"},
        {"a number where the name is", wrongKind, 13, "Type mismatch"},
        {"a count no file holds", hugeCount, 7, "Out of memory"},
        {"a list from 1 where it is from 0", wrongBound, 9, "Subscript out of range"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString path = dir + QStringLiteral("/bad.tkc");
        ASSERT_TRUE(WriteFileBytes(path, c.bytes));
        RecordingHost host;
        Workspace ws(&host);
        QString grammarPath, grammarName;
        EXPECT_EQ(TKCRead(ws, path, grammarPath, grammarName), TkcReadResult::Failed);
        const QString report = QStringLiteral("Error encountered: ") + QString::number(c.number)
                             + QStringLiteral("\r\n") + QString::fromLatin1(c.description)
                             + QStringLiteral("\r\nSource: TKCRead\r\n");
        EXPECT_EQ(host.criticals, QStringList{report});
        EXPECT_EQ(ws.lastFileError.text, report);
        EXPECT_EQ(ws.lastFileError.number, QString::number(c.number));
        EXPECT_EQ(ws.lastFileError.description, QString::fromLatin1(c.description));
        EXPECT_EQ(ws.lastFileError.source, QStringLiteral("TKCRead"));
        if (c.number != 13) {
            EXPECT_EQ(grammarName, QStringLiteral("calc"));  // slot 3 came before the failure
        }
    }

    // Cut after the grammar model: what came before stays restored.
    RecordingHost host;
    Workspace ws(&host);
    QString grammarPath, grammarName;
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/cut.tkc"), bytes.left(bytes.size() - 40)));
    EXPECT_EQ(TKCRead(ws, dir + QStringLiteral("/cut.tkc"), grammarPath, grammarName), TkcReadResult::Failed);
    EXPECT_EQ(ws.grammar.rules, source.grammar.rules);
    EXPECT_EQ(ws.lr.rows, source.lr.rows);
    EXPECT_EQ(grammarPath, QString());
}

TEST(CompiledGrammar, StaleCompanionIsDiscardedSilently)
{
    const QString dir = ScratchDir(QStringLiteral("tkc-stale"));
    const QString grammarFile = dir + QStringLiteral("/g.tkg");
    RecordingHost host;
    Workspace saved(&host);
    AnalyseAll(saved, SampleText());
    ASSERT_TRUE(GrammarSaveAs(saved, grammarFile, SampleText()));

    // The companion of this very text is kept whole.
    Workspace same(&host);
    QString text, error;
    ASSERT_TRUE(TKGOpen(same, grammarFile, text, error));
    EXPECT_TRUE(same.grammar.Parsed());
    for (int view : {View::SLR, View::LALR, View::LR})
        EXPECT_TRUE(same.grammar.GetFlag(view)) << view;
    EXPECT_EQ(same.lalr.rows, saved.lalr.rows);
    EXPECT_TRUE(same.ll.synta == saved.ll.synta);

    // The text edited elsewhere: the same symbols with one rule changed, and a
    // grammar with another symbol.
    const QString edits[] = {SampleText().replace(QStringLiteral("<S>=[d][c]"), QStringLiteral("<S>=[c][d]")),
                             SampleText() + QStringLiteral("<B>=[e]\r\n")};
    for (const QString& edited : edits) {
        ASSERT_TRUE(WriteFileBytes(grammarFile, edited.toUtf8()));
        Workspace ws(&host);
        ASSERT_TRUE(TKGOpen(ws, grammarFile, text, error));
        EXPECT_EQ(text, edited);
        EXPECT_FALSE(AnyAnalysisKept(ws.grammar));
        EXPECT_TRUE(ws.lr.rows.empty());
        EXPECT_EQ(ws.ll.synta.Rows(), 0);
        EXPECT_EQ(ws.lalr.tableText, NotAnalyzed);
        EXPECT_EQ(ws.grammar.symbolNames.size(), 3u);
        EXPECT_EQ(ws.grammar.Path(), QFileInfo(grammarFile).absoluteFilePath());
        // The next Analyse works from the new text.
        RecordingFrontend frontend(text);
        Analyse(ws, frontend, View::LR);
        EXPECT_TRUE(ws.grammar.GetFlag(View::LR));
        EXPECT_NE(ws.lr.rows, saved.lr.rows);
    }
    EXPECT_EQ(host.criticals, QStringList());
}

TEST(CompiledGrammar, LongListingsAreMadeAgainAndExactTextsNeverCut)
{
    // An LL(1) grammar whose SYNTA listing and symbol listing both pass 65535
    // bytes: 40 non-terminals over 100 terminals with long names.
    QString text = QStringLiteral("<S>\r\n");
    const QString pad(700, QLatin1Char('x'));
    for (int i = 1; i <= 40; ++i)
        text += QStringLiteral("<S>=[s%1]<A%1>\r\n").arg(i);
    for (int i = 1; i <= 40; ++i)
        for (int j = 1; j <= 100; ++j)
            text += QStringLiteral("<A%1>=[t%2%3]\r\n").arg(i).arg(j).arg(pad);
    RecordingHost host;
    Workspace ws(&host);
    RecordingFrontend frontend(text);
    Analyse(ws, frontend, View::Grammar);
    Analyse(ws, frontend, View::LL);
    ASSERT_TRUE(ws.grammar.GetFlag(View::LL));
    ASSERT_GT(ws.ll.text.toUtf8().size(), 65535);
    ASSERT_GT(ws.grammar.symbolListing.toUtf8().size(), 65535);
    const QString listing = ws.ll.text;
    const QString symbols = ws.grammar.symbolListing;

    const QString grammarFile = ScratchDir(QStringLiteral("tkc-long")) + QStringLiteral("/long.tkg");
    ASSERT_TRUE(GrammarSaveAs(ws, grammarFile, text));
    Workspace reopened(&host);
    QString read, error;
    ASSERT_TRUE(TKGOpen(reopened, grammarFile, read, error));
    EXPECT_TRUE(reopened.grammar.Parsed());
    EXPECT_EQ(reopened.grammar.symbolListing, symbols);
    // LL(1) is kept: its listing is made again from the table, whole.
    EXPECT_TRUE(reopened.grammar.GetFlag(View::LL));
    EXPECT_EQ(reopened.ll.text, listing);
    RecordingFrontend again(read);
    Analyse(reopened, again, View::LL);
    EXPECT_EQ(again.text2, listing);
    EXPECT_EQ(host.criticals, QStringList());

    // A text that must be kept as it is and cannot be is an error, not a cut text.
    ws.lr.saved.state = QString(70000, QLatin1Char('s'));
    EXPECT_FALSE(TKCSave(ws, grammarFile + QStringLiteral(".tkc"), grammarFile, QStringLiteral("long")));
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Error encountered: 6\r\nOverflow\r\nSource: TKCSave\r\n")});
    EXPECT_FALSE(QFile::exists(grammarFile + QStringLiteral(".tkc")));
}

TEST(CompiledGrammar, CompanionAndGrammarNames)
{
    EXPECT_EQ(CompanionPath(QStringLiteral("/g/expr.tkg")), QStringLiteral("/g/expr.tkc"));
    EXPECT_EQ(CompanionPath(QStringLiteral("C:\\g\\expr.txt")), QStringLiteral("C:\\g\\expr.tkc"));
    EXPECT_EQ(CompanionPath(QStringLiteral("/g/expr.v2.tkg")), QStringLiteral("/g/expr.v2.tkc"));
    EXPECT_EQ(CompanionPath(QStringLiteral("/g.d/expr")), QStringLiteral("/g.tkc"));
    EXPECT_EQ(CompanionPath(QStringLiteral("/g/expr")), QStringLiteral("tkc"));
    EXPECT_EQ(GrammarNameOf(QStringLiteral("/g/expr.txt")), QStringLiteral("expr"));
    EXPECT_EQ(GrammarNameOf(QStringLiteral("C:\\g\\grammar")), QStringLiteral("gra"));
    EXPECT_EQ(GrammarNameOf(QStringLiteral("/g/.tkg")), QString());
    EXPECT_EQ(GrammarNameOf(QStringLiteral("/g.tkg/abc")), std::nullopt);

    // Saving under a path without any "." writes the companion as the bare "tkc".
    const QString dir = ScratchDir(QStringLiteral("tkc-bare"));
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir));
    RecordingHost host;
    Workspace ws(&host);
    AnalyseAll(ws, SampleText());
    const bool saved = GrammarSaveAs(ws, QStringLiteral("grammar"), SampleText());
    QDir::setCurrent(previous);
    EXPECT_TRUE(saved);
    EXPECT_EQ(QDir(dir).entryList(QDir::Files, QDir::Name), (QStringList{QStringLiteral("grammar"), QStringLiteral("tkc")}));
    Workspace reread(&host);
    QString name, path;
    EXPECT_EQ(TKCRead(reread, dir + QStringLiteral("/tkc"), path, name), TkcReadResult::Restored);
    EXPECT_EQ(path, QStringLiteral("grammar"));
    EXPECT_EQ(host.criticals, QStringList());
}

TEST(CompiledGrammar, FailedSaveLeavesTheOldTextWhole)
{
    const QString dir = ScratchDir(QStringLiteral("tkc-interrupted"));
    const QString grammarFile = dir + QStringLiteral("/g.tkg");
    const QByteArray oldText("<S>\r\n<S>=[a]\r\n");
    ASSERT_TRUE(WriteFileBytes(grammarFile, oldText));
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/g.tkc"), QByteArray("old companion")));

    RecordingHost host;
    Workspace ws(&host);
    AnalyseAll(ws, SampleText());
    // Writes that pass 32 bytes fail as on a full disk (EFBIG instead of the signal).
    rlimit previous{};
    getrlimit(RLIMIT_FSIZE, &previous);
    auto* previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = previous;
    small.rlim_cur = 32;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved = GrammarSaveAs(ws, grammarFile, SampleText());
    setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);

    EXPECT_FALSE(saved);
    EXPECT_EQ(host.criticals,
              (QStringList{QStringLiteral("Error encountered: 75\r\nPath/File access error: Cannot write ") + dir
                               + QStringLiteral("/g.tkc: File too large\r\nSource: TKCSave\r\n"),
                           QStringLiteral("Error encountered: 75\r\nPath/File access error: Cannot write ") + grammarFile
                               + QStringLiteral(": File too large\r\nSource: GrammarSaveAs\r\n")}));
    EXPECT_EQ(FileBytes(grammarFile), oldText);
    // The old companion was deleted before the write, and no half-written file stands in its place.
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList{QStringLiteral("g.tkg")});

    // A grammar path that is a folder: the text cannot be written and nothing is replaced.
    const QString folder = dir + QStringLiteral("/folder.tkg");
    ASSERT_TRUE(QDir().mkpath(folder));
    host.criticals.clear();
    EXPECT_FALSE(GrammarSaveAs(ws, folder, SampleText()));
    ASSERT_EQ(host.criticals.size(), 1);
    EXPECT_TRUE(host.criticals[0].contains(QStringLiteral(": Cannot write ") + folder + QStringLiteral(": ")))
        << host.criticals[0].toStdString();
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(FileBytes(grammarFile), oldText);
}

} // namespace
