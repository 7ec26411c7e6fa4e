/// \file
/// PrecedenceAnalyser: what the simple- and operator-precedence analysers
/// share — the run (the precedence step on demand, the relation matrix rule by
/// rule, the end marker, the verdict), the result text, the C table and the
/// lines a sample parser starts with. Each analyser supplies its own
/// preconditions, the size of its matrix, the relations of a rule and its
/// sample parser.
#pragma once

#include "model/IAnazer.h"
#include "model/Results.h"

#include <vector>

class Model;

class PrecedenceAnalyser : public IAnazer {
public:
    bool Analyze() override;
    QString TableDisplay() override;
    /// The matrix over every symbol of a large grammar runs to megabytes: written row by row.
    void WriteTable(TextSink& sink) override;
    /// The result text kept by the last run: one line per relation, the failure line first.
    QString ExportDisplay() override;

protected:
    /// What tells the two methods apart besides the relations of a rule: their
    /// texts and where their results and flags are kept.
    struct Method {
        QString title;          ///< "simple precedence": the C table's title
        QString failure;        ///< the first line of the result text when a cell conflicts
        int analysedFlag;       ///< grammar flag: this analysis has run
        PrecedenceResults& results;  ///< the kept matrix
        QString& text;               ///< the kept result text
        bool& tableBuilt;            ///< the matrix is complete and exportable
        bool& possible;              ///< cleared when the grammar fails the method
        /// by non-terminal: what its derivations begin with (simple precedence: any
        /// symbol; operator precedence: the first terminal), and what they end with.
        const std::vector<CodeList>& heads;
        const std::vector<CodeList>& tails;
    };
    PrecedenceAnalyser(Model& model, const Method& method)
        : m_model(model)
        , m_method(method)
    {
    }

    /// Whether the matrix can be built: the sets it needs are there and valid.
    /// Runs after the precedence step; may compute sets of its own.
    virtual bool Ready() = 0;
    /// Rows (and columns) of the matrix.
    virtual int MatrixSize() const = 0;
    /// Enters the relations that one rule (left side, then right side) gives.
    virtual void AddRelations(PrecedenceMatrix& matrix, const std::vector<int>& rule) = 0;
    /// The sample parser that follows the tables with "GenerateRecognizer".
    virtual QString Recognizer() const = 0;

    const CodeList& Heads(int nonterminal) const { return m_method.heads[nonterminal]; }
    const CodeList& Tails(int nonterminal) const { return m_method.tails[nonterminal]; }

    Model& m_model;

private:
    /// One line "SYNTA[i,j]=codes" per non-empty cell, rows then columns in code
    /// order; the failure line first when a cell conflicts; CR LF after every line.
    QString ResultText(bool& conflict);
    /// The composite of header, RLEN and RSYM, the relation constants, START, the
    /// title and SYNTA over the codes 0..size-1. Raises the stored "CellWidth" to 4.
    void WriteRelationTable(TextSink& sink);
    /// The RULE table (numeric form, right sides in order whatever the settings
    /// say) that a sample parser matches handles against, and its stack limit.
    QString RecognizerTables() const;

    Method m_method;
};
