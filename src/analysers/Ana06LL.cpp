/// \file
/// The LL(1) analyser.
#include "analysers/Ana06LL.h"

#include "model/Model.h"
#include "output/CTables.h"

bool Ana06LL::Analyze()
{
    Grammar& g = m_model.grammar;
    LLResults& ll = m_model.ll;
    if (!g.GetFlag(GrammarFlag::FollowLDone)) {
        g.SetInProcess(true);
        g.FindFollowB();
        g.FindFollowL();
    }
    if (!g.GetFlag(GrammarFlag::FollowLDone))
        return false;
    if (!g.GetFlag(GrammarFlag::LLPermitted)) {
        // Left recursion: the verdict the parse stored stands as the result.
        if (g.GetFlag(GrammarFlag::LeftRecursive))
            ll.text = g.llRejection;
        return false;
    }

    const int n = g.lastCode;
    const int t = g.terminalCount;
    LLTable& synta = ll.synta;
    // Asked for before the table is made: 100,000 terminals and as many
    // non-terminals would want 40 GB.
    const std::uint64_t bytes = LLTable::Bytes(n + 1, t + 1);
    if (bytes > g.limits.tableBytes) {
        synta.Clear();
        m_model.host().critical(TableTooLargeText(QStringLiteral("LL(1) table"), bytes));
        SetInProcess(false);
        return false;
    }
    synta.Reset(n + 1, t + 1);
    synta.Set(0, 0, LLTable::kAcc);  // end of text on the stack meets end of input
    for (int i = 1; i <= t; ++i)
        synta.Set(i, i, LLTable::kPop);

    bool conflict = false;
    // First pass: each rule under the terminals of its FIRST set.
    for (int r = 1; r <= g.ruleCount; ++r) {
        if (g.ruleIsEmpty[r])
            continue;
        const int a = g.rules[r][0];
        for (int x : g.firstOfRule[r])
            if (x != 0)
                conflict |= !synta.Enter(a, x, r);
    }
    m_model.host().yield();
    if (!InProcess())
        return false;
    // Second pass: a rule that can derive the empty string (empty, or nullable
    // non-terminals only: a terminal anywhere fails the test) under FOLLOWL of
    // its left side, the end of text included.
    for (int r = 1; r <= g.ruleCount; ++r) {
        const int a = g.rules[r][0];
        if (!g.nullable[a] || !g.ruleNullable[r])
            continue;
        for (int x : g.followL[a])
            conflict |= !synta.Enter(a, x, r);
    }
    m_model.host().yield();
    if (!InProcess())
        return false;

    // Listing: the non-terminal rows first, then the rows of the end marker and the terminals.
    QString listing;
    auto listRow = [&](int row) {
        for (int col = 0; col <= t; ++col) {
            if (synta.First(row, col) == LLTable::kEmpty)
                continue;
            if (!listing.isEmpty())
                listing += kEol;
            listing += QStringLiteral("SYNTA[") + QString::number(row) + QLatin1Char(',') + QString::number(col)
                     + QStringLiteral("]=") + synta.CellText(row, col);
        }
    };
    for (int row = g.firstNonterminal; row <= n; ++row)
        listRow(row);
    for (int row = 0; row <= t; ++row)
        listRow(row);

    if (conflict)
        listing = QStringLiteral("This Grammar Is Not LL(1).") + kEol + listing;
    g.SetFlag(GrammarFlag::LLPermitted, !conflict);
    ll.text = listing + kEol;
    g.SetFlag(GrammarFlag::AnalysedLL, true);
    return !conflict;
}

QString Ana06LL::ExportDisplay()
{
    return m_model.ll.text;
}

