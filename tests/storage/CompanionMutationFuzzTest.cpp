// Companions of five analysed grammars (calc and bc from the corpus, a grammar
// with LL(1) and SLR(1) conflicts, an LL(1) grammar, a precedence grammar),
// damaged thousands of ways: bytes changed, files cut, slots taken from another
// grammar's companion, counts set to extremes and table numbers moved by one.
// Whatever a damaged companion gives, a state it keeps shows exactly what a
// fresh analysis of the grammar shows: every report, verdict, listing and table.
#include "analysers/LrAnalyser.h"
#include "session/CompiledGrammar.h"
#include "session/OpenSave.h"
#include "session/Verdicts.h"
#include "storage/GrammarFile.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/TestPaths.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <random>

namespace {

/// Where the values of a companion lie: each slot's bytes, and the numbers in
/// it that a mutation may change (raw counters, array counts, array elements).
struct Layout {
    std::vector<std::pair<qsizetype, qsizetype>> slots;  ///< by slot 2..85: offset and length
    std::vector<std::pair<qsizetype, int>> numbers;      ///< offset and width (1, 2 or 4 bytes)
    std::vector<qsizetype> counts;                       ///< offsets of 32-bit array counts
};

/// Walks a companion by the file's description alone.
class Walker {
public:
    Walker(const QByteArray& bytes, Layout& layout)
        : m_bytes(bytes)
        , m_layout(layout)
    {
    }
    void Walk()
    {
        // Slots 2-85: 'i' a raw 32-bit integer, 'v' a tagged value.
        static const std::string kinds = std::string("ivv") + std::string(9, 'v') + std::string(8, 'i') + "vi"
                                       + std::string(40, 'v') + "iii" + std::string(19, 'v');
        m_pos = 18;
        for (char kind : kinds) {
            const qsizetype start = m_pos;
            if (kind == 'i')
                Number(4);
            else
                Value();
            m_layout.slots.emplace_back(start, m_pos - start);
        }
    }

private:
    quint32 Int(int width)
    {
        quint32 v = 0;
        for (int i = 0; i < width; ++i)
            v |= quint32(quint8(m_bytes.at(m_pos++))) << (8 * i);
        return v;
    }
    void Number(int width)
    {
        m_layout.numbers.emplace_back(m_pos, width);
        m_pos += width;
    }
    void Scalar(quint16 tag)
    {
        switch (tag) {
        case 2: Number(2); break;
        case 3: Number(4); break;
        case 17: Number(1); break;
        case 8: m_pos += Int(2); break;
        case 11: m_pos += 2; break;
        case 4: m_pos += 4; break;
        case 5: case 7: m_pos += 8; break;
        default: break;
        }
    }
    void Value()
    {
        const quint16 tag = static_cast<quint16>(Int(2));
        if (!(tag & 0x2000)) {
            Scalar(tag);
            return;
        }
        const int dims = static_cast<int>(Int(2));
        quint64 count = 1;
        for (int d = 0; d < dims; ++d) {
            m_layout.counts.push_back(m_pos);
            count *= Int(4);
            Int(4);
        }
        for (quint64 i = 0; i < count; ++i) {
            if ((tag & ~0x2000) == 12)
                Value();
            else
                Scalar(tag & ~0x2000);
        }
    }
    const QByteArray& m_bytes;
    Layout& m_layout;
    qsizetype m_pos = 0;
};

/// Everything a user can see of the state: the rules, the five reports, and per
/// analyser view its verdict, listing, C table and item listing. Views not kept
/// are analysed as the Analyse command would.
QStringList Shown(Workspace& ws, const QString& text)
{
    QStringList shown{ws.grammar.CommentedRules()};
    for (int view = View::Symbols; view <= View::FollowR; ++view)
        shown << ViewReport(ws, view);
    RecordingFrontend frontend(text);
    for (int view = View::LL; view <= View::OPR; ++view) {
        Analyse(ws, frontend, view);
        shown << QString::number(view) + (ws.grammar.GetFlag(view) ? QStringLiteral(" analysed ") : QStringLiteral(" not "))
                     + QString::number(Judge(ws, view).conflicts)
              << frontend.text2;
        if (ws.current)
            shown << ws.current->TableDisplay();
        shown << ItemListing(ws, view);
    }
    return shown;
}

struct Sample {
    QString name;
    QString grammarFile;
    QString text;
    QByteArray bytes;  ///< the companion after every analysis
    Layout layout;
    QStringList shown;  ///< what a fresh analysis shows
};

Sample Analysed(const QString& name, const QString& text)
{
    Sample s;
    s.name = name;
    s.text = text;
    s.grammarFile = ScratchDir(QStringLiteral("tkc-mutation-") + name) + QStringLiteral("/") + name + QStringLiteral(".tkg");
    Workspace ws;
    RecordingFrontend frontend(text);
    for (int view = View::Grammar; view < View::Count; ++view)
        Analyse(ws, frontend, view);
    for (int view : {View::SLR, View::LALR, View::LR})
        ItemListing(ws, view);
    EXPECT_TRUE(GrammarSaveAs(ws, s.grammarFile, text));
    s.bytes = FileBytes(CompanionPath(s.grammarFile));
    Walker(s.bytes, s.layout).Walk();
    Workspace fresh;
    RecordingFrontend parse(text);
    Analyse(fresh, parse, View::Grammar);
    s.shown = Shown(fresh, text);
    return s;
}

void PutNumber(QByteArray& bytes, qsizetype at, int width, qint64 value)
{
    for (int i = 0; i < width; ++i)
        bytes[at + i] = static_cast<char>((static_cast<quint64>(value) >> (8 * i)) & 0xFF);
}

TEST(CompanionMutationFuzz, AKeptStateShowsWhatAFreshAnalysisShows)
{
    const ScopedEnv epoch("SOURCE_DATE_EPOCH", QByteArray("1700000000"));  // the C text's date
    std::vector<Sample> samples;
    samples.push_back(Analysed(QStringLiteral("calc"), ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg"))));
    samples.push_back(Analysed(QStringLiteral("bc"), ReadGrammarText(CorpusDir() + QStringLiteral("/bc.tkg"))));
    samples.push_back(Analysed(QStringLiteral("conflicts"),
                               Lines({"<S>", "<S>=<A>[a]", "<S>=[b]<A>[c]", "<S>=[d][c]", "<S>=[b][d][a]", "<A>=[d]",
                                      "<A>=<B>", "<B>=."})));
    samples.push_back(Analysed(QStringLiteral("ll"), Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=[a]",
                                                             "<T>=[(]<E>[)]"})));
    samples.push_back(Analysed(QStringLiteral("precedence"),
                               Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]",
                                      "<F>=[a]"})));
    for (const Sample& s : samples)
        ASSERT_EQ(s.layout.slots.size(), 84u) << s.name.toStdString();

    std::mt19937 rng(61);
    auto pick = [&rng](qsizetype size) { return std::uniform_int_distribution<qsizetype>(0, size - 1)(rng); };
    const qint64 extremes[] = {0, 1, -1, 0x7fffffff, -0x7fffffff - 1, 0xffff, 0x8000};
    const QRegularExpression report(QStringLiteral("^Error encountered: \\d+\\r\\n[^\\r\\n]+\\r\\nSource: TKCRead\\r\\n$"));
    int kept = 0, wrong = 0, reported = 0;
    QElapsedTimer slowest;
    qint64 longest = 0;
    for (int variant = 0; variant < 3000; ++variant) {
        const Sample& s = samples[static_cast<std::size_t>(variant) % samples.size()];
        QByteArray bytes = s.bytes;
        const Layout& l = s.layout;
        switch (variant / 5 % 6) {
        case 0:  // bytes changed
            for (int n = 1 + int(pick(3)); n > 0; --n)
                bytes[pick(bytes.size())] = static_cast<char>(pick(256));
            break;
        case 1:  // cut short
            bytes.truncate(pick(bytes.size()));
            break;
        case 2: {  // a slot of another grammar's companion
            const Sample& other = samples[static_cast<std::size_t>(pick(qsizetype(samples.size())))];
            const std::size_t slot = static_cast<std::size_t>(pick(84));
            const auto [at, length] = l.slots[slot];
            const auto [otherAt, otherLength] = other.layout.slots[slot];
            bytes.replace(at, length, other.bytes.mid(otherAt, otherLength));
            break;
        }
        case 3: {  // a counter or an array count at an extreme or next to its value
            const bool raw = pick(2) == 0;
            const auto [at, width] = raw ? l.numbers[static_cast<std::size_t>(pick(qsizetype(l.numbers.size())))]
                                         : std::pair{l.counts[static_cast<std::size_t>(pick(qsizetype(l.counts.size())))], 4};
            qint64 value = 0;
            for (int i = 0; i < width; ++i)
                value |= qint64(quint8(bytes[at + i])) << (8 * i);
            PutNumber(bytes, at, width, pick(2) == 0 ? extremes[pick(7)] : value + (pick(2) ? 1 : -1));
            break;
        }
        default: {  // one or two numbers of the tables moved by one, or to another number of theirs
            for (int n = 1 + int(pick(2)); n > 0; --n) {
                const auto [at, width] = l.numbers[static_cast<std::size_t>(pick(qsizetype(l.numbers.size())))];
                qint64 value = 0;
                for (int i = 0; i < width; ++i)
                    value |= qint64(quint8(bytes[at + i])) << (8 * i);
                if (pick(2)) {
                    value += pick(2) ? 1 : -1;
                } else {
                    const auto [from, fromWidth] = l.numbers[static_cast<std::size_t>(pick(qsizetype(l.numbers.size())))];
                    value = 0;
                    for (int i = 0; i < fromWidth; ++i)
                        value |= qint64(quint8(bytes[from + i])) << (8 * i);
                }
                PutNumber(bytes, at, width, value);
            }
            break;
        }
        }
        ASSERT_TRUE(WriteFileBytes(CompanionPath(s.grammarFile), bytes));
        RecordingHost host;
        Workspace ws(&host);
        QString text, error;
        slowest.start();
        ASSERT_TRUE(TKGOpen(ws, s.grammarFile, text, error));
        longest = std::max(longest, slowest.elapsed());
        ASSERT_LE(host.criticals.size(), 1) << "variant " << variant;
        if (!host.criticals.isEmpty()) {
            ASSERT_TRUE(report.match(host.criticals[0]).hasMatch()) << host.criticals[0].toStdString();
            ++reported;
        }
        if (!ws.grammar.Parsed())
            continue;  // nothing kept: the next Analyse starts from the text
        ++kept;
        const QStringList shown = Shown(ws, text);
        if (shown != s.shown) {
            ++wrong;
            qsizetype i = 0;
            while (shown[i] == s.shown[i])
                ++i;
            ADD_FAILURE() << s.name.toStdString() << " variant " << variant << " shows item " << i << ":\n"
                          << shown[i].left(300).toStdString() << "\ninstead of\n" << s.shown[i].left(300).toStdString();
        }
    }
    std::printf("[ mutation ] %d kept, %d of them wrong, %d reported; slowest open %lld ms\n", kept, wrong, reported,
                static_cast<long long>(longest));
    EXPECT_EQ(wrong, 0);
    // The damage reaches every outcome.
    EXPECT_GT(kept, 150);
    EXPECT_GT(reported, 1000);
}

} // namespace
