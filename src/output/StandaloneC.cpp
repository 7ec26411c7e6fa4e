/// \file
/// The standalone C program of an analysed table.
#include "output/StandaloneC.h"

#include "grammar/Texts.h"
#include "output/CTables.h"

#include <QSet>
#include <algorithm>

namespace StandaloneC {

namespace {

/// Identifiers keep to the 63 characters a C compiler must tell apart; the
/// room left after this many is for a "_NN" suffix.
constexpr int kIdentifierCut = 59;

/// How a punctuation character is spelled in an identifier.
const char* Spelling(char c)
{
    switch (c) {
    case '!': return "EXCL";
    case '"': return "QUOTE";
    case '#': return "SHARP";
    case '$': return "DOLLAR";
    case '%': return "PERCENT";
    case '&': return "AMP";
    case '\'': return "APOS";
    case '(': return "LP";
    case ')': return "RP";
    case '*': return "STAR";
    case '+': return "PLUS";
    case ',': return "COMMA";
    case '-': return "MINUS";
    case '.': return "DOT";
    case '/': return "SLASH";
    case ':': return "COLON";
    case ';': return "SEMI";
    case '<': return "LT";
    case '=': return "EQ";
    case '>': return "GT";
    case '?': return "QUEST";
    case '@': return "AT";
    case '[': return "LB";
    case '\\': return "BSLASH";
    case ']': return "RB";
    case '^': return "CARET";
    case '`': return "BQUOTE";
    case '{': return "LBRACE";
    case '|': return "BAR";
    case '}': return "RBRACE";
    case '~': return "TILDE";
    default: return nullptr;
    }
}

bool IsIdentifierChar(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// body with every byte that cannot stand in an identifier spelled out, the
/// spellings set off from letters and digits by "_".
QString ValidBody(const QString& body)
{
    QString out;
    bool apart = false;  // the last thing written was a spelling
    for (const char ch : body.toUtf8()) {
        const auto c = static_cast<unsigned char>(ch);
        if (IsIdentifierChar(c)) {
            if (apart && c != '_')
                out += QLatin1Char('_');
            out += QLatin1Char(static_cast<char>(c));
            apart = false;
            continue;
        }
        if (!out.isEmpty() && !out.endsWith(QLatin1Char('_')))
            out += QLatin1Char('_');
        const char* spelled = c < 0x80 ? Spelling(static_cast<char>(c)) : nullptr;
        out += spelled ? QString::fromLatin1(spelled)
                       : QStringLiteral("x") + QString::number(c, 16).toUpper().rightJustified(2, QLatin1Char('0'));
        apart = true;
    }
    return out;
}

/// A type setting that names a type of its own (one identifier, not a C type
/// word), which the program then declares as int.
bool NeedsTypedef(const QString& type)
{
    static const QSet<QString> builtin{
        QStringLiteral("int"),    QStringLiteral("char"),   QStringLiteral("short"), QStringLiteral("long"),
        QStringLiteral("signed"), QStringLiteral("unsigned"), QStringLiteral("float"), QStringLiteral("double"),
        QStringLiteral("_Bool"),  QStringLiteral("void"),
    };
    if (type.isEmpty() || builtin.contains(type) || type[0].isDigit())
        return false;
    for (const QChar ch : type)
        if (ch.unicode() > 0x7f || !IsIdentifierChar(static_cast<unsigned char>(ch.unicode())))
            return false;
    return true;
}

/// The recognizer in tables, changed to note where it stopped before it
/// refuses: every "return 0;" goes through st_reject(pos), and so does the
/// operator precedence parser's final test.
QString ReportingRecognizer(const QString& tables, Recognizer recognizer)
{
    const QString head = QStringLiteral("int ") + FunctionName(recognizer) + QStringLiteral("(const int *tokens)");
    const qsizetype at = tables.indexOf(head);
    if (at < 0)
        return QString();
    QString body = tables.mid(at);
    body.replace(QStringLiteral("return 0;"), QStringLiteral("return st_reject(pos);"));
    body.replace(QStringLiteral("return top == 2;"), QStringLiteral("return top == 2 || st_reject(pos);"));
    return tables.left(at) + body;
}

} // namespace

QString FunctionName(Recognizer recognizer)
{
    switch (recognizer) {
    case Recognizer::LL: return QStringLiteral("ll_recognize");
    case Recognizer::LR: return QStringLiteral("lr_recognize");
    case Recognizer::SimplePrecedence: return QStringLiteral("spr_recognize");
    case Recognizer::OperatorPrecedence: return QStringLiteral("opr_recognize");
    }
    return QString();
}

QStringList Identifiers(const Grammar& g)
{
    const QString end = QStringLiteral("TOK_EOT");
    QStringList names{end};
    QSet<QString> used{end, QStringLiteral("TOK_LAST"), QStringLiteral("SYM_LAST")};
    for (int c = 1; c <= g.lastCode; ++c) {
        // The tables' own spelling ("TOK_ADD", "SYM_EXPR") less its prefix.
        const QString prefix = g.IsTerminal(c) ? QStringLiteral("TOK_") : QStringLiteral("SYM_");
        QString body = ValidBody(g.GetSymbolName(c, end).mid(4));
        // A name of punctuation only that has no mnemonic ("/*") is spelled out.
        if (std::all_of(body.cbegin(), body.cend(), [](QChar ch) { return ch == QLatin1Char('_'); }))
            body = ValidBody(g.SymbolName(c).toUpper());
        const QString base = (prefix + body).left(kIdentifierCut);
        QString name = base;
        for (int k = 2; used.contains(name); ++k)
            name = base + QLatin1Char('_') + QString::number(k);
        used.insert(name);
        names << name;
    }
    return names;
}

Settings TableSettings(const Settings& settings)
{
    Settings s = settings;
    s.generateRecognizer = 1;
    s.tokenPrefix.clear();
    // The sample get_rule_len of the LL(1) text reads RULE: keep the table before it.
    if (!CTables::WantsRuleTable(s))
        s.generateRules = 1;
    return s;
}

QString CString(const QString& text)
{
    QString out = QStringLiteral("\"");
    for (const char ch : text.toUtf8()) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '"' || c == '\\' || c == '?')
            out += QStringLiteral("\\") + QLatin1Char(static_cast<char>(c));
        else if (c >= 0x20 && c < 0x7f)
            out += QLatin1Char(static_cast<char>(c));
        else
            out += QLatin1Char('\\') + QString::number(c, 8).rightJustified(3, QLatin1Char('0'));
    }
    return out + QLatin1Char('"');
}

