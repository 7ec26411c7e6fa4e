/// \file
/// The standalone C program of an analysed table: the analysers' C text made
/// whole, so that a C99 compiler takes it as it is. Around the tables (written
/// with the sample recognizer) it puts the element types, the token and symbol
/// enumeration under identifiers that are valid C and unique, and a main() that
/// reads sentences as the notation names terminals and says whether the
/// recognizer accepts each. Lines end with CR LF, as in the other C text.
#pragma once

#include "grammar/Grammar.h"
#include "model/Settings.h"

#include <QString>
#include <QStringList>

namespace StandaloneC {

/// The sample recognizers, one per kind of table.
enum class Recognizer { LL, LR, SimplePrecedence, OperatorPrecedence };

/// The name of the C function of a recognizer: "ll_recognize", "lr_recognize"...
QString FunctionName(Recognizer recognizer);

/// The C identifier of every symbol by code: "TOK_EOT" for code 0, then "TOK_"
/// for terminals and "SYM_" for non-terminals before the name as the tables
/// spell it, with every other character than [A-Za-z0-9_] spelled out ("?" as
/// QUEST) or as _xHH per UTF-8 byte, cut to keep within 63 characters, and
/// made unique against TOK_EOT, TOK_LAST, SYM_LAST and the symbols before it
/// by "_2", "_3"... Must be called while g.cNames is empty.
QStringList Identifiers(const Grammar& g);

/// The settings the tables of a standalone program are written with: the
/// given ones with the sample recognizer on, no token prefix and, when neither
/// rule table setting is on, "GenerateRules".
Settings TableSettings(const Settings& settings);

/// The whole program. tables is the analyser's C text written with
/// TableSettings and with g.cNames set to names (Identifiers). "" when tables
/// hold no recognizer of the given kind.
QString Program(const Grammar& g, const Settings& settings, const QStringList& names, const QString& tables,
                Recognizer recognizer);

/// Text whose comments say nothing to the compiler: "/*" inside a comment
/// becomes "/ *" and "??" becomes "? ?" (a trigraph), elsewhere nothing changes.
QString QuietComments(const QString& text);

/// A C string literal of text's UTF-8 bytes, quotes included; "?" is escaped
/// against trigraphs, bytes outside printable ASCII are octal escapes.
QString CString(const QString& text);

} // namespace StandaloneC
