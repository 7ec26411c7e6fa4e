#include "support/TestPaths.h"

#include "storage/GrammarFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QDirIterator>
#include <QProcess>
#include <gtest/gtest.h>

QString CorpusDir()
{
    const QByteArray env = qgetenv("TRELK_CORPUS");
    if (!env.isEmpty())
        return QString::fromLocal8Bit(env);
    return QDir::cleanPath(QStringLiteral(TRELK_SOURCE_DIR "/../shared/corpus"));
}

QStringList CorpusGrammars()
{
    QStringList files;
    QDirIterator it(CorpusDir(), {QStringLiteral("*.tkg")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    EXPECT_FALSE(files.isEmpty()) << "no grammar corpus at " << CorpusDir().toStdString()
                                  << " (set TRELK_CORPUS to its folder)";
    return files;
}

QString ReadGrammarText(const QString& path)
{
    QString text, error;
    EXPECT_TRUE(ReadGrammarFile(path, text, error)) << error.toStdString();
    return text;
}

QString BuiltProgram(const QString& relative)
{
    return QStringLiteral(TRELK_BINARY_DIR "/") + relative;
}

QByteArray FileBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool WriteFileBytes(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

QString ScratchDir(const QString& name)
{
    const QString path = QStringLiteral(TRELK_BINARY_DIR "/test-scratch/") + name;
    QDir(path).removeRecursively();
    QDir().mkpath(path);
    return path;
}

QString ScratchIni(const QString& name, const QByteArray& bytes)
{
    const QString path = ScratchDir(name) + QStringLiteral("/TRELK.ini");
    EXPECT_TRUE(bytes.isNull() || WriteFileBytes(path, bytes));
    return path;
}

CliRun Cli(const QStringList& args)
{
    QProcess p;
    p.start(BuiltProgram(QStringLiteral("bin/trelk-cli")), args);
    EXPECT_TRUE(p.waitForFinished(60000));
    CliRun r;
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}
