/// \file
/// Test helpers over grammars: small texts, random grammars and their random
/// sentences, running an analyser, and compiling generated C with gcc.
#pragma once

#include "session/AnalysisRun.h"
#include "support/QtPrinters.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <random>
#include <vector>

/// Lines joined by CR LF.
QString Lines(std::initializer_list<const char*> lines);

/// A grammar text from rule lines: the goal line is the left side of the first rule.
QString GrammarOf(const QStringList& rules);
QString GrammarOf(std::initializer_list<const char*> rules);

/// A frontend for the analysis run that records what it is asked.
class RecordingFrontend final : public AnalysisFrontend {
public:
    explicit RecordingFrontend(QString grammarText = QString())
        : text(std::move(grammarText))
    {
    }
    QString GrammarText() override { return text; }
    void SetText2(const QString& t) override { text2 = t; }
    void OnProcessStart() override { ++starts; }
    void OnProcessStop() override { ++stops; }
    void GrammarSave() override { ++saves; }

    QString text;   ///< the grammar box
    QString text2;  ///< the output box
    int starts = 0, stops = 0, saves = 0;
};

/// A random grammar text over the terminals [a] [b] [c] and the non-terminals
/// <S> <A> <B> <C> <D> (2 to 5 of them, <S> the goal, each with a rule): 1 to 3
/// rules each, right sides of 0 to 3 symbols, so that empty rules, unit rules,
/// cycles, left recursion, barren and unreachable symbols all come up. With
/// endMarkers a right side now and then ends in ".".
QString RandomGrammarText(std::mt19937& rng, bool endMarkers = false);

/// Runs the analyser (Ana06LL ... Ana11OPR) on a readied workspace; its verdict.
template <typename Analyser>
bool Analysed(Workspace& ws)
{
    Analyser analyser(ws);
    analyser.SetInProcess(true);
    return analyser.Analyze();
}

/// Random sentences of the parsed grammar (terminal codes, without the end
/// marker): leftmost derivations that choose rules at random and, past a depth,
/// the rule that ends soonest. Grammars whose rules hold the end marker "." are
/// not supported.
std::vector<std::vector<int>> RandomSentences(const Grammar& g, int count, std::mt19937& rng);

/// Each sentence changed a little (a token dropped, inserted or replaced): mostly not sentences.
std::vector<std::vector<int>> Mutations(const Grammar& g, const std::vector<std::vector<int>>& sentences,
                                        std::mt19937& rng);

/// Compiles a C program with gcc into a scratch folder; returns the executable's
/// path, or "" with the compiler's messages in errors.
QString CompileC(const QString& name, const QString& source, QString& errors);
/// The same with the given gcc options before "-o"; with "-fsyntax-only" among
/// them nothing is built and the path returned names no file.
QString CompileC(const QString& name, const QString& source, QString& errors, const QStringList& options);

/// Runs a program with the given standard input; returns its standard output.
QString RunProgram(const QString& program, const QString& input);

/// gcc's options for generated C: C99, every warning an error, no optimisation.
QStringList StrictCOptions();

/// Compiles the standalone C program of view (StandaloneProgram) with
/// StrictCOptions; returns the executable's path, or "" with the reason in errors.
QString CompileStandalone(Workspace& ws, int view, const QString& name, QString& errors);

/// A token string as a standalone program reads it: bracketed names, now and
/// then set apart by a blank.
QString SentenceLine(const Grammar& g, const std::vector<int>& tokens);

/// Runs a standalone program on token strings and expects its verdicts to equal
/// simulate's; returns how many strings simulate accepts.
int ExpectRecognizerAgrees(const QString& program, const Grammar& g, const std::vector<std::vector<int>>& strings,
                           const std::function<bool(const std::vector<int>&)>& simulate);