QString Ana06LL::TableDisplay()
{
    const Grammar& g = m_model.grammar;
    if (!g.GetFlag(GrammarFlag::AnalysedLL))
        return QString();
    SetInProcess(true);
    Settings& settings = m_model.settings;
    settings.cellWidth = std::max(settings.cellWidth, 3);
    const int cellWidth = settings.cellWidth;
    const LLTable& synta = m_model.ll.synta;
    const int n = g.lastCode;
    const int t = g.terminalCount;

    QString text = CTables::Header(CTables::GenerationTime()) + CTables::RuleLengthConstant();
    if (CTables::WantsRuleTable(settings))
        text += CTables::RuleTable(g, settings, true) + kEol;
    text += CTables::RlenTable(g) + kEol + CTables::SampleFunction() + kEol;

    const QString start = g.goal > 0 ? settings.tokenPrefix + g.GetSymbolName(g.goal, QStringLiteral("TOK_EOT"))
                                     : QStringLiteral("TOK_EOT");
    text += QStringLiteral("#define ACC ") + QString::number(AccCode(g.ruleCount)) + QStringLiteral(" /* ACCEPT CODE */")
          + kEol;
    text += QStringLiteral("#define POP ") + QString::number(PopCode(g.ruleCount)) + QStringLiteral(" /* POP CODE */")
          + kEol;
    text += QStringLiteral("#define START ") + start + QStringLiteral(" /* START SYMBOL */") + kEol + kEol;

    text += QStringLiteral("/* Syntax Table ") + QStringLiteral("SYNTA") + QStringLiteral(" (LL-analysis) */") + kEol;
    text += QStringLiteral("/* Rows: the symbol on top of the stack; columns: the look-ahead token. A cell is a rule to")
          + kEol + QStringLiteral("   expand by, POP (match the token), ACC (accept) or 0 (error). */") + kEol;
    // Row comments hold the row symbol, as wide as the widest name in brackets.
    const int nameWidth = std::max(g.maxName + 2, 3);
    if (settings.generateComment != 0) {
        QStringList heads;
        for (int c = 0; c <= t; ++c)
            heads << g.GetSymbolT(c);
        text += CTables::ColumnHeads(heads, nameWidth + 5, cellWidth);
    }
    text += settings.syntaxType + QLatin1Char(' ') + QStringLiteral("SYNTA") + QLatin1Char('[') + QString::number(n + 1)
          + QStringLiteral("][") + QString::number(t + 1) + QStringLiteral("] = {") + kEol;
    const QString acc = QStringLiteral("ACC"), pop = QStringLiteral("POP");
    for (int row = 0; row <= n; ++row) {
        text += QStringLiteral("/*") + CTables::Fit(CTables::CommentSafe(g.GetSymbolT(row)), nameWidth)
              + QStringLiteral("*/{");
        for (int col = 0; col <= t; ++col) {
            if (col)
                text += QLatin1Char(',');
            const int first = synta.First(row, col);
            // A conflicting cell gives its first rule.
            const QString cell = first == LLTable::kAcc   ? acc
                               : first == LLTable::kPop   ? pop
                                                          : QString::number(first);
            text += cell.rightJustified(cellWidth);
        }
        text += row < n ? QStringLiteral("},") : QStringLiteral("}");
        text += kEol;
    }
    text += QStringLiteral("};") + kEol;
    if (settings.generateRecognizer != 0)
        text += kEol + Recognizer();
    SetInProcess(false);
    return text;
}

QString Ana06LL::Recognizer() const
{
    const Grammar& g = m_model.grammar;
    const Settings& settings = m_model.settings;
    QString text;
    // The recognizer reads right sides from RULE; give it one when the settings left it out.
    if (!CTables::WantsRuleTable(settings)) {
        Settings forward = settings;
        forward.generateRules = 1;
        text += CTables::RuleTable(g, forward, true) + kEol;
    }
    const bool reversed = settings.generateRules == 0 && settings.generateRuleReverse != 0;
    static const char* const lines[] = {
        "/* Sample LL(1) recognizer.",
        "   Call ll_recognize(tokens) with the token codes of the input (the TOK_ values),",
        "   ended by TOK_EOT; it returns 1 when the input is a sentence of the grammar and 0",
        "   when it is not. The stack holds grammar symbols, START on top of TOK_EOT. For",
        "   the symbol on top and the look-ahead token, SYNTA says what to do: ACC accepts,",
        "   POP matches the token, a rule number replaces the non-terminal by that rule's",
        "   right side (RLEN symbols of RULE, pushed last symbol first), 0 is an error. */",
        "#define LL_STACK_SIZE 4096",
        "#define LL_MAX_STEPS 1000000L",
        "int ll_recognize(const int *tokens)",
        "{",
        "    int stack[LL_STACK_SIZE];",
        "    int top = 0, pos = 0, k;",
        "    long steps = 0;",
        "    stack[top++] = TOK_EOT;",
        "    stack[top++] = START;",
        "    for (;;) {",
        "        int cell = (int)SYNTA[stack[top - 1]][tokens[pos]];",
        "        if (++steps > LL_MAX_STEPS) return 0; /* a cycle of unit rules */",
        "        if (cell == ACC) return 1;",
        "        if (cell == POP) { top--; pos++; continue; }",
        "        if (cell <= 0 || cell > MAX_RULE) return 0;",
        "        top--;",
        "        for (k = RLEN[cell] - 1; k >= 0; k--) {",
        "            if (top == LL_STACK_SIZE) return 0;",
        "            stack[top++] = (int)RULE[cell][LL_RULE_AT(cell, k)];",
        "        }",
        "    }",
        "}",
    };
    text += QStringLiteral("/* Where symbol k of a right side stands in RULE (rows may run backwards). */") + kEol;
    text += reversed ? QStringLiteral("#define LL_RULE_AT(rule, k) (RLEN[rule] - 1 - (k))")
                     : QStringLiteral("#define LL_RULE_AT(rule, k) (k)");
    text += kEol;
    return text + CTables::TextLines(lines);
}
