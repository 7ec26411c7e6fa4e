/// \file
/// Model: the data every computation reads and writes — the grammar with its
/// sets and reports, the settings values, the analysers' kept results and the
/// status texts of the current run, reported through one host. The analysers
/// and the transformations work on it; the session's Workspace adds the
/// commands and the Stop of a run on top.
#pragma once

#include "grammar/Grammar.h"
#include "grammar/Host.h"
#include "model/Results.h"
#include "model/Settings.h"

#include <array>

class Model {
public:
    explicit Model(Host* host = nullptr);
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
    virtual ~Model() = default;

    /// The host every computation of this model reports through.
    Host& host() const { return *m_host; }
    void setHost(Host* host);

    /// Shows text in a status label and remembers it (the run copies the
    /// captions into the analyser's saved status texts).
    void SetStatus(StatusField field, const QString& text);
    QString Status(StatusField field) const { return m_status[static_cast<std::size_t>(field)]; }

    /// Empties every analyser's tables, puts "Not analyzed." back into their
    /// texts, clears their saved status texts and analysed flags.
    void ResetResults();

    Grammar grammar;    ///< the current grammar, its sets, reports and flags
    Settings settings;  ///< the values of section "Main"

    LLResults ll;       ///< LL(1): SYNTA and its text
    LrResults slr;      ///< SLR(1)
    LrResults lalr;     ///< LALR(1)
    LrResults lr;       ///< canonical LR(1)
    PrecedenceResults spr;  ///< simple precedence: the relation matrix over 0..N
    PrecedenceResults opr;  ///< operator precedence: the relation matrix over 0..T

private:
    Host* m_host;
    std::array<QString, 3> m_status;
};
