/// \file
/// Grammar: the one grammar the user works on — its symbols and rules, the
/// per-rule and per-symbol data derived from them, the grammar sets, the
/// report texts and the 32 grammar-wide flags.
#pragma once

#include "grammar/CodeList.h"
#include "grammar/Host.h"
#include "grammar/Indexed.h"
#include "grammar/Limits.h"

#include <QString>
#include <QStringList>
#include <array>
#include <initializer_list>
#include <optional>
#include <vector>

/// Grammar-wide flag numbers with a fixed meaning.
namespace GrammarFlag {
constexpr int Parsed = 0;             ///< the grammar is parsed
constexpr int FirstDone = 2;          ///< nullable marks and FIRST are computed
constexpr int FollowBDone = 3;        ///< FOLLOWB is computed
constexpr int FollowLDone = 4;        ///< FOLLOWL is computed
constexpr int FollowRDone = 5;        ///< FOLLOWR is computed
constexpr int AnalysedLL = 6;         ///< views 6..11: that analysis has run
constexpr int AnalysedSLR = 7;
constexpr int AnalysedLALR = 8;
constexpr int AnalysedLR = 9;
constexpr int AnalysedSPR = 10;
constexpr int AnalysedOPR = 11;
constexpr int LLPermitted = 12;       ///< no left recursion: LL(1) may be tried
constexpr int SLRVerdict = 13;        ///< the grammar is SLR(1)
constexpr int LALRVerdict = 14;       ///< the grammar is LALR(1)
constexpr int LRVerdict = 15;         ///< the grammar is LR(1)
constexpr int NoEqualRightSides = 22; ///< no two rules have the same right side
constexpr int HasEmptyRule = 23;      ///< at least one rule is empty
constexpr int LeftRecursive = 24;     ///< the grammar is left-recursive
constexpr int Count = 32;
} // namespace GrammarFlag

/// Where the last parse stopped and why. The text is the message shown; the
/// place is what the editor puts the cursor on: line counts the non-blank
/// lines from 1, column is the position on the line after the cut before its
/// first "<" with spaces removed (0 when the message names a line only, and
/// line 0 when it names no place, as for an undefined non-terminal).
struct ParseError {
    int line = 0;
    int column = 0;
    QString text;

    friend bool operator==(const ParseError&, const ParseError&) = default;
};

/// The text every report and result slot holds until it is computed.
inline const QString NotAnalyzed = QStringLiteral("Not analyzed.");

/// The state of the precedence work: written by FindLeftAndRightSets and by the
/// simple- and operator-precedence analysers, read by both analysers, the C
/// text and the export. Reset by Clear.
struct PrecedenceState {
    bool sprPossible = false;    ///< cleared when the grammar cannot be simple precedence
    bool oprPossible = false;    ///< the same for operator precedence
    bool sprSetsDone = false;    ///< leftSet / rightSet are computed (or need not be)
    bool oprSetsDone = false;    ///< leftTermSet / rightTermSet are computed
    bool sprSetsValid = false;   ///< every non-terminal has a non-empty left and right set
    bool oprSetsValid = false;   ///< every non-terminal has non-empty terminal sets
    bool sprTableBuilt = false;  ///< the simple-precedence matrix is complete and exportable
    bool oprTableBuilt = false;  ///< the operator-precedence matrix is complete and exportable
    QString sprText = NotAnalyzed;  ///< the simple-precedence result text
    QString oprText = NotAnalyzed;  ///< the operator-precedence result text
};

