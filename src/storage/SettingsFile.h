/// \file
/// The settings file: where it lives, how its texts become numbers, and the
/// reading (at start-up) and writing (at close) of every key of section "Main".
#pragma once

#include "storage/PINI.h"
#include "grammar/Texts.h"
#include "model/Settings.h"

#include <QString>
#include <QtGlobal>

/// The application name and the section every settings call passes.
inline const QString& kSettingsApplication = kProductName;
inline const QString kSettingsSection = QStringLiteral("Main");

/// Where the settings file lives when no --ini option names one: "TRELK.ini"
/// beside the executable when that folder is writable (a portable install),
/// otherwise "TRELK.ini" in the user's configuration folder for TRELK (what
/// QStandardPaths::AppConfigLocation gives for the application name "TRELK",
/// named here so that trelk and trelk-cli find the same file). Needs a
/// QCoreApplication.
QString DefaultSettingsPath();

/// The outcome of turning a settings text into a number.
enum class NumberCheck { Ok, NotANumber, OutOfRange };

// Note [Numbers in settings]. A numeric setting is converted the way a Basic
// runtime converts a text to a number, minus its locale and
// hexadecimal forms: blanks around the text are ignored; then an optional "+"
// or "-", decimal digits with an optional "." fraction (one digit at least),
// and an optional exponent ("e" or "E", optional sign, digits). So " 12 ",
// "+5", "1e3" and "3.7" are numbers; "", "abc", "12abc", "1,5", "&H10", "inf"
// are not. Integers are rounded half to even ("3.7" is 4, "2.5" is 2, "3.5" is
// 4); a result outside the key's range is refused, not wrapped.

/// Converts text to an integer in least..most (see note [Numbers in settings]).
NumberCheck ConvertToInteger(const QString& text, qint64 least, qint64 most, qint32& value);
/// Converts text to a single-precision number (see note [Numbers in settings]).
NumberCheck ConvertToSingle(const QString& text, float& value);

/// Reads the keys of section "Main" that start-up reads, in its order, each
/// with its default from Settings: "CellWidth" (0..64, raised to 3 when
/// below), "MaxCycle" (1..1000000), the six flags, "PSignLT", "PSignEQ", "PSignGT" (16-bit), "PUseQ"
/// (which also sets quoteMark), "SyntaxType", "TokenType", "TokenPrefix",
/// "InitDir" (default programFolder), "SaveDir" and "TKCDir" (default the
/// normalised "InitDir"), "FilePath". Folders are normalised.
/// A numeric key holding a text that is not a number in its range ends the
/// reading: the result is false, error names the file, the key and its text,
/// and settings is left unchanged.
bool ReadSettings(const PINI& ini, Settings& settings, const QString& programFolder, QString& error);

/// Reads "Left" and "Top" as single-precision numbers within -100000..100000,
/// with the window's centring position as the defaults. Failure as for ReadSettings.
bool ReadWindowPosition(const PINI& ini, Settings& settings, int defaultLeft, int defaultTop, QString& error);

/// Writes the settings back, as the main window does when it closes, in this
/// order: "Left", "Top", "InitDir", "SaveDir", "TKCDir" (normalised again),
/// "FilePath" (only when grammarPath is non-empty), the six flags,
/// "SyntaxType", "TokenPrefix", "MaxCycle", "CellWidth", "PUseQ", "PSignLT",
/// "PSignEQ", "PSignGT". "TokenType" is never written. Creates the folder of
/// the file when it is missing; failures are silent.
void WriteSettings(const PINI& ini, const Settings& settings, const QString& grammarPath);

/// The text a single-precision number is written as: at most 7 significant
/// digits, no trailing zeros ("100", "1234.5").
QString SingleText(float value);
