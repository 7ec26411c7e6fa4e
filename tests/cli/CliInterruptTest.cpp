// Ctrl-C on a running trelk-cli: a real SIGINT sent to a child that is busy
// with a long computation. The run must end soon after, say what stopped,
// exit 130 and leave its folder as it was.
#include "support/TestPaths.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace {

/// A chain of left- and right-recursive non-terminals: parsed in a blink, but
/// its LR automata and precedence relations take seconds of processor time.
QByteArray LongGrammar(int n)
{
    QByteArray text = "<A1>\n";
    for (int i = 1; i < n; ++i) {
        text += "<A" + QByteArray::number(i) + ">=<A" + QByteArray::number(i + 1) + ">[x" + QByteArray::number(i) + "]\n";
        text += "<A" + QByteArray::number(i) + ">=[y" + QByteArray::number(i) + "]<A" + QByteArray::number(i + 1) + ">\n";
    }
    return text + "<A" + QByteArray::number(n) + ">=[z]\n";
}

/// The processor time a process has used, in milliseconds; -1 once it is gone.
long CpuMs(qint64 pid)
{
    const QByteArray stat = FileBytes(QStringLiteral("/proc/%1/stat").arg(pid));
    const qsizetype end = stat.lastIndexOf(')');  // the program name may hold spaces
    if (end < 0)
        return -1;
    const QList<QByteArray> fields = stat.mid(end + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    // utime and stime: fields 14 and 15 of the line, 12 and 13 after the name.
    return (fields[11].toLong() + fields[12].toLong()) * 1000 / sysconf(_SC_CLK_TCK);
}

/// Whether the process has its own SIGINT handler in place (SigCgt holds bit 2).
bool CatchesInterrupt(qint64 pid)
{
    for (const QByteArray& line : FileBytes(QStringLiteral("/proc/%1/status").arg(pid)).split('\n'))
        if (line.startsWith("SigCgt:"))
            return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGINT - 1)) & 1;
    return false;
}

struct StoppedRun {
    CliRun run;
    long cpuMsAfterSignal = -1;  ///< the processor time the program spent after SIGINT
};

/// Runs trelk-cli in folder and sends it SIGINT once it has spent cpuMs of
/// processor time with its handler in place: its own clock, so a busy machine
/// does not move the moment within the computation.
StoppedRun Interrupt(const QString& folder, const QStringList& args, long cpuMs)
{
    QProcess p;
    p.setWorkingDirectory(folder);
    p.start(BuiltProgram(QStringLiteral("bin/trelk-cli")), QStringList{QStringLiteral("--ini"), QStringLiteral("TRELK.ini")} + args);
    StoppedRun r;
    if (!p.waitForStarted(10000)) {
        ADD_FAILURE() << "trelk-cli did not start";
        return r;
    }
    const qint64 pid = p.processId();
    while (CpuMs(pid) >= 0 && !(CatchesInterrupt(pid) && CpuMs(pid) >= cpuMs))
        QThread::msleep(5);
    const long atSignal = CpuMs(pid);
    EXPECT_EQ(::kill(static_cast<pid_t>(pid), SIGINT), 0);
    // Processor time, not the clock: other programs on the machine do not count.
    long last = atSignal;
    QElapsedTimer clock;
    clock.start();
    while (!p.waitForFinished(5) && clock.elapsed() < 60000)
        last = std::max(last, CpuMs(pid));
    EXPECT_EQ(p.state(), QProcess::NotRunning);
    r.cpuMsAfterSignal = last - atSignal;
    r.run.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.run.out = QString::fromUtf8(p.readAllStandardOutput());
    r.run.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

TEST(CliInterrupt, StopsTheComputationAndWritesNothing)
{
    const QString folder = ScratchDir(QStringLiteral("cli-interrupt"));
    const QByteArray grammar = LongGrammar(2000);
    ASSERT_TRUE(WriteFileBytes(folder + QStringLiteral("/long.tkg"), grammar));
    ASSERT_TRUE(WriteFileBytes(folder + QStringLiteral("/TRELK.ini"), ""));
    const QStringList before = QDir(folder).entryList(QDir::Files | QDir::Hidden);

    // The analysers (LR(1), LALR(1) on the way to its export file, every view
    // on the way to the save), and the parse and follow sets of sets, which
    // take the fraction of a second before its JSON is printed.
    const struct {
        QStringList args;
        long cpuMs;
    } runs[] = {
        {{QStringLiteral("table"), QStringLiteral("long.tkg"), QStringLiteral("lr")}, 300},
        {{QStringLiteral("export"), QStringLiteral("long.tkg"), QStringLiteral("lalr")}, 300},
        {{QStringLiteral("compile"), QStringLiteral("long.tkg")}, 300},
        {{QStringLiteral("sets"), QStringLiteral("long.tkg"), QStringLiteral("--json")}, 20},
    };
    for (const auto& [args, cpuMs] : runs) {
        SCOPED_TRACE(args.join(QLatin1Char(' ')).toStdString());
        const StoppedRun r = Interrupt(folder, args, cpuMs);
        EXPECT_EQ(r.run.status, 130);
        EXPECT_EQ(r.run.err, QStringLiteral("trelk-cli: ") + args[0] + QStringLiteral(" stopped by the user (interrupt).\n"));
        EXPECT_EQ(r.run.out, QString());
        // The computation itself was stopped, not run to its end (seconds more).
        EXPECT_LT(r.cpuMsAfterSignal, 1000);
        EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), before);
        EXPECT_EQ(FileBytes(folder + QStringLiteral("/long.tkg")), grammar);
    }
}

TEST(CliInterrupt, StopsTheConflictExplanations)
{
    // python's LALR(1) table is built in a blink; its 68 conflicts, none of
    // them an ambiguity, keep the counterexample search busy for seconds.
    const QString folder = ScratchDir(QStringLiteral("cli-interrupt-explain"));
    const QByteArray grammar = FileBytes(CorpusDir() + QStringLiteral("/python.tkg"));
    ASSERT_FALSE(grammar.isEmpty());
    ASSERT_TRUE(WriteFileBytes(folder + QStringLiteral("/python.tkg"), grammar));
    ASSERT_TRUE(WriteFileBytes(folder + QStringLiteral("/TRELK.ini"), ""));
    const QStringList args{QStringLiteral("explain"), QStringLiteral("python.tkg"), QStringLiteral("lalr")};
    const StoppedRun r = Interrupt(folder, args, 1500);
    EXPECT_EQ(r.run.status, 130);
    EXPECT_EQ(r.run.err, QStringLiteral("trelk-cli: explain stopped by the user (interrupt).\n"));
    EXPECT_EQ(r.run.out, QString());
    EXPECT_LT(r.cpuMsAfterSignal, 1000);
}

} // namespace
