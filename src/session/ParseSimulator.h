/// \file
/// Parsing one sentence with the table of an analysed view, step by step, as
/// the generated sample recognizer of that method would: the LL(1) predictive
/// parser, the LR shift/reduce parser (SLR(1), LALR(1), canonical LR(1)) and
/// the simple and operator precedence parsers. A cell that holds a conflict
/// is read as the generated C reads it (the kept action), and the step says
/// so. Every step is kept, so a window can go forward and back through the
/// run and draw the parse tree as it stood after any step.
#pragma once

#include "session/Derivation.h"
#include "session/Workspace.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <random>
#include <vector>

/// Reads a sentence typed by the user: terminal names in the notation
/// ("[a][+][a]", blanks between them allowed) or names separated by blanks
/// ("a + a"). Fills tokens with terminal codes (without the end marker) and
/// returns true; otherwise error says which name is not a terminal of the
/// grammar, and where.
bool ReadSentence(const Grammar& g, const QString& text, std::vector<int>& tokens, QString& error);
/// "[a] [+] [a]": a sentence as the notation writes it, the names joined by blanks.
QString SentenceText(const Grammar& g, const std::vector<int>& tokens);

/// What kind of step a parse step is.
enum class StepKind {
    Shift,    ///< LR and precedence: the look-ahead moved onto the stack
    Reduce,   ///< LR and precedence: a handle replaced by its rule's left side
    Predict,  ///< LL(1): the non-terminal on top replaced by a rule's right side
    Match,    ///< LL(1): the terminal on top matched the look-ahead and both went
    Accept,
    Error,
};

/// One step of a run and the configuration it started from.
struct ParseStep {
    StepKind kind = StepKind::Error;
    /// LL(1) and precedence: the symbol stack, bottom first, as the notation
    /// writes it (the bottom marker "$" first). LR: the state stack ("0", "5", ...).
    QStringList stack;
    /// LR: the symbols that led into the states above state 0, bottom first; else empty.
    QStringList symbols;
    /// Precedence: the relation read between the stack and the look-ahead
    /// ("<.", "=.", ".>"), "" when the cell is empty; else "".
    QString relation;
    /// The index of the look-ahead in ParseRun::tokens.
    int position = 0;
    /// The rule predicted or reduced; 0 otherwise (and for the accept).
    int rule = 0;
    /// LR: the state on top of the stack when the step began; -1 otherwise.
    int state = -1;
    /// The table's cell held more than one action and the kept one was used.
    bool fromConflict = false;
    /// The action in words: "shift 5", "reduce 3: <E>=<E>[+]<T>",
    /// "predict 2: <E>=<T><E'>", "match [a]", "accept", or what went wrong.
    QString action;
};

enum class ParseVerdict {
    Accepted,
    Rejected,  ///< the table has no action, or the precedence handle matches no rule
    Limit,     ///< the step limit was reached (a cycle of unit rules, or a hostile input)
    Stopped,   ///< stop() answered true
};

struct ParseRun {
    int view = 0;
    std::vector<int> tokens;          ///< the sentence's terminal codes, then the end marker 0
    std::vector<ParseStep> steps;     ///< in order; the last is the accept or the error
    ParseVerdict verdict = ParseVerdict::Rejected;
    /// Rejected: the index in tokens of the look-ahead where the parse failed; else -1.
    int errorPosition = -1;
    /// Rejected: the terminals (codes, ascending, 0 the end marker) that the
    /// table has an action for at that point.
    std::vector<int> expected;
    /// The verdict in words: "Accepted.", "Rejected at [+] (token 3): expected [a] or [(]." ...
    QString message;
};

struct SimulateOptions {
    int maxSteps = 1000000;
    std::function<bool()> stopped;  ///< asked now and then; true ends the run as Stopped
};

/// Runs the sentence through the table of view (6..11, analysed, with its
/// table kept). False, with error set ("LALR(1) has no table: not analysed, or the
/// method refused the grammar." ...),
/// when there is no table to run.
bool SimulateParse(const Workspace& workspace, int view, const std::vector<int>& sentence,
                   const SimulateOptions& options, ParseRun& run, QString& error);

/// The parse trees as they stand after the first `steps` steps of run (0 ..
/// steps.size()). LR and precedence: the trees on the stack, bottom first
/// (shifted terminals are leaves); LL(1): one tree rooted at the goal whose
/// non-terminal leaves not yet predicted stay unexpanded. For operator
/// precedence a reduced node's children are the handle as it stood on the
/// stack, so a non-terminal child may be one the rule names differently.
std::vector<DerivationTree> TreesAfter(const Workspace& workspace, const ParseRun& run, int steps);
/// The tree of an accepted run (rooted at the goal); an empty tree otherwise.
DerivationTree ParseTree(const Workspace& workspace, const ParseRun& run);

/// The whole run as text: the verdict, the trace as columns, the tree.
QString ParseRunText(const Workspace& workspace, const ParseRun& run, bool trace);
/// {"method", "sentence", "accepted", "verdict", "error_position", "expected",
/// "trace": [...], "tree"}; the tree in the shape of the conflict explanations.
QJsonObject ParseRunJson(const Workspace& workspace, const ParseRun& run, bool trace);

/// Example sentences of the parsed grammar, for the simulator's input.
/// The shortest sentence of the goal (empty when the goal derives none).
std::vector<int> ShortestSentence(const Grammar& g);
/// A random sentence, of at most maxLength terminals when the grammar allows
/// (rules chosen at random, then those that end soonest).
std::vector<int> RandomSentence(const Grammar& g, int maxLength, std::mt19937& rng);
/// For each rule 1..ruleCount in order, a short sentence whose derivation
/// uses it; empty entries for rules that no sentence uses.
std::vector<std::vector<int>> SentencePerRule(const Grammar& g);
