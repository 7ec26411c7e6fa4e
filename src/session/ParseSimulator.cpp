/// \file
/// The parse simulator: the sample recognizers of the six methods, run over
/// the kept tables with every step written down, and the trees and texts of a
/// run.
#include "session/ParseSimulator.h"

#include "session/ConflictExplainer.h"
#include "session/TableCells.h"
#include "session/Views.h"

#include <QHash>
#include <QJsonArray>
#include <algorithm>

namespace {

/// The stacks a run keeps, summed over its steps: a long sentence on a deep
/// stack would otherwise fill the memory before the step limit is reached.
constexpr long kMaxTraceEntries = 4000000;
/// How many steps pass between two questions to stopped().
constexpr int kStopEvery = 1024;

bool IsLr(int view)
{
    return view == View::SLR || view == View::LALR || view == View::LR;
}
bool IsPrecedence(int view)
{
    return view == View::SPR || view == View::OPR;
}

/// The method's name with a capital letter, to begin a sentence with.
QString MethodName(int view)
{
    QString name = QString::fromLatin1(ViewOf(view).method);
    if (!name.isEmpty())
        name[0] = name[0].toUpper();
    return name;
}

/// "[a]", "[a] or [b]", "[a], [b] or [c]".
QString Alternatives(const Grammar& g, const std::vector<int>& codes)
{
    QString text;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (i > 0)
            text += i + 1 == codes.size() ? QStringLiteral(" or ") : QStringLiteral(", ");
        text += g.GetSymbolS(codes[i]);
    }
    return text;
}

/// Everything one simulation shares between its steps.
class Simulation {
public:
    Simulation(const Workspace& workspace, int view, const SimulateOptions& options, ParseRun& run)
        : g(workspace.grammar)
        , ws(workspace)
        , m_view(view)
        , m_options(options)
        , m_run(run)
    {
        for (int c = 0; c <= g.lastCode; ++c)
            m_names << g.GetSymbolS(c);
    }

    void RunLL();
    void RunLr(const LrResults& lr);
    void RunPrecedence(const PrecedenceMatrix& m, bool simple);

private:
    /// Before each step: false when the run must end here (limit or stop).
    bool MayContinue(std::size_t stackSize);
    void Finish(ParseVerdict verdict, const QString& message);
    void Reject(ParseStep step, const QString& action, std::vector<int> expected);
    QString Name(int code) const { return m_names[code]; }
    QStringList Names(const std::vector<int>& codes, std::size_t from = 0) const
    {
        QStringList list;
        for (std::size_t i = from; i < codes.size(); ++i)
            list << m_names[codes[i]];
        return list;
    }
    QString RuleWords(const QString& verb, int rule) const
    {
        return verb + QLatin1Char(' ') + QString::number(rule) + QStringLiteral(": ") + RuleText(g, rule);
    }

    const Grammar& g;
    const Workspace& ws;
    int m_view;
    const SimulateOptions& m_options;
    ParseRun& m_run;
    QStringList m_names;
    long m_entries = 0;
};

bool Simulation::MayContinue(std::size_t stackSize)
{
    const std::size_t count = m_run.steps.size();
    if (count > 0 && count % kStopEvery == 0 && m_options.stopped && m_options.stopped()) {
        Finish(ParseVerdict::Stopped, QStringLiteral("Stopped after %1 steps.").arg(count));
        return false;
    }
    if (static_cast<long>(count) >= m_options.maxSteps) {
        Finish(ParseVerdict::Limit, QStringLiteral("Step limit reached after %1 steps.").arg(count));
        return false;
    }
    m_entries += static_cast<long>(stackSize) * 2 + 1;
    if (m_entries > kMaxTraceEntries) {
        Finish(ParseVerdict::Limit,
               QStringLiteral("Trace limit reached after %1 steps: the stacks kept would pass %2 entries.")
                   .arg(count)
                   .arg(kMaxTraceEntries));
        return false;
    }
    return true;
}

void Simulation::Finish(ParseVerdict verdict, const QString& message)
{
    m_run.verdict = verdict;
    m_run.message = message;
}

