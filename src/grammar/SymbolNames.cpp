/// \file
/// Symbol naming for generated C: GetSymbolName turns a symbol's name into an
/// identifier ("TOK_..." for terminals, "SYM_..." for non-terminals, operator
/// spellings as mnemonics, Cyrillic transliterated), and CommentedSymbolsDisplay
/// lists every symbol as the body of the token enumeration.
#include "grammar/Grammar.h"

#include <array>

namespace {

/// Whole-name operator spellings and their mnemonics; the first equal row wins.
/// On purpose "=" and "==" share "EQ", and "!=" and "<>" share "NE": the
/// generated names follow what the operators mean, not how they are spelled.
struct Mnemonic {
    const char* name;
    const char* mnemonic;
};
constexpr Mnemonic kMnemonics[] = {
    {"&&", "LAND"}, {"||", "LOR"},    {"++", "PP"},     {"--", "MM"},   {"==", "EQ"},    {"=", "EQ"},
    {"!=", "NE"},   {"<>", "NE"},     {":=", "ASS"},    {":", "COLON"}, {";", "SEMI"},   {"-", "SUB"},
    {"+", "ADD"},   {"*", "MUL"},     {"/", "DIV"},     {"\\", "IDIV"}, {".", "DOT"},    {",", "COMMA"},
    {"~", "BNOT"},  {"#", "SHARP"},   {"$", "DOLLAR"},  {"%", "MOD"},   {"^", "XOR"},    {"|", "BOR"},
    {"&", "BAND"},  {"(", "LP"},      {")", "RP"},      {"[", "LB"},    {"]", "RB"},     {"{", "LS"},
    {"}", "RS"},    {"<", "LT"},      {">", "GT"},      {"<=", "LE"},   {">=", "GE"},    {"'", "SINQU"},
    {"\"", "QUOTE"}, {"!", "LNOT"},
};

/// Characters that cannot stand in a C identifier and become "_".
constexpr char kToUnderscore[] = " -:;.,~!\"'#%^|&()[]{}*/+\\=<>";

/// kToUnderscore as a table over the ASCII codes.
const std::array<bool, 128> kUnderscoreTable = [] {
    std::array<bool, 128> table{};
    for (const char* c = kToUnderscore; *c; ++c)
        table[*c] = true;
    return table;
}();

/// Upper-case Cyrillic letters А..Я in alphabet order (Ё apart), and their
/// Latin spelling; an empty spelling drops the letter. On purpose "В" becomes
/// "W" and "Ж" becomes "V", so that the identifiers stay those of tables
/// generated before.
constexpr const char* kCyrillic[32] = {
    "A", "B", "W", "G", "D", "E",  "V",  "Z",   "I", "J", "K", "L",  "M",  "N",  "O",  "P",
    "R", "S", "T", "U", "F", "H", "TS", "CH", "SH", "SCH", "", "Y", "", "E", "JU", "JA",
};
constexpr char16_t kCyrillicA = u'А';
constexpr char16_t kCyrillicYo = u'Ё';

} // namespace

QString Grammar::GetSymbolName(int code, const QString& endMarkerText) const
{
    if (code == 0)
        return endMarkerText;
    if (code < cNames.size())
        return cNames[code];
    const QString name = SymbolName(code).toUpper();
    const QString prefix = code < firstNonterminal ? QStringLiteral("TOK_") : QStringLiteral("SYM_");
    if (name.size() <= 2)  // the longest operator spelling
        for (const Mnemonic& m : kMnemonics)
            if (name == QLatin1String(m.name))
                return prefix + QLatin1String(m.mnemonic);

    QString id = prefix;
    id.reserve(prefix.size() + name.size());
    for (const QChar ch : name) {
        const char16_t u = ch.unicode();
        if (u < kUnderscoreTable.size() && kUnderscoreTable[u])
            id += QLatin1Char('_');
        else if (u == kCyrillicYo)
            id += QLatin1Char('E');
        else if (u >= kCyrillicA && u < kCyrillicA + 32)
            id += QLatin1String(kCyrillic[u - kCyrillicA]);
        else
            id += ch;
    }
    return id;
}

QString Grammar::CommentedSymbolsDisplay() const
{
    if (!GetFlag(GrammarFlag::Parsed))
        return NotAnalyzed;
    const QString eol = QStringLiteral(",\r\n");
    const QString indent = QStringLiteral("    ");
    QString text;
    text.reserve(symbolListing.size() + (lastCode + 8) * (maxName + 12));
    text += symbolListing;
    text += QStringLiteral("    // токены\r\n");
    text += QStringLiteral("    TOK_EOT = 0,\r\n");
    // Without terminals (a grammar of empty rules only) the enumeration goes on
    // from TOK_EOT.
    QString last = QStringLiteral("TOK_EOT");
    for (int c = 1; c <= terminalCount; ++c) {
        last = GetSymbolName(c, QStringLiteral("TOK_EOT"));
        text += indent;
        text += last;
        text += eol;
    }
    text += QStringLiteral("    TOK_LAST = ") + last + eol;
    text += QStringLiteral("    // нетерминалы\r\n");
    for (int c = firstNonterminal; c <= lastCode; ++c) {
        last = GetSymbolName(c, QStringLiteral("TOK_EOT"));
        text += indent;
        text += last;
        text += eol;
    }
    text += QStringLiteral("    SYM_LAST = ") + last + eol;
    text += QStringLiteral("    // конец символов грамматики\r\n");
    return text;
}
