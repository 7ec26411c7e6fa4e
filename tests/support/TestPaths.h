/// \file
/// Where the tests find the shared grammar corpus and the built programs.
#pragma once

#include "support/QtPrinters.h"

#include <QString>
#include <QStringList>

/// The corpus folder: $TRELK_CORPUS, or ../shared/corpus beside the source tree.
QString CorpusDir();
/// Every .tkg of the corpus (real grammars and the scaling families), sorted.
/// Fails the calling test when the corpus is missing.
QStringList CorpusGrammars();
/// Reads a file as File Open does (blank lines dropped, CR LF).
QString ReadGrammarText(const QString& path);
/// The path of a built program, e.g. BuiltProgram("bin/trelk-cli").
QString BuiltProgram(const QString& relative);
/// The bytes of a file; empty when it cannot be read.
QByteArray FileBytes(const QString& path);
/// Writes bytes as the whole file, making its folder; false when it cannot.
bool WriteFileBytes(const QString& path, const QByteArray& bytes);
/// A fresh folder under the build tree, removed at the start of each run.
QString ScratchDir(const QString& name);
/// TRELK.ini in the fresh scratch folder name, holding bytes unless they are null.
QString ScratchIni(const QString& name, const QByteArray& bytes = QByteArray());

/// What a run of trelk-cli gave: the exit status (-1 for a crash) and its output.
struct CliRun {
    int status = -1;
    QString out, err;
};
/// Runs the built trelk-cli with args and waits for it (a minute at most).
CliRun Cli(const QStringList& args);