void Simulation::Reject(ParseStep step, const QString& action, std::vector<int> expected)
{
    step.kind = StepKind::Error;
    step.action = action;
    m_run.errorPosition = step.position;
    std::sort(expected.begin(), expected.end());
    expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
    m_run.expected = expected;
    m_run.steps.push_back(std::move(step));
    const int at = m_run.tokens[static_cast<std::size_t>(m_run.errorPosition)];
    QString message = QStringLiteral("Rejected at %1 (token %2): ").arg(Name(at)).arg(m_run.errorPosition + 1);
    message += expected.empty() ? QStringLiteral("no action is possible.")
                                : QStringLiteral("expected ") + Alternatives(g, expected) + QLatin1Char('.');
    Finish(ParseVerdict::Rejected, message);
}

void Simulation::RunLL()
{
    const LLTable& t = ws.ll.synta;
    const std::vector<int>& tokens = m_run.tokens;
    std::vector<int> stack{0, g.goal};
    std::size_t pos = 0;
    while (MayContinue(stack.size())) {
        ParseStep step;
        step.stack = Names(stack);
        step.position = static_cast<int>(pos);
        const int top = stack.back();
        const int look = tokens[pos];
        const int cell = t.First(top, look);
        step.fromConflict = t.IsConflict(top, look);
        if (cell == LLTable::kAcc) {
            step.kind = StepKind::Accept;
            step.action = QStringLiteral("accept");
            m_run.steps.push_back(std::move(step));
            Finish(ParseVerdict::Accepted, QStringLiteral("Accepted."));
            return;
        }
        if (cell == LLTable::kPop) {
            step.kind = StepKind::Match;
            step.action = QStringLiteral("match ") + Name(look);
            stack.pop_back();
            ++pos;
            m_run.steps.push_back(std::move(step));
            continue;
        }
        if (cell <= 0) {
            std::vector<int> expected;
            for (int c = 0; c < t.Columns(); ++c)
                if (t.First(top, c) != LLTable::kEmpty)
                    expected.push_back(c);
            Reject(std::move(step),
                   QStringLiteral("error: no entry for %1 under %2").arg(Name(top), Name(look)), expected);
            return;
        }
        step.kind = StepKind::Predict;
        step.rule = cell;
        step.action = RuleWords(QStringLiteral("predict"), cell);
        stack.pop_back();
        if (!g.ruleIsEmpty[cell]) {
            const std::vector<int>& rule = g.rules[cell];
            for (std::size_t i = rule.size() - 1; i >= 1; --i)
                stack.push_back(rule[i]);
        }
        m_run.steps.push_back(std::move(step));
    }
}

void Simulation::RunLr(const LrResults& lr)
{
    const std::vector<int>& tokens = m_run.tokens;
    const int accept = lr.States();
    auto conflictAt = [&](int state, int column) {
        return std::any_of(lr.conflicts.begin(), lr.conflicts.end(),
                           [&](const Conflict& c) { return c.row == state && c.column == column; });
    };
    auto expectedOf = [&](int state) {
        std::vector<int> expected;
        for (const auto& [code, entry] : lr.rows[state])
            if (code <= g.terminalCount && entry != 0)
                expected.push_back(code);
        return expected;
    };
    std::vector<int> stack{0};
    std::vector<int> symbols;
    std::size_t pos = 0;
    while (MayContinue(stack.size())) {
        ParseStep step;
        for (int s : stack)
            step.stack << QString::number(s);
        step.symbols = Names(symbols);
        step.position = static_cast<int>(pos);
        const int state = stack.back();
        step.state = state;
        const int look = tokens[pos];
        const int action = RowEntry(lr.rows[state], look);
        step.fromConflict = conflictAt(state, look);
        if (action == accept) {
            step.kind = StepKind::Accept;
            step.action = QStringLiteral("accept");
            m_run.steps.push_back(std::move(step));
            Finish(ParseVerdict::Accepted, QStringLiteral("Accepted."));
            return;
        }
        if (action > 0) {
            step.kind = StepKind::Shift;
            step.action = QStringLiteral("shift ") + QString::number(action);
            stack.push_back(action);
            symbols.push_back(look);
            if (look != 0)
                ++pos;
            m_run.steps.push_back(std::move(step));
            continue;
        }
        if (action == 0) {
            Reject(std::move(step), QStringLiteral("error: state %1 has no action on %2").arg(state).arg(Name(look)),
                   expectedOf(state));
            return;
        }
        const int rule = -action;
        const std::size_t length = static_cast<std::size_t>(g.RightLength(rule));
        const int left = g.rules[rule][0];
        const int below = length < stack.size() ? stack[stack.size() - 1 - length] : 0;
        const int go = length < stack.size() ? RowEntry(lr.rows[below], left) : 0;
        if (go <= 0 || go == accept) {
            Reject(std::move(step),
                   QStringLiteral("error: state %1 has no goto on %2").arg(below).arg(Name(left)), expectedOf(state));
            return;
        }
        step.kind = StepKind::Reduce;
        step.rule = rule;
        step.action = RuleWords(QStringLiteral("reduce"), rule);
        stack.resize(stack.size() - length);
        symbols.resize(symbols.size() - length);
        stack.push_back(go);
        symbols.push_back(left);
        m_run.steps.push_back(std::move(step));
    }
}

