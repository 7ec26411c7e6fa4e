/// \file
/// LR item numbering.
#include "analysers/LrItems.h"

LrItems::LrItems(const Grammar& g)
{
    m_base.resize(g.ruleCount + 1);
    m_length.resize(g.ruleCount + 1);
    m_rulesOf.resize(g.lastCode + 1);
    for (int r = 0; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[r];
        const bool empty = r > 0 && g.ruleIsEmpty[r];
        const int length = empty ? 0 : static_cast<int>(rule.size()) - 1;
        m_base[r] = m_rule.size();
        m_length[r] = length;
        for (int d = 0; d <= length; ++d) {
            m_rule.push_back(r);
            m_dot.push_back(d);
            m_next.push_back(d < length ? rule[static_cast<std::size_t>(d) + 1] : -1);
        }
        if (r > 0)
            m_rulesOf[rule[0]].push_back(r);
    }
}

QString LrItems::Text(const Grammar& g, int item) const
{
    const int r = Rule(item);
    const std::vector<int>& rule = g.rules[r];
    QString text = g.GetSymbolS(rule[0]) + QStringLiteral(" =");
    const int length = Length(r);
    for (int i = 0; i <= length; ++i) {
        if (i == Dot(item))
            text += QLatin1Char(' ') + g.GetSymbolS(-1);
        if (i < length)
            text += QLatin1Char(' ') + g.GetSymbolS(rule[static_cast<std::size_t>(i) + 1]);
    }
    return text;
}