/// Symbol coding (shared by every part of the program): 0 is the end marker;
/// terminals are 1..terminalCount in order of first appearance; non-terminals
/// are firstNonterminal..lastCode in order of first appearance, the goal always
/// firstNonterminal; -2 is the augmented start symbol "<'>" and -1 the item
/// mark of LR displays.
///
/// Rules are vectors of codes: element 0 is the left side, elements 1.. the
/// right side; an empty rule is exactly {left, 0}. Rule 0 is {-2, goal}; rules
/// 1..ruleCount are the user's, pairwise different, none of the form A = A.
///
/// Arrays "per non-terminal" are indexed by the symbol code itself (size
/// lastCode + 1; the entries below firstNonterminal are unused), so that code
/// arithmetic never appears at the call sites.
class Grammar {
public:
    explicit Grammar(Host* host = nullptr);

    /// The host through which messages are shown and the message loop is given
    /// turns. Never null (a silent host stands in).
    Host& host() const { return *m_host; }
    void setHost(Host* host);

    // ---- Properties and housekeeping -------------------------------------

    /// Resets everything: symbols, rules, sets, flags, reports; Parsed false.
    void Clear();
    QString InitDir() const { return m_initDir; }
    QString Name() const { return m_name; }
    QString Path() const { return m_path; }
    /// Stores the path; when it holds a separator, derives InitDir (with the
    /// trailing separator) and Name (the file name less its last four characters).
    void SetPath(const QString& path);
    /// The error that ended the last SetText; none when it parsed, was blank or was stopped.
    const std::optional<ParseError>& LastParseError() const { return m_parseError; }

    /// The memory and size limits of this grammar's computations (Clear keeps them).
    ResourceLimits limits;

    bool InProcess() const { return m_inProcess; }
    void SetInProcess(bool value) { m_inProcess = value; }
    bool Parsed() const { return m_parsed; }
    void SetParsed(bool value) { m_parsed = value; }

    /// The canonical text of the grammar ("#0 <goal>", "#1 <A>=...", CR LF between);
    /// empty when there are no terminals. Kept in grammarText as well.
    QString Text();
    /// Parses and checks text; shows the first error through the host and returns
    /// false. True also for a left-recursive grammar (recorded, not rejected).
    bool SetText(const QString& text);
    /// True when text has no line with anything but spaces: SetText then returns
    /// false at once, without a message, and keeps the grammar as it was.
    static bool IsBlankText(const QString& text);

    /// One symbol for reports: "$" for the end marker, "[t]", "<N>", "<'>", "•".
    QString GetSymbolS(int code) const;
    /// The same, with "EOT" for the end marker (generated text).
    QString GetSymbolT(int code) const;

    /// The FIRST report; "Not analyzed." until FIRST is computed. Built on first
    /// request and kept in firstReport until the sets change.
    QString CommentedFirst();

    /// The C identifier of a symbol: endMarkerText for code 0, otherwise "TOK_" or
    /// "SYM_" and the upper-cased name with mnemonics, replacements and
    /// transliteration (SymbolNames.cpp).
    QString GetSymbolName(int code, const QString& endMarkerText) const;
    /// Identifiers GetSymbolName gives instead, by code from 1, while not empty:
    /// the standalone C program sets them for the time it writes the tables.
    QStringList cNames;
    /// The plain symbol listing followed by the body of the token enumeration;
    /// "Not analyzed." until parsed.
    QString CommentedSymbolsDisplay() const;
    /// The FOLLOWB report, labelled "BASIS(".
    QString CommentedBasis();
    /// The FOLLOWL report, labelled "FOLLOWL(" (the FOLLOWR report beside it must not read the same).
    QString CommentedFollowL();
    /// The FOLLOWR report, labelled "FOLLOWR(".
    QString CommentedFollowR();
    /// The detailed report: "FOLLOWB(", "FOLLOWL(" and "FOLLOWR(" lines per
    /// non-terminal; "Not analyzed." until all three are computed. Built on
    /// each request.
    QString CommentedFollowSets();
    /// The rule report of view 0: the counts, then one line per rule; "Not
    /// analyzed." until parsed. Built on each request.
    QString CommentedRules();

