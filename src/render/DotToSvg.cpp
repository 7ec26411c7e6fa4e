/// \file
/// Graphviz through its libraries: cgraph reads the text, gvc lays it out and
/// renders it. Graphviz keeps global state (its error hook among it), so one
/// picture is drawn at a time.
#include "render/DotToSvg.h"

#include <QRegularExpression>
#include <QStringList>
#include <graphviz/cgraph.h>
#include <graphviz/gvc.h>
#include <mutex>

namespace {

std::mutex g_graphviz;
/// Where the error hook puts what Graphviz says while drawing; it says a
/// message in pieces ("Error", ": ", "syntax error in line 1 ...\n").
QString* g_said = nullptr;

int Collect(char* piece)
{
    if (g_said && piece)
        *g_said += QString::fromUtf8(piece);
    return 0;
}

/// The errors among what Graphviz said, without their "Error: " prefixes, in one line.
QString Errors(const QString& said)
{
    QStringList errors;
    for (QString m : said.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        m = m.simplified();
        if (m.startsWith(QStringLiteral("Warning")))
            continue;
        if (m.startsWith(QStringLiteral("Error: ")))
            m.remove(0, 7);
        // Graphviz counts its lines on from the texts read before: the
        // number it gives is not a line of this text.
        static const QRegularExpression line(QStringLiteral(" in line \\d+"));
        m.remove(line);
        if (!m.isEmpty())
            errors << m;
    }
    return errors.join(QStringLiteral("; "));
}

/// Frees what Graphviz gave, however the drawing ends.
struct Session {
    GVC_t* gvc = nullptr;
    Agraph_t* graph = nullptr;
    bool laidOut = false;
    ~Session()
    {
        if (laidOut)
            gvFreeLayout(gvc, graph);
        if (graph)
            agclose(graph);
        if (gvc)
            gvFreeContext(gvc);
    }
};

} // namespace

SvgPicture DotToSvg(const QByteArray& dot, const SvgLimits& limits)
{
    SvgPicture picture;
    if (dot.size() > limits.maxDotBytes) {
        picture.error = QStringLiteral("The graph text has %1 bytes, more than the %2 a picture may have.")
                            .arg(dot.size()).arg(limits.maxDotBytes);
        return picture;
    }
    if (dot.contains('\0')) {
        picture.error = QStringLiteral("The graph text holds a NUL character.");
        return picture;
    }
    std::lock_guard<std::mutex> lock(g_graphviz);
    QString said;
    g_said = &said;
    const agusererrf previous = agseterrf(Collect);
    struct Restore {
        agusererrf previous;
        ~Restore()
        {
            agseterrf(previous);
            g_said = nullptr;
        }
    } restore{previous};

    auto failed = [&](const QString& what) {
        const QString errors = Errors(said);
        picture.error = errors.isEmpty() ? what + QLatin1Char('.') : what + QStringLiteral(": ") + errors;
        return picture;
    };
    Session s;
    s.gvc = gvContext();
    if (!s.gvc)
        return failed(QStringLiteral("Graphviz could not start"));
    s.graph = agmemread(dot.constData());
    if (!s.graph)
        return failed(QStringLiteral("Graphviz could not read the graph"));
    const int nodes = agnnodes(s.graph);
    const int edges = agnedges(s.graph);
    if (nodes > limits.maxNodes || edges > limits.maxEdges) {
        picture.error = QStringLiteral("The graph has %1 nodes and %2 edges, more than the %3 nodes and %4 edges "
                                       "a picture may have.")
                            .arg(nodes).arg(edges).arg(limits.maxNodes).arg(limits.maxEdges);
        return picture;
    }
    // A label Graphviz could not read is drawn as its plain text after an
    // error: a picture that is not what was asked for is refused.
    if (gvLayout(s.gvc, s.graph, "dot") != 0 || !Errors(said).isEmpty())
        return failed(QStringLiteral("Graphviz could not lay out the graph"));
    s.laidOut = true;
    char* data = nullptr;
    unsigned int length = 0;
    if (gvRenderData(s.gvc, s.graph, "svg", &data, &length) != 0 || !data || !Errors(said).isEmpty()) {
        if (data)
            gvFreeRenderData(data);
        return failed(QStringLiteral("Graphviz could not draw the graph as SVG"));
    }
    picture.svg = QByteArray(data, static_cast<qsizetype>(length));
    gvFreeRenderData(data);
    return picture;
}
