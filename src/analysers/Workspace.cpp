/// \file
/// Workspace construction, the status texts, Stop and the reset of results.
#include "analysers/Workspace.h"

Workspace::Workspace(Host* host)
    : grammar(host)
    , m_host(host ? host : &SilentHost::Instance())
{
}

void Workspace::setHost(Host* host)
{
    m_host = host ? host : &SilentHost::Instance();
    grammar.setHost(m_host);
}

void Workspace::SetStatus(StatusField field, const QString& text)
{
    m_status[static_cast<std::size_t>(field)] = text;
    m_host->status(field, text);
}

void Workspace::Stop()
{
    grammar.SetInProcess(false);
    if (current)
        current->SetInProcess(false);
}

void Workspace::ResetResults()
{
    ll.Reset();
    slr.Reset();
    lalr.Reset();
    lr.Reset();
    spr.Reset();
    opr.Reset();
    PrecedenceState& p = grammar.precedence;
    p.sprTableBuilt = p.oprTableBuilt = false;
    p.sprText = p.oprText = NotAnalyzed;
    for (int view = GrammarFlag::AnalysedLL; view <= GrammarFlag::AnalysedOPR; ++view)
        grammar.SetFlag(view, false);
}
