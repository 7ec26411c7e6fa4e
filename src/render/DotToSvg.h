/// \file
/// DOT text drawn as SVG by Graphviz's "dot" layout, in the process. What
/// Graphviz complains of comes back as a message, never as output on stderr.
#pragma once

#include <QByteArray>
#include <QString>

/// The sizes a picture may have: larger graphs are refused before layout,
/// which grows faster than the graph.
struct SvgLimits {
    qsizetype maxDotBytes = 8 * 1024 * 1024;
    int maxNodes = 1000;
    int maxEdges = 500;
};

struct SvgPicture {
    QByteArray svg;  ///< the SVG document; empty when error says why
    QString error;   ///< "Graphviz could not read the graph: syntax error in line 3 near 'x'"
    bool Ok() const { return error.isEmpty(); }
};

/// Lays out dot (UTF-8 DOT text) with "dot" and draws it as SVG.
SvgPicture DotToSvg(const QByteArray& dot, const SvgLimits& limits = SvgLimits());
