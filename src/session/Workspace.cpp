/// \file
/// The Stop command.
#include "session/Workspace.h"

void Workspace::Stop()
{
    grammar.SetInProcess(false);
    if (current)
        current->SetInProcess(false);
}
