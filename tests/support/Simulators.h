/// \file
/// The token-string simulators of the tests: what a kept table says of an
/// input (terminal codes without the end marker), read straight off the
/// analysis results, for comparing generated recognizers against.
#pragma once

#include "session/Workspace.h"

#include <vector>

/// What the LL(1) table says of a token string, by the table itself: the first
/// rule of a conflicting cell, as the C text has it.
bool SimulateLL(const Workspace& ws, const std::vector<int>& input);

/// What the LR table r says of a token string.
bool SimulateLR(const Workspace& ws, const LrResults& r, const std::vector<int>& input);

/// Parses tokens by the precedence table (simple or operator precedence): shift
/// on <. and .=; on .> reduce the handle, down to the nearest <. (between the
/// top and the token for simple precedence, between terminals for operator
/// precedence, where any non-terminal of a right side matches any other). A
/// conflicting cell reads EQ, then LT, then GT, as the C table writes it.
bool SimulatePrecedence(const Workspace& ws, std::vector<int> tokens, bool simple);
