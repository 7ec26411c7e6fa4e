/// \file
/// The check of a state that TKCRead restored against the grammar text it was
/// opened with.
#pragma once

#include <QString>

class Workspace;

/// After TKCRead: keeps the restored state only when it belongs to text and
/// holds together, that is when parsing text gives the same symbols, rules and
/// parse-derived data, and every code, rule, state and item number in the
/// analysers' results lies within that grammar. Otherwise the grammar is
/// cleared and every analyser's results are reset, silently: nothing shown may
/// come from the results of another text. Returns true when the state was kept.
bool CheckRestoredState(Workspace& workspace, const QString& text);
