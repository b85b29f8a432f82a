#pragma once

#include <QString>

struct NetNode;

/// How a node of the model looks: the category that gives its colour, and its outline.
///
/// Called by  EditorNodeFactory.
/// Uses       NetNode.
/// Tells      nobody.
struct EditorNodeLook
{
    QString category; ///< of the library; names a brush of the style
    int shape = 0; ///< OrvNgNode::NodeShapeType

    static EditorNodeLook of(const NetNode& node);
    /// The library's category for a definition's group; "Basic" for an unknown one.
    static QString categoryOfGroup(const QString& nodeGroup);
};
