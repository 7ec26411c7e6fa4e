/// \file
/// Ana06LL: the LL(1) test. Builds the predictive table SYNTA from FIRST of
/// every rule and FOLLOWL, lists it, and writes it as C.
#pragma once

#include "model/IAnazer.h"

class Model;

class Ana06LL final : public IAnazer {
public:
    explicit Ana06LL(Model& model)
        : m_model(model)
    {
    }

    bool Analyze() override;
    QString TableDisplay() override;
    QString ExportDisplay() override;

    /// The POP and accept codes of the C text: 254 and 255, or R+1 and R+2 from 254 rules on.
    static int PopCode(int ruleCount) { return ruleCount < 254 ? 254 : ruleCount + 1; }
    static int AccCode(int ruleCount) { return ruleCount < 254 ? 255 : ruleCount + 2; }

private:
    QString Recognizer() const;

    Model& m_model;
};
