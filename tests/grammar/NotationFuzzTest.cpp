// Robustness of the parser: seeded random texts and cut or mutated corpus
// grammars end in success or in exactly one of the defined messages, never in
// a crash or a hang; whatever parses survives the Text round trip.
#include "grammar/Grammar.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QRegularExpression>
#include <gtest/gtest.h>
#include <random>

namespace {

/// The messages a parse may show, as patterns.
const QRegularExpression& KnownMessage()
{
    static const QRegularExpression re(QStringLiteral(
        "^(Первая строка должна содержать целевой символ\\."
        "|Unexpected end of line \\d+\\."
        "|(Invalid symbol|Extra character) \".\" in \\[\\d+,\\d+\\]\\."
        "|Unclosed nonterminal in line \\d+\\."
        "|Empty nonterminal in line \\d+\\."
        "|Unclosed terminal in line \\d+\\."
        "|Empty terminal in line \\d+\\."
        "|Equal sign \\(=\\) expected in line \\d+\\."
        "|Non-terminal .* is not defined\\.)$"),
        QRegularExpression::DotMatchesEverythingOption);
    return re;
}

/// Parses text and checks the outcome; returns true when it parsed.
bool CheckOutcome(const QString& text, const std::string& what)
{
    RecordingHost host;
    Grammar g(&host);
    const bool ok = g.SetText(text);
    if (ok) {
        EXPECT_TRUE(host.criticals.isEmpty()) << what;
        EXPECT_TRUE(g.Parsed()) << what;
        EXPECT_EQ(g.goal, g.terminalCount + 1) << what;
        for (int r = 1; r <= g.ruleCount; ++r)
            EXPECT_TRUE(g.IsNonterminal(g.rules[static_cast<std::size_t>(r)][0])) << what;
        // Names holding "]" (from the "[]x]" form) cannot be written back unchanged.
        // Text() is empty for a grammar without terminals (such as "<a>", "<a>=").
        bool writable = g.terminalCount > 0;
        for (int c = 1; c <= g.terminalCount; ++c)
            writable &= !g.SymbolName(c).contains(QLatin1Char(']')) || g.SymbolName(c) == QStringLiteral("]");
        if (writable) {
            Grammar again(&host);
            EXPECT_TRUE(again.SetText(g.Text())) << what << " " << host.criticals.value(0).toStdString();
            EXPECT_EQ(again.rules, g.rules) << what;
            EXPECT_EQ(again.symbolNames, g.symbolNames) << what;
        }
    } else if (Grammar::IsBlankText(text)) {
        EXPECT_TRUE(host.criticals.isEmpty()) << what;
    } else {
        EXPECT_EQ(host.criticals.size(), 1) << what;
        const QString message = host.criticals.value(0);
        EXPECT_TRUE(KnownMessage().match(message).hasMatch()) << what << ": " << message.toStdString();
    }
    return ok;
}

TEST(NotationFuzz, RandomTextsEndInSuccessOrOneMessage)
{
    const QString alphabet = QStringLiteral("<<<>>>[[[]]]==..abcAB  \t\r\n\r\nыЖ#-'");
    std::mt19937 rng(20261122);
    int parsed = 0;
    for (int round = 0; round < 4000; ++round) {
        QString text;
        // Half the texts start with a goal line so that rule lines get read.
        if (round % 2 == 0)
            text = QStringLiteral("<a>\r\n");
        const int length = static_cast<int>(rng() % 60);
        for (int i = 0; i < length; ++i)
            text += alphabet[static_cast<qsizetype>(rng() % static_cast<unsigned>(alphabet.size()))];
        parsed += CheckOutcome(text, "round " + std::to_string(round)) ? 1 : 0;
    }
    // Random texts built of rule fragments parse now and then.
    for (int round = 0; round < 3000; ++round) {
        static const char* pieces[] = {"<a>", "<b>", "[x]", "[y]", "[]]", "=", ".", " ", "\r\n", "<a>=", "<b>=",
                                       "[", "]", "<", ">", "ж", "--", "#1 "};
        QString text = QStringLiteral("<a>\r\n");
        const int count = static_cast<int>(rng() % 24);
        for (int i = 0; i < count; ++i)
            text += QString::fromUtf8(pieces[rng() % std::size(pieces)]);
        parsed += CheckOutcome(text, "piece round " + std::to_string(round)) ? 1 : 0;
    }
    EXPECT_GT(parsed, 50);  // the generator does reach the success path
}

TEST(NotationFuzz, CutAndMutatedCorpusGrammars)
{
    std::mt19937 rng(7);
    for (const QString& file : CorpusGrammars()) {
        const QString text = ReadGrammarText(file);
        if (text.size() > 40000)
            continue;  // the small and middle grammars cover the same ground faster
        for (int round = 0; round < 20; ++round) {
            QString cut = text.left(static_cast<qsizetype>(rng() % static_cast<unsigned>(text.size() + 1)));
            CheckOutcome(cut, file.toStdString() + " cut " + std::to_string(cut.size()));
            QString mutated = text;
            for (int k = 0; k < 3; ++k) {
                const qsizetype at = static_cast<qsizetype>(rng() % static_cast<unsigned>(mutated.size()));
                mutated[at] = QStringLiteral("<>[]=. x")[static_cast<qsizetype>(rng() % 8)];
            }
            CheckOutcome(mutated, file.toStdString() + " mutated round " + std::to_string(round));
        }
    }
}

} // namespace
