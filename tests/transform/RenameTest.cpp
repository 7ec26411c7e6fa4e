// Symbol renaming: the symbol list, the duplicate test by list position (the
// goal against the terminals), the exact message, and the regenerated text.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "transform/RenameSymbol.h"

#include <gtest/gtest.h>

namespace {

const QString kExists = QStringLiteral("Symbol exists.\r\nYou may edit grammar also.");

struct RenameFixture : ::testing::Test {
    void SetUp() override
    {
        // Terminals + (1), a (2); non-terminals E (3, the goal, list position 2), T (4).
        ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=[a]"})));
        ASSERT_EQ(SymbolList(g), (QStringList{QStringLiteral("+"), QStringLiteral("a"), QStringLiteral("E"),
                                              QStringLiteral("T")}));
    }
    RenameOutcome Rename(int position, const char* typed)
    {
        return RenameSymbol(g, position, SymbolList(g).value(position), QString::fromUtf8(typed), running);
    }

    RecordingHost host;
    Grammar g{&host};
    bool running = true;
};

TEST_F(RenameFixture, DuplicatesAreRefusedWithinTheirKind)
{
    EXPECT_EQ(Rename(0, "a"), RenameOutcome::Exists);
    EXPECT_EQ(Rename(3, "E"), RenameOutcome::Exists);
    EXPECT_EQ(host.informations, (QStringList{kExists, kExists}));
    // Across kinds, and with another letter case, the name is free.
    EXPECT_EQ(Rename(3, "  Term "), RenameOutcome::Renamed);
    EXPECT_EQ(Rename(1, "Term"), RenameOutcome::Renamed);
    EXPECT_EQ(Rename(0, "A"), RenameOutcome::Renamed);
    EXPECT_EQ(g.Text(), Lines({"#0 <E>", "#1 <E>=<E>[A]<Term>", "#2 <E>=<Term>", "#3 <Term>=[Term]"}));
    EXPECT_EQ(host.informations.size(), 2);
}

TEST_F(RenameFixture, GoalIsTestedAgainstTerminals)
{
    EXPECT_EQ(Rename(2, "a"), RenameOutcome::Exists);
    EXPECT_EQ(host.informations, QStringList{kExists});
    // Against the non-terminals it is not: it takes T's name and merges with it.
    EXPECT_EQ(Rename(2, "T"), RenameOutcome::Renamed);
    EXPECT_EQ(g.Text(), Lines({"#0 <T>", "#1 <T>=<T>[+]<T>", "#2 <T>=<T>", "#3 <T>=[a]"}));
}

TEST_F(RenameFixture, NothingToDoOrStopped)
{
    EXPECT_EQ(Rename(1, "a"), RenameOutcome::Unchanged);
    EXPECT_EQ(Rename(1, "   "), RenameOutcome::Unchanged);
    EXPECT_EQ(RenameSymbol(g, -1, QString(), QStringLiteral("x"), running), RenameOutcome::Unchanged);
    EXPECT_EQ(host.Messages(), QStringList());

    host.stopAfter = host.yields + 1;
    host.stop = [this] { running = false; };
    EXPECT_EQ(Rename(3, "Z"), RenameOutcome::Stopped);
    EXPECT_EQ(SymbolList(g), (QStringList{QStringLiteral("+"), QStringLiteral("a"), QStringLiteral("E"),
                                          QStringLiteral("T")}));
}

} // namespace
