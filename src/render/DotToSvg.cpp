/// \file
/// Graphviz through its libraries: cgraph reads the text, gvc lays it out and
/// renders it. Graphviz keeps global state (its error hook among it), so one
/// picture is drawn at a time.
#include "render/DotToSvg.h"

#include <QStringList>
#include <graphviz/cgraph.h>
#include <graphviz/gvc.h>
#include <mutex>

namespace {

std::mutex g_graphviz;
QStringList* g_messages = nullptr;  ///< where the error hook puts what Graphviz says, while drawing

int Collect(char* message)
{
    if (g_messages && message)
        *g_messages << QString::fromUtf8(message).trimmed();
    return 0;
}

/// The errors among what Graphviz said, without its "Error: " prefixes, in one line.
QString Errors(const QStringList& messages)
{
    QStringList errors;
    for (QString m : messages) {
        if (m.startsWith(QStringLiteral("Warning")))
            continue;
        if (m.startsWith(QStringLiteral("Error: ")))
            m.remove(0, 7);
        if (!m.isEmpty())
            errors << m.simplified();
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
    QStringList messages;
    g_messages = &messages;
    const agusererrf previous = agseterrf(Collect);
    struct Restore {
        agusererrf previous;
        ~Restore()
        {
            agseterrf(previous);
            g_messages = nullptr;
        }
    } restore{previous};

    auto failed = [&](const QString& what) {
        const QString said = Errors(messages);
        picture.error = said.isEmpty() ? what + QLatin1Char('.') : what + QStringLiteral(": ") + said;
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
    if (gvLayout(s.gvc, s.graph, "dot") != 0)
        return failed(QStringLiteral("Graphviz could not lay out the graph"));
    s.laidOut = true;
    char* data = nullptr;
    unsigned int length = 0;
    if (gvRenderData(s.gvc, s.graph, "svg", &data, &length) != 0 || !data)
        return failed(QStringLiteral("Graphviz could not draw the graph as SVG"));
    picture.svg = QByteArray(data, static_cast<qsizetype>(length));
    gvFreeRenderData(data);
    return picture;
}