QString QuietComments(const QString& text)
{
    enum { Code, Block, Line, String, Char } state = Code;
    QString out;
    out.reserve(text.size() + 16);
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text[i];
        const QChar next = i + 1 < n ? text[i + 1] : QChar();
        out += c;
        switch (state) {
        case Code:
            if (c == QLatin1Char('/') && next == QLatin1Char('*')) {
                out += next;
                ++i;
                state = Block;
            } else if (c == QLatin1Char('/') && next == QLatin1Char('/')) {
                out += next;
                ++i;
                state = Line;
            } else if (c == QLatin1Char('"')) {
                state = String;
            } else if (c == QLatin1Char('\'')) {
                state = Char;
            }
            break;
        case Block:
            if (c == QLatin1Char('*') && next == QLatin1Char('/')) {
                out += next;
                ++i;
                state = Code;
            } else if ((c == QLatin1Char('/') && next == QLatin1Char('*'))
                       || (c == QLatin1Char('?') && next == QLatin1Char('?'))) {
                out += QLatin1Char(' ');
            }
            break;
        case Line:
            if (c == QLatin1Char('\n'))
                state = Code;
            else if (c == QLatin1Char('?') && next == QLatin1Char('?'))
                out += QLatin1Char(' ');
            else if (c == QLatin1Char('\\') && (next == QLatin1Char('\r') || next == QLatin1Char('\n')))
                out += QLatin1Char(' ');  // no line splice: the comment ends with its line
            break;
        case String:
        case Char:
            if (c == QLatin1Char('\\') && i + 1 < n) {
                out += next;
                ++i;
            } else if (c == (state == String ? QLatin1Char('"') : QLatin1Char('\''))) {
                state = Code;
            }
            break;
        }
    }
    return out;
}

