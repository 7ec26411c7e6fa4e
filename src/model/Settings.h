/// \file
/// The settings values of section "Main" of the settings file, with their
/// defaults. Read once at start-up, changed in memory by the Options dialog,
/// written back when the main window closes.
#pragma once

#include <QString>
#include <cstdint>

struct Settings {
    int cellWidth = 5;               ///< "CellWidth": grid and C table cell width, at least 3
    int maxCycle = 10000;            ///< "MaxCycle": pass limit of the LR automaton builders
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
