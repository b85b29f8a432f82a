#pragma once

#include <OrvNodeGraph/OrvNgDotNode.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>

class EditorScene;

/// What the editor adds to a node of the library: it asks its scene what may be connected, and tells it
/// when a drag ends. Outside an EditorScene it is the library's node.
///
/// Called by  EditorNodeFactory (makes them), the library (rules, mouse).
/// Uses       EditorScene.
/// Tells      its EditorScene: drops, and drags that ended in any way.
template <typename Base> class EditorNodeOf final : public Base
{
public:
    EditorNodeOf();
    ~EditorNodeOf() override;

    bool acceptsInputSource(
        OrvNgNode* source, const QString& output, const QString& input) override;

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    bool sceneEvent(QEvent* event) override;

private:
    EditorScene* editorScene() const;
};

using EditorNode = EditorNodeOf<OrvNgExtendedNode>;
using EditorDot = EditorNodeOf<OrvNgDotNode>;

extern template class EditorNodeOf<OrvNgExtendedNode>;
extern template class EditorNodeOf<OrvNgDotNode>;