    /// The follow sets: each does nothing unless its precondition flag is set
    /// (FIRST for FOLLOWB, FOLLOWB for the other two) and its own flag is clear.
    void FindFollowB();
    void FindFollowL();
    void FindFollowR();
    /// The precedence step (PrecedenceSets.cpp): refuses grammars with empty
    /// rules or equal right parts, notes adjacent non-terminals for operator
    /// precedence, then computes leftSet and rightSet; writes precedence.
    void FindLeftAndRightSets();

    /// Takes a snapshot of the names, the rules and the five counts into the
    /// copy* fields, for the transformations.
    void MakeACopy();

    // ---- Grammar-wide flags ------------------------------------------------

    /// Makes the 32 flags afresh, every one empty (reads as false).
    void ResetFlags();
    void SetFlag(int index, bool value);
    bool GetFlag(int index) const;
    /// The stored value, empty when never written (the compiled file keeps the difference).
    std::optional<bool> FlagValue(int index) const { return flags[index]; }
    void SetFlagValue(int index, std::optional<bool> value) { flags[index] = value; }

    // ---- Code helpers ------------------------------------------------------

    bool IsTerminal(int code) const { return code > 0 && code < firstNonterminal; }
    bool IsNonterminal(int code) const { return code >= firstNonterminal; }
    const QString& SymbolName(int code) const { return symbolNames[code + 2]; }
    /// Number of right-side symbols of rule r (0 for an empty rule).
    int RightLength(int r) const
    {
        return ruleIsEmpty[r] ? 0
                                                         : static_cast<int>(rules[r].size()) - 1;
    }
    int NonterminalCount() const { return lastCode - terminalCount; }

    // ---- Grammar data (filled by SetText, reset by Clear) ------------------

    Indexed<QString> symbolNames;      ///< index code + 2: "<'>", "•", ".", terminals, non-terminals
    Indexed<QString> terminalNames;    ///< parse-time terminal names, from 1 (0 unused)
    Indexed<QString> nonterminalNames; ///< parse-time non-terminal names, from 1 (0 unused)
    int ruleCount = 0;                     ///< R: the highest rule number (rule 0 not counted)
    int lastCode = 0;                      ///< T + N: the last symbol code
    int terminalCount = 0;                 ///< T
    int firstNonterminal = 1;              ///< T + 1
    int goal = 0;                          ///< the goal's code (always T + 1 once parsed)
    Indexed<std::vector<int>> rules;   ///< 0..R, as described above
    Indexed<char> ruleIsEmpty;         ///< 0..R: the rule is {left, 0}
    Indexed<char> hasEmptyRule;        ///< by code: the non-terminal heads an empty rule
    Indexed<char> nullable;            ///< by code: the non-terminal derives the empty string
    Indexed<char> leftRecursive;       ///< by code: the left-recursion test marked it
    Indexed<char> ruleNullable;        ///< 0..R: empty, or only nullable non-terminals on the right

    int maxRuleLength = 0;       ///< longest non-empty rule in elements, left side included
    int maxTerminalName = 1;     ///< longest terminal name (at least 1)
    int maxNonterminalName = 1;  ///< longest non-terminal name (at least 1)
    int maxName = 1;             ///< longest name of either kind (at least 1)

    // ---- Sets (see GrammarSets.cpp) ----------------------------------------

    Indexed<CodeList> first;        ///< by code: FIRST of a non-terminal (terminals only)
    Indexed<CodeList> firstOfRule;  ///< 1..R: FIRST of the right side, 0 when it derives ε
    Indexed<CodeList> followB;      ///< by code: FOLLOWB (the BASIS report)
    Indexed<CodeList> followL;      ///< by code: FOLLOWL (used by LL(1))
    Indexed<CodeList> followR;      ///< by code: FOLLOWR (used by SLR(1))
    Indexed<CodeList> directFirst;  ///< by code: non-terminals that start a right side of it
    Indexed<CodeList> leftSet;      ///< by code: precedence left sets
    Indexed<CodeList> rightSet;     ///< by code: precedence right sets
    Indexed<CodeList> leftTermSet;  ///< by code: operator-precedence left terminal sets
    Indexed<CodeList> rightTermSet; ///< by code: operator-precedence right terminal sets

