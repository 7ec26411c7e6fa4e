/// \file
/// The hard limits of a grammar's computations: how much memory a table or the
/// grammar sets may take, and how large a transformation's result may grow.
/// A computation that would pass one stops with a message instead of asking
/// the system for more memory than it has.
#pragma once

#include <QString>
#include <cstdint>

/// The limits a grammar's computations respect. Each grammar carries its own
/// copy, so that tests can lower them; the defaults protect real runs.
///
/// The largest real grammars (the SQL grammars of the corpus, about 3,400 rules)
/// need under 10 MB for every set and table together, so the defaults leave two
/// orders of magnitude and still keep a run within the memory of a desktop.
struct ResourceLimits {
    /// One analysis table, computed before it is allocated: the LL(1) table
    /// (4 bytes a cell), a precedence matrix (1 byte a cell).
    std::uint64_t tableBytes = 1'000'000'000;
    /// All the grammar sets together (nullable marks aside): FIRST per
    /// non-terminal and per rule, FOLLOWB, FOLLOWL, FOLLOWR and the precedence
    /// left and right sets, counted as they grow.
    std::uint64_t setBytes = 2'000'000'000;
    /// The rules of a transformation's result (or twice the grammar's own, when more).
    std::int64_t transformRules = 200'000;
    /// The right-side symbols of a transformation's result, all rules together
    /// (or twice the grammar's own, when more): about 10 MB of grammar text.
    std::int64_t transformSymbols = 2'000'000;
};

/// A number of bytes as messages write it, in decimal units: "40 GB", "2.5 GB",
/// "512 MB", "1.2 MB", "3 KB", "100 bytes".
QString SizeText(std::uint64_t bytes);

/// "The LL(1) table would need 40 GB: too large for this grammar."
QString TableTooLargeText(const QString& table, std::uint64_t bytes);

/// "The FIRST sets need more than 2 GB: too large for this grammar."
QString SetsTooLargeText(const QString& sets, std::uint64_t limit);

/// The message of a run that the system could not give the memory it asked for.
inline const QString kOutOfMemoryText = QStringLiteral("Not enough memory: the run was stopped.");

/// What a family of sets may still take while it grows: the set limit less
/// what the grammar's other sets hold. Every change of a set's size is taken
/// from it; once it is spent the computation stops and says so.
class SetBudget {
public:
    explicit SetBudget(std::int64_t allowance)
        : m_left(allowance)
    {
    }
    /// Takes a change of size in bytes (negative when a set shrank); false once spent.
    bool Take(std::int64_t bytes)
    {
        m_left -= bytes;
        return m_left >= 0;
    }
    /// The bytes a set holds (any set type with Bytes()), for Take's before and after.
    template <typename Set>
    static std::int64_t Size(const Set& set)
    {
        return static_cast<std::int64_t>(set.Bytes());
    }
    bool Spent() const { return m_left < 0; }

private:
    std::int64_t m_left;
};