QString Program(const Grammar& g, const Settings& settings, const QStringList& names, const QString& tables,
                Recognizer recognizer)
{
    const QString reporting = ReportingRecognizer(tables, recognizer);
    if (reporting.isEmpty())
        return QString();
    const QString& eol = kEol;
    const QString title = g.Name().isEmpty() ? QString() : QLatin1Char(' ') + CTables::CommentSafe(g.Name());
    QString text = QStringLiteral("/* A recognizer of the grammar") + title
                 + QStringLiteral(", whole: compile it with any C99 compiler.") + eol
                 + QStringLiteral("   It reads sentences from standard input, one per line, as terminal names:") + eol
                 + QStringLiteral("   \"[a][+][a]\" or \"a + a\". For each it prints \"accepted\", or \"rejected at token")
                 + eol
                 + QStringLiteral("   N\" where N counts from 1 and the end of the line is the token after the last.") + eol
                 + QStringLiteral("   The exit status is 0 when every sentence was accepted, 1 otherwise. */") + eol
                 + QStringLiteral("#include <stdio.h>") + eol + QStringLiteral("#include <stdlib.h>") + eol
                 + QStringLiteral("#include <string.h>") + eol + eol;

    // The element types of the tables, when the settings name types of their own.
    QStringList types;
    for (const QString& type : {settings.syntaxType, settings.tokenType})
        if (NeedsTypedef(type) && !types.contains(type))
            types << type;
    for (const QString& type : types)
        text += QStringLiteral("typedef int ") + type + QStringLiteral(";") + eol;
    if (!types.isEmpty())
        text += eol;

    // The symbols by code, each with its name in the grammar.
    text += QStringLiteral("/* The grammar's symbols: terminals from 1, then non-terminals. */") + eol
          + QStringLiteral("enum {") + eol + QStringLiteral("    TOK_EOT = 0, /* the end of the input */") + eol;
    QString lastTerminal = QStringLiteral("TOK_EOT"), lastSymbol = lastTerminal;
    for (int c = 1; c <= g.lastCode && c < names.size(); ++c) {
        if (c == g.firstNonterminal)
            text += QStringLiteral("    TOK_LAST = ") + lastTerminal + QLatin1Char(',') + eol;
        text += QStringLiteral("    ") + names[c] + QStringLiteral(" = ") + QString::number(c) + QStringLiteral(", /* ")
              + CTables::CommentSafe(g.GetSymbolS(c)) + QStringLiteral(" */") + eol;
        (g.IsTerminal(c) ? lastTerminal : lastSymbol) = names[c];
    }
    if (g.firstNonterminal > g.lastCode)
        text += QStringLiteral("    TOK_LAST = ") + lastTerminal + QLatin1Char(',') + eol;
    text += QStringLiteral("    SYM_LAST = ") + lastSymbol + eol + QStringLiteral("};") + eol + eol;

    static const char* const reject[] = {
        "/* Where the recognizer stopped when it refused the input: a token index from 0. */",
        "static int st_error_at;",
        "static int st_reject(int pos)",
        "{",
        "    st_error_at = pos;",
        "    return 0;",
        "}",
        "",
    };
    text += CTables::TextLines(reject);
    text += reporting;
    if (!text.endsWith(eol))
        text += eol;
    text += eol;

    text += QStringLiteral("/* The terminals by code as the grammar names them. */") + eol
          + QStringLiteral("static const char *const st_names[TOK_LAST + 1] = {") + eol + QStringLiteral("    \"\"");
    for (int c = 1; c < g.firstNonterminal && c < names.size(); ++c)
        text += QLatin1Char(',') + eol + QStringLiteral("    ") + CString(g.SymbolName(c));
    text += eol + QStringLiteral("};") + eol + eol;

    static const char* const driver[] = {
        "/* The code of the terminal named by the n bytes at name; -1 for none. */",
        "static int st_code(const char *name, size_t n)",
        "{",
        "    int c;",
        "    for (c = 1; c <= (int)TOK_LAST; c++)",
        "        if (strlen(st_names[c]) == n && memcmp(st_names[c], name, n) == 0) return c;",
        "    return -1;",
        "}",
        "",
        "/* Reads a line of standard input, without its line end, into *line; 0 at the end. */",
        "static int st_read_line(char **line, size_t *size)",
        "{",
        "    size_t n = 0;",
        "    int ch;",
        "    while ((ch = getchar()) != EOF && ch != '\\n') {",
        "        if (n + 2 > *size) {",
        "            char *grown = (char *)realloc(*line, *size * 2);",
        "            if (!grown) { fputs(\"out of memory\\n\", stderr); exit(2); }",
        "            *line = grown;",
        "            *size *= 2;",
        "        }",
        "        (*line)[n++] = (char)ch;",
        "    }",
        "    if (ch == EOF && n == 0) return 0;",
        "    if (n > 0 && (*line)[n - 1] == '\\r') n--;",
        "    (*line)[n] = '\\0';",
        "    return 1;",
        "}",
        "",
        "/* Recognizes the sentence on a line and prints the verdict; 1 when accepted. A",
        "   terminal is \"[name]\" (\"[]]\" for \"]\"), or a name that ends at a blank or \"[\". */",
        "static int st_sentence(const char *line, int **tokens, size_t *capacity)",
        "{",
        "    size_t count = 0;",
        "    const char *p = line;",
        "    char *bracketed = (char *)malloc(strlen(line) + 1);",
        "    if (!bracketed) { fputs(\"out of memory\\n\", stderr); exit(2); }",
        "    for (;;) {",
        "        const char *name, *close;",
        "        size_t n;",
        "        int code;",
        "        while (*p == ' ' || *p == '\\t') p++;",
        "        if (*p == '\\0') break;",
        "        if (*p == '[') {",
        "            const char *from = p[1] == ']' ? p + 2 : p + 1;",
        "            close = strchr(from, ']');",
        "            if (!close) {",
        "                fprintf(stderr, \"unclosed [ at token %lu\\n\", (unsigned long)count + 1);",
        "                printf(\"rejected at token %lu\\n\", (unsigned long)count + 1);",
        "                free(bracketed);",
        "                return 0;",
        "            }",
        "            if (p[1] == ']') close++; /* \"[]]\": the name runs to the next \"]\" and holds it */",
        "            /* As in the grammar, blanks inside brackets do not count. */",
        "            for (n = 0; from < close; from++)",
        "                if (*from != ' ' && *from != '\\t') bracketed[n++] = *from;",
        "            name = bracketed;",
        "            p = p[1] == ']' ? close : close + 1;",
        "        } else {",
        "            name = p;",
        "            while (*p != '\\0' && *p != ' ' && *p != '\\t' && *p != '[') p++;",
        "            n = (size_t)(p - name);",
        "        }",
        "        code = st_code(name, n);",
        "        if (code < 0) {",
        "            fprintf(stderr, \"unknown terminal \\\"%.*s\\\" at token %lu\\n\", (int)n, name,",
        "                    (unsigned long)count + 1);",
        "            printf(\"rejected at token %lu\\n\", (unsigned long)count + 1);",
        "            free(bracketed);",
        "            return 0;",
        "        }",
        "        if (count + 2 > *capacity) {",
        "            int *grown = (int *)realloc(*tokens, *capacity * 2 * sizeof **tokens);",
        "            if (!grown) { fputs(\"out of memory\\n\", stderr); exit(2); }",
        "            *tokens = grown;",
        "            *capacity *= 2;",
        "        }",
        "        (*tokens)[count++] = code;",
        "    }",
        "    free(bracketed);",
        "    (*tokens)[count] = TOK_EOT;",
        "    st_error_at = 0;",
    };
    text += CTables::TextLines(driver);
    text += QStringLiteral("    if (") + FunctionName(recognizer) + QStringLiteral("(*tokens)) {") + eol;
    static const char* const tail[] = {
        "        puts(\"accepted\");",
        "        return 1;",
        "    }",
        "    printf(\"rejected at token %d\\n\", st_error_at + 1);",
        "    return 0;",
        "}",
        "",
        "int main(void)",
        "{",
        "    size_t size = 256, capacity = 256;",
        "    char *line = (char *)malloc(size);",
        "    int *tokens = (int *)malloc(capacity * sizeof *tokens);",
        "    int all = 1, sentences = 0;",
        "    if (!line || !tokens) { fputs(\"out of memory\\n\", stderr); return 2; }",
        "    while (st_read_line(&line, &size)) {",
        "        all &= st_sentence(line, &tokens, &capacity);",
        "        sentences++;",
        "    }",
        "    if (sentences == 0) /* no input at all: the empty sentence */",
        "        all = st_sentence(\"\", &tokens, &capacity);",
        "    free(line);",
        "    free(tokens);",
        "    return all ? 0 : 1;",
        "}",
    };
    text += CTables::TextLines(tail);
    return QuietComments(text);
}

} // namespace StandaloneC
