/// \file
/// Grammar text files: reading (blank lines dropped, lines joined with CR LF,
/// UTF-8 with a Windows-1251 fallback), the text encoding helpers, the writers
/// every saved or exported file goes through, and the names of a grammar and of
/// its compiled companion.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

class TextSink;

/// Decodes file bytes: UTF-8 (a leading byte-order mark is dropped) when they
/// are valid UTF-8, otherwise Windows-1251, as older Windows files are.
QString DecodeGrammarBytes(const QByteArray& bytes);

/// The editor text of a grammar file: its non-empty lines joined by CR LF, with
/// one final CR LF. Lines end at CR LF, LF or CR.
QString JoinGrammarLines(const QString& decoded);

/// Reads a grammar text file as File Open does. On failure returns false and
/// describes the failure in error.
bool ReadGrammarFile(const QString& path, QString& text, QString& error);

/// The message of a failed write: "Cannot write PATH: REASON", the reason as
/// the system gives it ("Permission denied", "No space left on device").
QString WriteErrorText(const QString& path, const QString& reason);

/// Writes a file through QSaveFile, fill supplying its bytes: the old file is
/// replaced only once every byte has reached the disk (written, flushed and
/// synced). On failure the old file stays as it was and false is returned with
/// error set to WriteErrorText.
bool WriteStreamedFile(const QString& path, const std::function<void(TextSink&)>& fill, QString& error);

/// WriteStreamedFile of the bytes.
bool WriteWholeFile(const QString& path, const QByteArray& bytes, QString& error);

/// The text writer: writes text followed by one CR LF, UTF-8 without a byte-order
/// mark, through QSaveFile so that a failed write leaves the old file whole.
bool WriteTextFile(const QString& path, const QString& text, QString& error);

/// The compiled companion of a grammar file: its path up to and including the
/// last "." followed by "tkc" ("/g/expr.tkg" gives "/g/expr.tkc").
QString CompanionPath(const QString& grammarPath);

/// The grammar name of a file: its file name less the last four characters (the
/// extension with its dot). None when the file name is shorter than four
/// characters: such a name cannot be cut to a grammar name.
std::optional<QString> GrammarNameOf(const QString& path);
