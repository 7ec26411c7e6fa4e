/// \file
/// Conflict records and their texts.
#include "model/Conflicts.h"

#include "model/Results.h"

QString LrConflictText(const Conflict& conflict)
{
    const int entry = conflict.rejected.empty() ? 0 : conflict.rejected.front();
    return QStringLiteral("Unable to write reduce ") + QString::number(entry) + QStringLiteral(" in [")
         + QString::number(conflict.row) + QLatin1Char(',') + QString::number(conflict.column) + QStringLiteral("].");
}

QStringList LrConflictTexts(const std::vector<Conflict>& conflicts)
{
    QStringList lines;
    lines.reserve(static_cast<qsizetype>(conflicts.size()));
    for (const Conflict& c : conflicts)
        lines << LrConflictText(c);
    return lines;
}

std::vector<Conflict> LLConflicts(const LLTable& table)
{
    std::vector<Conflict> conflicts;
    for (int r = 0; r < table.Rows(); ++r)
        for (int c = 0; c < table.Columns(); ++c)
            if (table.IsConflict(r, c)) {
                std::vector<int> rules = table.Entries(r, c);
                Conflict conflict{ConflictMethod::LL, r, c, rules.front(), {}, ConflictKind::Prediction};
                conflict.rejected.assign(rules.begin() + 1, rules.end());
                conflicts.push_back(std::move(conflict));
            }
    return conflicts;
}

std::vector<Conflict> PrecedenceConflicts(const PrecedenceMatrix& matrix, ConflictMethod method)
{
    std::vector<Conflict> conflicts;
    for (int r = 0; r < matrix.Size(); ++r)
        for (int c = 0; c < matrix.Size(); ++c)
            if (matrix.IsConflict(r, c)) {
                std::vector<int> codes = matrix.Codes(r, c);
                Conflict conflict{method, r, c, codes.front(), {}, ConflictKind::Relation};
                conflict.rejected.assign(codes.begin() + 1, codes.end());
                conflicts.push_back(std::move(conflict));
            }
    return conflicts;
}