void Simulation::RunPrecedence(const PrecedenceMatrix& m, bool simple)
{
    enum class Rel { None, LT, EQ, GT };
    bool conflict = false;
    // A cell as the generated C reads it: EQ, then LT, then GT.
    auto resolved = [&](int i, int j) {
        if (m.IsEmpty(i, j))
            return Rel::None;
        conflict = conflict || m.IsConflict(i, j);
        if (m.HasCode(i, j, m.Code(PrecedenceMatrix::EQ)))
            return Rel::EQ;
        return m.HasCode(i, j, m.Code(PrecedenceMatrix::LT)) ? Rel::LT : Rel::GT;
    };
    auto relationText = [](Rel r) {
        switch (r) {
        case Rel::LT:
            return QStringLiteral("<.");
        case Rel::EQ:
            return QStringLiteral("=.");
        case Rel::GT:
            return QStringLiteral(".>");
        case Rel::None:
            break;
        }
        return QString();
    };
    const std::vector<int>& tokens = m_run.tokens;
    std::vector<int> stack{0};
    // The symbol below stack[at] that relations are read against: operator
    // precedence passes over non-terminals.
    auto related = [&](std::size_t at) {
        std::size_t below = at - 1;
        while (!simple && g.IsNonterminal(stack[below]))
            --below;
        return below;
    };
    std::size_t pos = 0;
    while (MayContinue(stack.size())) {
        ParseStep step;
        step.stack = Names(stack);
        step.position = static_cast<int>(pos);
        const std::size_t top = simple ? stack.size() - 1 : related(stack.size());
        const int look = tokens[pos];
        if (look == 0 && stack.size() == 2 && (simple ? stack[1] == g.goal : top == 0)) {
            step.kind = StepKind::Accept;
            step.action = QStringLiteral("accept");
            m_run.steps.push_back(std::move(step));
            Finish(ParseVerdict::Accepted, QStringLiteral("Accepted."));
            return;
        }
        conflict = false;
        const Rel rel = resolved(stack[top], look);
        step.relation = relationText(rel);
        step.fromConflict = conflict;
        auto expected = [&] {
            std::vector<int> codes;
            for (int t = 0; t <= g.terminalCount; ++t)
                if (!m.IsEmpty(stack[top], t))
                    codes.push_back(t);
            return codes;
        };
        if ((rel == Rel::LT || rel == Rel::EQ) && look != 0) {
            step.kind = StepKind::Shift;
            step.action = QStringLiteral("shift ") + Name(look);
            stack.push_back(look);
            ++pos;
            m_run.steps.push_back(std::move(step));
            continue;
        }
        if (rel == Rel::None) {
            Reject(std::move(step), QStringLiteral("error: no relation between %1 and %2").arg(Name(stack[top]), Name(look)),
                   expected());
            return;
        }
        if (rel != Rel::GT) {
            Reject(std::move(step), QStringLiteral("error: %1 %2 the end of the input").arg(Name(stack[top]), step.relation),
                   expected());
            return;
        }
        if (top == 0) {
            Reject(std::move(step), QStringLiteral("error: nothing to reduce before %1").arg(Name(look)), expected());
            return;
        }
        std::size_t low = top;
        while (low > 1 && resolved(stack[related(low)], stack[low]) == Rel::EQ && related(low) > 0)
            low = related(low);
        if (resolved(stack[related(low)], stack[low]) != Rel::LT) {
            step.fromConflict = conflict;
            Reject(std::move(step), QStringLiteral("error: no <. before the handle"), expected());
            return;
        }
        step.fromConflict = conflict;
        const std::size_t from = related(low) + 1;
        int found = 0;
        for (int r = 1; r <= g.ruleCount && !found; ++r) {
            const std::vector<int>& rule = g.rules[r];
            bool match = !g.ruleIsEmpty[r] && rule.size() == stack.size() - from + 1;
            for (std::size_t k = 1; match && k < rule.size(); ++k)
                match = rule[k] == stack[from + k - 1]
                     || (!simple && g.IsNonterminal(rule[k]) && g.IsNonterminal(stack[from + k - 1]));
            found = match ? r : 0;
        }
        if (!found) {
            const std::vector<int> handle(stack.begin() + static_cast<std::ptrdiff_t>(from), stack.end());
            Reject(std::move(step), QStringLiteral("error: no rule has the handle ") + Names(handle).join(QLatin1Char(' ')),
                   expected());
            return;
        }
        step.kind = StepKind::Reduce;
        step.rule = found;
        step.action = RuleWords(QStringLiteral("reduce"), found);
        stack.resize(from);
        stack.push_back(g.rules[found][0]);
        m_run.steps.push_back(std::move(step));
    }
}

