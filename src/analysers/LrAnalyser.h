/// \file
/// LrAnalyser: what the three LR analysers share — the verdict frame, the
/// accept entry, the writing of reduces with its conflict report, the two
/// result texts and the C text. Each analyser supplies its automaton and the
/// look-aheads of its reduces.
#pragma once

#include "model/IAnazer.h"
#include "analysers/LrAutomaton.h"

/// By state: the reduces of its complete items, each a rule and the look-ahead
/// codes it is written under, in order.
using StateReduces = std::vector<std::pair<int, std::vector<int>>>;
using ReduceList = std::vector<StateReduces>;

/// One state's row of the table: its transitions, the accept entry (when
/// acceptEntry is not 0, in the end-marker column), then its reduces in order,
/// each into the cells still empty. A cell keeps what it holds, on purpose
/// without any precedence rule: a shift or an earlier reduce wins, and
/// refused(column, kept, -rule) hears of each reduce it turns away. scratch is
/// one zero per code and is left so. The run and the check of a restored
/// companion write rows through this one routine.
SparseRow WriteRow(const SparseRow& transitions, int acceptEntry, const StateReduces& reduces,
                   std::vector<int>& scratch, std::vector<int>& touched,
                   const std::function<void(int column, int kept, int rejected)>& refused);

class LrAnalyser : public IAnazer {
public:
    bool Analyze() override;
    QString TableDisplay() override;
    /// The C text streamed: tables of large grammars run to tens of megabytes.
    void WriteTable(TextSink& sink) override;
    /// The table listing (verdict, actions per state, refused reduces).
    QString ExportDisplay() override;
    /// The item-set listing (kernel items, or every item with "DisplayAllItems").
    QString ItemDisplay();

protected:
    struct Kind {
        int analysedFlag;   ///< grammar flag: this analysis has run
        int verdictFlag;    ///< grammar flag: the grammar passes it
        const char* shortName;  ///< "SLR", "LALR", "LR"
        const char* verdict;    ///< "This Grammar Is Not SLR(1)." etc.
        bool showPass;          ///< writes "Pass: N"
        ConflictMethod method;  ///< what its conflict records say
        KeptLookaheads lookaheads = KeptLookaheads::None;  ///< the items its look-aheads are kept for
    };
    LrAnalyser(Model& model, LrResults& results, const Kind& kind)
        : m_model(model)
        , m_results(results)
        , m_kind(kind)
    {
    }

    /// Makes sure the sets the analyser needs exist; false when they cannot be had.
    virtual bool Prepare() { return true; }
    /// Builds the automaton into the results (kernels, rows, accessing, and the
    /// look-aheads of the items Kind::lookaheads names) and the reduces of every state.
    virtual bool Build(const LrGrammar& lg, PassFrame& frame, ReduceList& reduces) = 0;

    Model& m_model;
    LrResults& m_results;

private:
    QString BuildTableText() const;
    QString BuildItemText() const;
    QString Recognizer() const;

    Kind m_kind;
};
