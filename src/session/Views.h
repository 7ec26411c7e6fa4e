/// \file
/// The twelve views of the workbench in one table: what each is called in the
/// selector and in trelk-cli, its export file, the analyser that fills it and
/// the grammar flag that says it has run. The window, the analysis run, the
/// export and trelk-cli all read this table; adding a method is one row.
#pragma once

#include "model/Conflicts.h"
#include "model/IAnazer.h"
#include "model/Model.h"

#include <QString>
#include <memory>
#include <span>

/// The views, in the order of the view selector; views 6..11 are analysers.
namespace View {
constexpr int Grammar = 0;
constexpr int Symbols = 1;
constexpr int First = 2;
constexpr int Basis = 3;
constexpr int FollowL = 4;
constexpr int FollowR = 5;
constexpr int LL = 6;
constexpr int SLR = 7;
constexpr int LALR = 8;
constexpr int LR = 9;
constexpr int SPR = 10;
constexpr int OPR = 11;
constexpr int Count = 12;
} // namespace View

/// What a view shows.
enum class ViewFamily {
    Rules,       ///< the numbered rules
    Report,      ///< a report of the grammar: symbols or a set
    LL,          ///< the LL(1) table
    LR,          ///< an LR table and its item sets
    Precedence,  ///< a precedence relation matrix
};

struct ViewInfo {
    int number;
    ViewFamily family;
    const char* name;          ///< trelk-cli's name: "grammar", "lalr", ...
    const char* glyph;         ///< the text of the selector's picture: "G", "LA"
    const char* tip;           ///< the selector's tool tip
    const char* method;        ///< the method as summary and the window name it ("LALR(1)"); "" for a report
    const char* exportSuffix;  ///< the export file's suffix: "-8-LALR-table.txt"
    int analysedFlag;          ///< the grammar flag set once the analyser has run; -1 for a report
    /// The report the output box shows after Analyse (the rule listing, the
    /// symbol and set views); null for the analysers.
    QString (*shownReport)(Grammar&);
    /// The report Export writes for a grammar view (0..5); null for analysers.
    QString (*exportedReport)(Grammar&);
    /// A new analyser of the view over the model; null for a report.
    std::unique_ptr<IAnazer> (*make)(Model&);
    /// The view's kept LR results, or its kept precedence results; null when it has none.
    LrResults Model::*lrResults;
    PrecedenceResults Model::*precedenceResults;

    bool IsAnalyser() const { return make != nullptr; }
    /// A table for the grid and the C text.
    bool HasTable() const { return IsAnalyser(); }
    /// Item sets besides the table listing (the LR views).
    bool HasItems() const { return family == ViewFamily::LR; }
};

/// Every view, in selector order (Views()[v].number == v).
std::span<const ViewInfo> Views();
/// The view numbered view; view must lie in 0..View::Count-1.
const ViewInfo& ViewOf(int view);
/// The view numbered view, or null for a number that names none.
const ViewInfo* FindView(int view);
/// The view a number ("8") or a trelk-cli name ("lalr", any letter case) names; -1 for none.
int ParseView(const QString& text);

/// The saved status texts of an analyser view (null for a report or no view).
SavedStatus* SavedStatusOf(Model& model, int view);
/// Whether the analyser of view has run on the current grammar (false for a report or no view).
bool IsAnalysed(const Model& model, int view);

/// The kept LR results of view; null for a view without them.
const LrResults* LrResultsOf(const Model& model, int view);
/// The kept precedence results of view; null for a view without them.
const PrecedenceResults* PrecedenceResultsOf(const Model& model, int view);
/// The conflict records of an analysed view as its kept table has them: LR's
/// as the run wrote them, LL(1)'s and precedence's read off their tables.
/// None for a view not analysed.
std::vector<Conflict> ConflictsOf(const Model& model, int view);