/// Whether the kept table of view has the shape the grammar gives it.
bool TableFits(const Workspace& ws, int view)
{
    const Grammar& g = ws.grammar;
    if (view == View::LL)
        return ws.ll.synta.Rows() == g.lastCode + 1 && ws.ll.synta.Columns() == g.terminalCount + 1;
    if (const LrResults* lr = LrResultsOf(ws, view)) {
        if (lr->States() == 0)
            return false;
        for (const SparseRow& row : lr->rows)
            for (const auto& [code, entry] : row)
                if (code < 0 || code > g.lastCode || entry > lr->States() || -entry > g.ruleCount)
                    return false;
        return true;
    }
    const PrecedenceResults* p = PrecedenceResultsOf(ws, view);
    return p && p->Size() == (view == View::SPR ? g.lastCode : g.terminalCount) + 1;
}

} // namespace

bool ReadSentence(const Grammar& g, const QString& text, std::vector<int>& tokens, QString& error)
{
    QHash<QString, int> codes;
    for (int t = 1; t <= g.terminalCount; ++t)
        codes.insert(g.SymbolName(t), t);
    tokens.clear();
    error.clear();
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto notTerminal = [&](const QString& written, qsizetype at) {
        error = QStringLiteral("\"%1\" at position %2 is not a terminal of the grammar.").arg(written).arg(at + 1);
        tokens.clear();
        return false;
    };
    while (i < n) {
        if (text[i].isSpace()) {
            ++i;
            continue;
        }
        qsizetype word = i;
        while (word < n && !text[word].isSpace())
            ++word;
        if (text[i] == QLatin1Char('[')) {
            // A bracketed name holds at least one character, so "[]]" names "]".
            const qsizetype close = text.indexOf(QLatin1Char(']'), i + 2);
            if (close > 0) {
                const QString name = text.mid(i + 1, close - i - 1);
                const auto it = codes.constFind(name);
                if (it != codes.constEnd()) {
                    tokens.push_back(it.value());
                    i = close + 1;
                    continue;
                }
                // A bare name may begin with "[" too.
                if (const auto bare = codes.constFind(text.mid(i, word - i)); bare != codes.constEnd()) {
                    tokens.push_back(bare.value());
                    i = word;
                    continue;
                }
                return notTerminal(text.mid(i, close - i + 1), i);
            }
        }
        const QString name = text.mid(i, word - i);
        const auto it = codes.constFind(name);
        if (it == codes.constEnd())
            return notTerminal(name, i);
        tokens.push_back(it.value());
        i = word;
    }
    return true;
}

QString SentenceText(const Grammar& g, const std::vector<int>& tokens)
{
    QStringList names;
    for (int t : tokens)
        names << g.GetSymbolS(t);
    return names.join(QLatin1Char(' '));
}

