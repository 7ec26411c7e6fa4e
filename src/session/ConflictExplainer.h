/// \file
/// Explanations of the conflicts of an analysed view: the rules and actions
/// that clash, a shortest way into the clash, and a counterexample — one
/// sentence with two derivations (unifying) or, failing that within the
/// budget, two sentential forms that share the way in (nonunifying).
#pragma once

#include "model/Conflicts.h"
#include "session/Derivation.h"
#include "session/Workspace.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <vector>

struct ExplainOptions {
    int budgetMs = 500;       ///< time for each search of each conflict
    int maxTrees = 200000;    ///< trees each search may build
    /// SLR(1) and LALR(1): run the stronger LR methods first (quietly: a limit
    /// they hit only leaves them out) to say which conflicts they do not have.
    bool compareStronger = false;
};

struct Counterexample {
    bool unifying = false;
    bool gaveUp = true;        ///< no example was found (the budget ran out or the bounds were too tight)
    bool goalRooted = false;   ///< the trees start at <'> (rule 0), else at the conflict's non-terminal
    std::vector<int> sentence; ///< unifying: the leaves of both trees; else the shared part
    std::vector<std::vector<int>> forms;        ///< the leaves of each tree
    std::vector<DerivationTree> derivations;    ///< two trees, one per action, in the order of the actions (kept first)
    std::vector<std::vector<int>> terminals;    ///< each form with non-terminals expanded shortest
};

struct ConflictExplanation {
    Conflict conflict;
    int state = -1;      ///< LR: the state; -1 otherwise
    int row = -1;        ///< LL(1) and precedence: the row symbol; -1 for LR
    int lookahead = 0;   ///< the look-ahead or the precedence column symbol
    QStringList actions; ///< what the cell held and what it refused, in words
    std::vector<int> rules;
    std::vector<int> prefix;  ///< LR: a shortest viable prefix; LL(1): a leftmost form reaching the row
    Counterexample example;
    /// SLR(1), LALR(1): whether a stronger LR method, when analysed, is free of this conflict.
    QStringList notes;
};

struct Explanations {
    int view = 0;
    std::vector<ConflictExplanation> conflicts;
    bool stopped = false;
};

/// Explains every conflict of analyser view 6..11, which must have been analysed.
/// Stop (the current analyser's InProcess cleared) ends the searches.
Explanations ExplainConflicts(Workspace& workspace, int view, const ExplainOptions& options);

/// The notes on an SLR(1) or LALR(1) conflict in state `state` on `lookahead`
/// from the stronger methods whose results are kept: LALR(1) shares the LR(0)
/// states of SLR(1); canonical LR(1) splits a state into the states of the
/// same core.
QStringList StrongerMethodNotes(const Workspace& workspace, int view, int state, int lookahead);

/// "shift/reduce", "reduce/reduce", "ll" or "precedence": the kind as the
/// explanations and their JSON name it.
QString KindText(ConflictKind kind);

/// "<E>=( <E> [+] [a] )": a tree on one line.
QString TreeText(const Grammar& g, const DerivationTree& tree);
/// A tree as JSON: {"symbol", "rule", "children"}, a leaf as its symbol.
QJsonValue TreeJson(const Grammar& g, const DerivationTree& tree);

/// The readable blocks of trelk-cli explain.
QString ExplanationText(const Grammar& g, const Explanations& explanations);
/// The JSON object of trelk-cli explain --json.
QJsonObject ExplanationJson(const Grammar& g, const Explanations& explanations);
