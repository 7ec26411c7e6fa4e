/// \file
/// IAnazer: the interface every grammar test implements. A new analyser object
/// is made for each run; its results live in the Workspace and outlive it.
#pragma once

#include "model/TextSink.h"

#include <QString>

class IAnazer {
public:
    virtual ~IAnazer() = default;
    /// True while an analysis runs; Stop clears it and Analyze returns at its next test.
    bool InProcess() const { return m_inProcess; }
    void SetInProcess(bool value) { m_inProcess = value; }
    /// Runs the test on the workspace's grammar; true when the grammar passes it.
    /// Fills the analyser's kept results (tables, result text).
    virtual bool Analyze() = 0;
    /// The C source of the analyser's tables, built from the kept results; "" before a run.
    virtual QString TableDisplay() = 0;
    /// The same C text written to a sink; analysers with large tables stream it.
    virtual void WriteTable(TextSink& sink) { sink.Write(TableDisplay()); }
    /// The result text (verdict and listing) of the last Analyze.
    virtual QString ExportDisplay() = 0;

private:
    bool m_inProcess = false;
};