bool SimulateParse(const Workspace& workspace, int view, const std::vector<int>& sentence,
                   const SimulateOptions& options, ParseRun& run, QString& error)
{
    run = ParseRun();
    run.view = view;
    error.clear();
    const Grammar& g = workspace.grammar;
    if (view < View::LL || view > View::OPR) {
        error = QStringLiteral("View %1 has no table to parse with.").arg(view);
        return false;
    }
    if (!IsAnalysed(workspace, view)) {
        error = MethodName(view) + QStringLiteral(" has no table: not analysed, or the method refused the grammar.");
        return false;
    }
    if (!TableFits(workspace, view)) {
        error = MethodName(view) + QStringLiteral(" keeps no table that fits the grammar.");
        return false;
    }
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        if (!g.IsTerminal(sentence[i])) {
            error = QStringLiteral("Token %1 of the sentence (code %2) is not a terminal of the grammar.")
                        .arg(i + 1)
                        .arg(sentence[i]);
            return false;
        }
    }
    run.tokens = sentence;
    run.tokens.push_back(0);
    Simulation simulation(workspace, view, options, run);
    if (view == View::LL)
        simulation.RunLL();
    else if (const LrResults* lr = LrResultsOf(workspace, view))
        simulation.RunLr(*lr);
    else
        simulation.RunPrecedence(PrecedenceResultsOf(workspace, view)->synta, view == View::SPR);
    return true;
}

std::vector<DerivationTree> TreesAfter(const Workspace& workspace, const ParseRun& run, int steps)
{
    const Grammar& g = workspace.grammar;
    const std::size_t count = std::min(static_cast<std::size_t>(std::max(steps, 0)), run.steps.size());
    if (run.view == View::LL) {
        // One tree; the paths (child indices from the root) of the leaves still
        // on the parser's stack, the top last.
        std::vector<DerivationTree> trees{{g.goal, -1, {}}};
        std::vector<std::vector<int>> pending{{}};
        auto at = [&](const std::vector<int>& path) {
            DerivationTree* node = &trees[0];
            for (int i : path)
                node = &node->children[static_cast<std::size_t>(i)];
            return node;
        };
        for (std::size_t s = 0; s < count; ++s) {
            const ParseStep& step = run.steps[s];
            if (step.kind == StepKind::Match && !pending.empty()) {
                pending.pop_back();
            } else if (step.kind == StepKind::Predict && !pending.empty()) {
                const std::vector<int> path = pending.back();
                pending.pop_back();
                DerivationTree* node = at(path);
                node->rule = step.rule;
                node->children.clear();
                const int length = g.RightLength(step.rule);
                for (int k = 1; k <= length; ++k)
                    node->children.push_back({g.rules[step.rule][k], -1, {}});
                for (int k = length - 1; k >= 0; --k) {
                    std::vector<int> child = path;
                    child.push_back(k);
                    pending.push_back(std::move(child));
                }
            }
        }
        return trees;
    }
    std::vector<DerivationTree> trees;
    for (std::size_t s = 0; s < count; ++s) {
        const ParseStep& step = run.steps[s];
        if (step.kind == StepKind::Shift) {
            trees.push_back({run.tokens[static_cast<std::size_t>(step.position)], -1, {}});
        } else if (step.kind == StepKind::Reduce) {
            const std::size_t length = std::min(static_cast<std::size_t>(g.RightLength(step.rule)), trees.size());
            DerivationTree node{g.rules[step.rule][0], step.rule, {}};
            node.children.assign(std::make_move_iterator(trees.end() - static_cast<std::ptrdiff_t>(length)),
                                 std::make_move_iterator(trees.end()));
            trees.resize(trees.size() - length);
            trees.push_back(std::move(node));
        }
    }
    return trees;
}

DerivationTree ParseTree(const Workspace& workspace, const ParseRun& run)
{
    if (run.verdict != ParseVerdict::Accepted)
        return {};
    std::vector<DerivationTree> trees = TreesAfter(workspace, run, static_cast<int>(run.steps.size()));
    return trees.size() == 1 ? std::move(trees[0]) : DerivationTree{};
}

namespace {

QStringList InputNames(const Grammar& g, const ParseRun& run, int position)
{
    QStringList names;
    for (std::size_t i = static_cast<std::size_t>(std::max(position, 0)); i < run.tokens.size(); ++i)
        names << g.GetSymbolS(run.tokens[i]);
    return names;
}

QString VerdictName(ParseVerdict verdict)
{
    switch (verdict) {
    case ParseVerdict::Accepted:
        return QStringLiteral("accepted");
    case ParseVerdict::Rejected:
        return QStringLiteral("rejected");
    case ParseVerdict::Limit:
        return QStringLiteral("limit");
    case ParseVerdict::Stopped:
        return QStringLiteral("stopped");
    }
    return QString();
}

} // namespace

