/// \file
/// The settings values of section "Main" of the settings file, with their
/// defaults. Read once at start-up, changed in memory by the Options dialog,
/// written back when the main window closes.
#pragma once

#include <QString>
#include <cstdint>

/// The range each numeric setting is read in; a value outside it is refused at
/// start-up with the settings file's message, never wrapped or cut.
namespace SettingRange {
/// "CellWidth" counts characters of a grid column and of a C table cell: at
/// most 64 (a C name keeps 63 significant characters, and the C text of a large
/// table grows by rows x columns bytes per character). 0..2 are raised to 3.
constexpr int kCellWidthLeast = 0;
constexpr int kCellWidthMost = 64;
constexpr int kCellWidthUsed = 3;  ///< the narrowest cell actually used
/// "MaxCycle" is compared with a state number: below 1 every LR run stops after
/// its first pass; the automata stop at 10000 states anyway.
constexpr int kMaxCycleLeast = 1;
constexpr int kMaxCycleMost = 1000000;
/// "Left" and "Top" are window positions: far beyond any desktop, yet well
/// inside what a window position can hold.
constexpr int kPositionMost = 100000;
} // namespace SettingRange

struct Settings {
    int cellWidth = 5;               ///< "CellWidth": grid and C table cell width, 3..64
    int maxCycle = 10000;            ///< "MaxCycle": pass limit of the LR automaton builders, 1..1000000
    int generateRules = 1;           ///< "GenerateRules": RULE table in the C text
    int generateRuleReverse = 0;     ///< "GenerateRuleReverse"
    int generateComment = 1;         ///< "GenerateComment": column heads over LR tables
    int generateRecognizer = 0;      ///< "GenerateRecognizer": sample parser in the C text
    int lfLetters = 0;               ///< "LFLetters": new symbols named with letters, not "'"
    int displayAllItems = 0;         ///< "DisplayAllItems": whole closures in LR item listings
    std::int16_t pSignLT = -2;       ///< "PSignLT": code of <. in precedence tables
    std::int16_t pSignEQ = -1;       ///< "PSignEQ": code of .=
    std::int16_t pSignGT = 1;        ///< "PSignGT": code of .>
    int pUseQ = 1;                   ///< "PUseQ": selects the quote mark (no output uses it)
    QString syntaxType = QStringLiteral("stack_t");  ///< "SyntaxType": element type of syntax tables
    QString tokenType = QStringLiteral("sttype");    ///< "TokenType": element type of RULE / RSYM
    QString tokenPrefix;             ///< "TokenPrefix"
    QString initDir;                 ///< "InitDir": open folder (normalised)
    QString saveDir;                 ///< "SaveDir": save folder (normalised)
    QString tkcDir;                  ///< "TKCDir": compiled-file folder (normalised)
    QString filePath;                ///< "FilePath": the grammar reopened at start
    float left = 0;                  ///< "Left": main window position
    float top = 0;                   ///< "Top"
    QString quoteMark = QStringLiteral("\"");  ///< from "PUseQ": one double quote, or empty
};
