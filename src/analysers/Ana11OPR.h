/// \file
/// Ana11OPR: the operator-precedence test. Computes the left and right terminal
/// sets (GetLRSets) and builds the relation matrix over the end marker and the
/// terminals; the listing and the C table are PrecedenceAnalyser's.
#pragma once

#include "analysers/PrecedenceAnalyser.h"

class Ana11OPR final : public PrecedenceAnalyser {
public:
    explicit Ana11OPR(Model& model);

    /// The left and right terminal sets of every non-terminal (the first and the
    /// last terminal of what it derives), closed through the left and right sets
    /// of the precedence step, which must be done. Leaves the grammar's
    /// operator-precedence flags (sets done, sets valid) and, for a non-terminal
    /// with an empty set, the refusal text.
    void GetLRSets();

protected:
    /// The precedence step allows it, and the terminal sets (computed here) are valid.
    bool Ready() override;
    /// The end marker and the terminals.
    int MatrixSize() const override;
    void AddRelations(PrecedenceMatrix& matrix, const std::vector<int>& rule) override;
    /// The sample operator-precedence parser opr_recognize.
    QString Recognizer() const override;
};
