#pragma once

#include "network/NetDefinition.h"

#include <QPointF>

/// One box of a scope: a node, a nodegraph seen from outside, or an input or output of the scope
/// itself.
///
/// Called by  NetScope, which owns it; the scene controller makes one graphics node of each.
/// Uses       NetPort, NetDefinition.
/// Tells      nobody.
struct NetNode
{
    enum class Kind {
        Node, ///< instance of a definition
        Graph, ///< a nodegraph; innerScope says which scope is inside
        Input, ///< input of the document or of the enclosing graph; a source for the nodes in the
        ///< scope
        Output ///< output of the document or of the enclosing graph; takes one connection
    };

    Kind kind = Kind::Node;
    QString key; ///< unique in its scope and the same on every reading of the same file, e.g.
        ///< "node/mix1"
    QString name; ///< as in the file; not always unique
    QString
        category; ///< tag of the element: "multiply", "ns:bitmap", "nodegraph", "input", "output"
    QString type; ///< output type, or "multioutput"; empty for graphs
    QString nodeGroup; ///< of the definition, or of any definition of the category; may be empty
    NetDefinitionPtr definition; ///< null: none found, or not a node
    NetAttributes attributes; ///< of the element; empty when implied
    QVector<NetPort> inputs;
    QVector<NetPort> outputs;
    QPointF
        position; ///< xpos and ypos in the unit of the file; y grows downwards; see NetPlacement
    bool hasPosition = false; ///< both xpos and ypos are given and finite
    bool implied
        = false; ///< has no element: an input of a functional graph, known from its definition
    bool removed
        = false; ///< taken out by an edit; keeps its place in the list, and nothing is connected to it
    int innerScope
        = -1; ///< Graph: index of the scope inside, in NetDocument::scopes(); otherwise -1
    int fileIndex = 0; ///< index in NetDocument::files(); above 0 for what an include brought in
    int line = 0; ///< of the element, from 1; 0 when implied

    /// The name for people: uiname, else the plain name.
    QString displayName() const;
    /// The element's colour as written ("#RRGGBB" or three numbers from 0 to 1); null for none.
    QString uiColor() const { return attributes.value(QLatin1String("uicolor")); }
    QString doc() const { return attributes.value(QLatin1String("doc")); }
    /// True for the format's pass-through node.
    bool isDot() const { return kind == Kind::Node && category == QLatin1String("dot"); }
    /// Position in inputs of the port that stands for the node as a whole, the one a dropped
    /// connection takes first: of the node's own type, else the first; -1 without inputs.
    int mainInput() const;
};
