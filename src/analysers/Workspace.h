/// \file
/// Workspace: the program-wide state in one object — the grammar with its sets
/// and reports, the settings values, the analysers' kept results and the
/// status texts of the current run. The main window owns one for the
/// program's life; trelk-cli makes one per run; tests make as many as they like.
#pragma once

#include "analysers/IAnazer.h"
#include "analysers/Results.h"
#include "grammar/Grammar.h"
#include "grammar/Host.h"
#include "storage/Settings.h"

#include <array>
#include <memory>

class Workspace {
public:
    explicit Workspace(Host* host = nullptr);
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// The host every computation of this workspace reports through.
    Host& host() const { return *m_host; }
    void setHost(Host* host);

    /// Shows text in a status label and remembers it (the run copies the
    /// captions into the analyser's saved status texts).
    void SetStatus(StatusField field, const QString& text);
    QString Status(StatusField field) const { return m_status[static_cast<std::size_t>(field)]; }

    /// The Stop command: clears the grammar's InProcess and the current analyser's.
    void Stop();

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

    /// The analyser of the last Analyse or Export on an analyser view (may be null).
    std::unique_ptr<IAnazer> current;

    /// The last failure of a grammar file or compiled grammar file operation,
    /// kept for later display: the whole report ("Error encountered: " ...),
    /// the error number, its description and the operation ("TKCSave", "TKCRead").
    struct FileError {
        QString text;
        QString number;
        QString description;
        QString source;
    } lastFileError;

private:
    Host* m_host;
    std::array<QString, 3> m_status;
};
