/// \file
/// Ana11OPR: the operator-precedence test. Computes the left and right terminal
/// sets (GetLRSets), builds the relation matrix over the end marker and the
/// terminals, lists it, and writes it as C in the layout of Ana10SPR.
#pragma once

#include "model/IAnazer.h"

class Model;

class Ana11OPR final : public IAnazer {
public:
    explicit Ana11OPR(Model& model)
        : m_model(model)
    {
    }

    bool Analyze() override;
    QString TableDisplay() override;
    void WriteTable(TextSink& sink) override;
    QString ExportDisplay() override;

    /// The left and right terminal sets of every non-terminal (the first and the
    /// last terminal of what it derives), closed through the left and right sets
    /// of the precedence step, which must be done. Leaves the grammar's
    /// operator-precedence flags (sets done, sets valid) and, for a non-terminal
    /// with an empty set, the refusal text.
    void GetLRSets();

private:
    /// The sample operator-precedence parser opr_recognize.
    QString Recognizer() const;

    Model& m_model;
};