    // ---- Texts ---------------------------------------------------------------

    QString grammarText;      ///< the last text produced by Text()
    QString symbolListing;    ///< plain symbol listing built after a parse ("0 EOT", ...)
    QString firstReport;      ///< FIRST report: "Not analyzed.", or empty until first asked for
    QString followBReport;    ///< FOLLOWB (BASIS) report
    QString followLReport;    ///< FOLLOWL report
    QString followRReport;    ///< FOLLOWR report
    QString llRejection;      ///< the LL(1) verdict stored when left recursion is found

    std::array<std::optional<bool>, GrammarFlag::Count> flags{}; ///< the grammar-wide flags
    PrecedenceState precedence;  ///< flags and result texts of the two precedence analysers

    // ---- Snapshot taken by MakeACopy -----------------------------------------

    Indexed<QString> copySymbolNames;        ///< index code + 2, as symbolNames
    Indexed<std::vector<int>> copyRules;     ///< 0..copyRuleCount, as rules
    int copyGoal = 0;
    int copyFirstNonterminal = 1;
    int copyTerminalCount = 0;
    int copyRuleCount = 0;
    int copyLastCode = 0;

private:
    // Parse steps (GrammarParser.cpp).
    /// SetText for a text that is not blank, without the guard against running out of memory.
    bool ReadText(const QString& text);
    bool ParseGrammarText(const QString& text);
    bool CheckDefinitions();
    void BuildSymbolListing();
    void FindEqualRightSides();
    void ComputeNameLengths();
    void MarkEmptyRules();
    /// The sets computed as part of the parse: nullable marks, FIRST per
    /// non-terminal and per rule. Sets flag 2 and the FIRST report when done.
    void ComputeFirstSets();
    /// Closes precedence sets: a member non-terminal brings in its own set, pass
    /// by pass until a pass adds nothing. False when stopped through InProcess or
    /// when the growth spends budget.
    bool ClosePrecedenceSets(std::vector<CodeList>& sets, SetBudget& budget);
    /// The left-recursion test (LeftRecursion.cpp); marks leftRecursive.
    bool FindLeftRecursion();
    /// What one family of sets may take while it grows: the set limit less the
    /// bytes the other families hold.
    SetBudget SetAllowance(std::initializer_list<const Indexed<CodeList>*> family) const;
    /// Shows that a family of sets passed the set limit, and stops the run.
    void RefuseSets(const QString& sets);
    /// FOLLOWL or FOLLOWR from FOLLOWB (FollowSets.cpp): copies FOLLOWB into sets,
    /// adds FIRST of the non-terminal members (of the nullable non-terminals only,
    /// skipping X == A, when nullableOnly), keeps codes below firstNonterminal.
    /// False when stopped through InProcess or by the set limit (named by label).
    bool ExpandFollowSets(Indexed<CodeList>& sets, bool nullableOnly, const QString& label);
    /// Report text builders (GrammarReports.cpp).
    QString BuildFirstReport() const;
    /// One line per non-terminal: label, symbol, ")", " = " and the members.
    QString BuildSetReport(const QString& label, const std::vector<CodeList>& sets) const;
    /// Every symbol printed with GetSymbolS, by code (reports print many members).
    Indexed<QString> PrintedSymbols() const;
    /// The width to which "LABEL(" + symbol + ")" is padded, so that the "="
    /// signs of a report line up.
    qsizetype LabelWidth(qsizetype labelLength) const;

    Host* m_host;
    QString m_path;
    QString m_initDir;
    QString m_name;
    bool m_inProcess = false;
    std::optional<ParseError> m_parseError;
    bool m_parsed = false;
};
