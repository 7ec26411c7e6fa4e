/// \file
/// Workspace construction and the host it hands to its parts.
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
