/// \file
/// The analyser of each view.
#include "analysers/Ana06LL.h"
#include "analysers/Ana07SLR.h"
#include "analysers/Ana08LALR.h"
#include "analysers/Ana09LR.h"
#include "analysers/Ana10SPR.h"
#include "analysers/Ana11OPR.h"
#include "analysers/AnalysisRun.h"

std::unique_ptr<IAnazer> MakeAnalyser(Workspace& workspace, int view)
{
    switch (view) {
    case View::LL:
        return std::make_unique<Ana06LL>(workspace);
    case View::SLR:
        return std::make_unique<Ana07SLR>(workspace);
    case View::LALR:
        return std::make_unique<Ana08LALR>(workspace);
    case View::LR:
        return std::make_unique<Ana09LR>(workspace);
    case View::SPR:
        return std::make_unique<Ana10SPR>(workspace);
    case View::OPR:
        return std::make_unique<Ana11OPR>(workspace);
    default:
        return nullptr;
    }
}
