/// \file
/// Ana10SPR: the simple-precedence test. Builds the relation matrix over every
/// symbol from the left and right sets of the precedence step; the listing and
/// the C table are PrecedenceAnalyser's.
#pragma once

#include "analysers/PrecedenceAnalyser.h"

class Ana10SPR final : public PrecedenceAnalyser {
public:
    explicit Ana10SPR(Model& model);

protected:
    bool Ready() override;
    /// Every symbol: the end marker, the terminals and the non-terminals.
    int MatrixSize() const override;
    void AddRelations(PrecedenceMatrix& matrix, const std::vector<int>& rule) override;
    /// The sample simple-precedence parser spr_recognize.
    QString Recognizer() const override;
};
