/// \file
/// Model construction, the status texts and the reset of results.
#include "model/Model.h"

Model::Model(Host* host)
    : grammar(host)
    , m_host(host ? host : &SilentHost::Instance())
{
}

void Model::setHost(Host* host)
{
    m_host = host ? host : &SilentHost::Instance();
    grammar.setHost(m_host);
}

void Model::SetStatus(StatusField field, const QString& text)
{
    m_status[static_cast<std::size_t>(field)] = text;
    m_host->status(field, text);
}

void Model::ResetResults()
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
    for (int flag = GrammarFlag::AnalysedLL; flag <= GrammarFlag::AnalysedOPR; ++flag)
        grammar.SetFlag(flag, false);
}
