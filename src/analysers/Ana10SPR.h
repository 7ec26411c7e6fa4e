/// \file
/// Ana10SPR: the simple-precedence test. Builds the relation matrix over every
/// symbol from the left and right sets, lists it, and writes it as C. The
/// pieces the operator-precedence analyser shares with it (the relation codes,
/// the listing, the layout of the C table) are here too.
#pragma once

#include "model/IAnazer.h"
#include "model/Results.h"

#include <array>

class Model;
struct Settings;

namespace PrecedenceText {

/// The codes of <., .= and .> ("PSignLT", "PSignEQ", "PSignGT"), in the order
/// of PrecedenceMatrix::Relation.
std::array<int, 3> RelationCodes(const Settings& settings);

/// The result text of a built matrix: one line "SYNTA[i,j]=codes" per non-empty
/// cell, rows then columns in code order; the failure line first when a cell
/// conflicts; CR LF after every line. conflict tells whether one did.
QString Result(const PrecedenceMatrix& matrix, const QString& failureLine, bool& conflict);

/// The C text of a relation table: the composite of header, RLEN and RSYM, the
/// relation constants, START, the title with method ("simple precedence" or
/// "operator precedence") and SYNTA over the codes 0..matrix.Size()-1. Raises
/// the stored "CellWidth" to 4.
void WriteTable(TextSink& sink, Model& model, const PrecedenceMatrix& matrix, const QString& method);

/// The lines a sample parser starts with: the RULE table (numeric form, right
/// sides in order whatever the settings say) that it matches handles against,
/// and its stack limits.
QString RecognizerTables(const Model& model);

} // namespace PrecedenceText

class Ana10SPR final : public IAnazer {
public:
    explicit Ana10SPR(Model& model)
        : m_model(model)
    {
    }

    bool Analyze() override;
    QString TableDisplay() override;
    void WriteTable(TextSink& sink) override;
    QString ExportDisplay() override;

private:
    /// The sample simple-precedence parser spr_recognize.
    QString Recognizer() const;

    Model& m_model;
};