QString ParseRunText(const Workspace& workspace, const ParseRun& run, bool trace)
{
    const Grammar& g = workspace.grammar;
    const std::vector<int> sentence(run.tokens.begin(), run.tokens.end() - (run.tokens.empty() ? 0 : 1));
    QString text = QString::fromLatin1(ViewOf(run.view).method) + QStringLiteral(": ")
                 + (sentence.empty() ? QStringLiteral("(the empty sentence)") : SentenceText(g, sentence)) + QLatin1Char('\n')
                 + run.message + QLatin1Char('\n');
    if (trace) {
        const bool lr = IsLr(run.view);
        const bool precedence = IsPrecedence(run.view);
        std::vector<QStringList> rows;
        QStringList head{QStringLiteral("step"), QStringLiteral("stack")};
        if (lr)
            head << QStringLiteral("symbols");
        if (precedence)
            head << QStringLiteral("relation");
        head << QStringLiteral("input") << QStringLiteral("action");
        rows.push_back(head);
        for (std::size_t s = 0; s < run.steps.size(); ++s) {
            const ParseStep& step = run.steps[s];
            QStringList row{QString::number(s + 1), step.stack.join(QLatin1Char(' '))};
            if (lr)
                row << step.symbols.join(QLatin1Char(' '));
            if (precedence)
                row << step.relation;
            row << InputNames(g, run, step.position).join(QLatin1Char(' '))
                << step.action + (step.fromConflict ? QStringLiteral(" (conflict)") : QString());
            rows.push_back(row);
        }
        std::vector<qsizetype> widths(static_cast<std::size_t>(head.size()), 0);
        for (const QStringList& row : rows)
            for (qsizetype c = 0; c < row.size(); ++c)
                widths[static_cast<std::size_t>(c)] = std::max(widths[static_cast<std::size_t>(c)], row[c].size());
        for (const QStringList& row : rows) {
            QString line;
            for (qsizetype c = 0; c < row.size(); ++c)
                line += c + 1 == row.size() ? row[c] : row[c].leftJustified(widths[static_cast<std::size_t>(c)] + 2);
            text += line + QLatin1Char('\n');
        }
    }
    if (run.verdict == ParseVerdict::Accepted)
        text += QStringLiteral("tree: ") + TreeText(g, ParseTree(workspace, run)) + QLatin1Char('\n');
    return text;
}

QJsonObject ParseRunJson(const Workspace& workspace, const ParseRun& run, bool trace)
{
    const Grammar& g = workspace.grammar;
    auto names = [&](const std::vector<int>& codes) {
        QJsonArray list;
        for (int c : codes)
            list.append(g.GetSymbolS(c));
        return list;
    };
    const std::vector<int> sentence(run.tokens.begin(), run.tokens.end() - (run.tokens.empty() ? 0 : 1));
    QJsonObject o;
    o[QStringLiteral("method")] = QString::fromLatin1(ViewOf(run.view).method);
    o[QStringLiteral("sentence")] = names(sentence);
    o[QStringLiteral("accepted")] = run.verdict == ParseVerdict::Accepted;
    o[QStringLiteral("verdict")] = VerdictName(run.verdict);
    o[QStringLiteral("message")] = run.message;
    o[QStringLiteral("error_position")] = run.errorPosition >= 0 ? QJsonValue(run.errorPosition) : QJsonValue();
    o[QStringLiteral("expected")] = names(run.expected);
    if (trace) {
        QJsonArray steps;
        for (const ParseStep& step : run.steps) {
            QJsonObject s;
            s[QStringLiteral("stack")] = QJsonArray::fromStringList(step.stack);
            if (IsLr(run.view))
                s[QStringLiteral("symbols")] = QJsonArray::fromStringList(step.symbols);
            if (IsPrecedence(run.view))
                s[QStringLiteral("relation")] = step.relation;
            s[QStringLiteral("input")] = QJsonArray::fromStringList(InputNames(g, run, step.position));
            s[QStringLiteral("action")] = step.action;
            s[QStringLiteral("rule")] = step.rule;
            s[QStringLiteral("conflict")] = step.fromConflict;
            steps.append(s);
        }
        o[QStringLiteral("trace")] = steps;
    }
    o[QStringLiteral("tree")] =
        run.verdict == ParseVerdict::Accepted ? TreeJson(g, ParseTree(workspace, run)) : QJsonValue();
    return o;
}
