#pragma once

#include <OrvNodeGraph/OrvNgBackdropNode.h>
#include <OrvNodeGraph/OrvNgDotNode.h>
#include <OrvNodeGraph/OrvNgExtendedNode.h>
#include <OrvNodeGraph/OrvNgUINode.h>

class EditorScene;

/// A note whose box has a size of its own.
///
/// Called by  EditorBackdrops.
/// Uses       OrvNgUINode.
/// Tells      nobody.
class EditorNoteBox : public OrvNgUINode
{
public:
    using OrvNgUINode::OrvNgUINode;

    /// Shows a text, its lines wrapped to the width. The box, in scene units, grows downwards where the text
    /// needs more room. Without a width it is as wide as the text.
    void fill(const QString& text, const QSizeF& size);
};

/// What the editor adds to a node of the library: it asks its scene what may be connected, and tells it
/// when a drag ends. Outside an EditorScene it is the library's node.
///
/// Called by  EditorNodeFactory, EditorBackdrops (make them), the library (rules, mouse).
/// Uses       EditorScene.
/// Tells      its EditorScene: drops, and drags that ended in any way.
template <typename Base> class EditorNodeOf final : public Base
{
public:
    EditorNodeOf();
    ~EditorNodeOf() override;

    bool allowsFarPicture() const override { return true; } // it paints nothing of its own
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
using EditorBackdrop = EditorNodeOf<OrvNgBackdropNode>;
using EditorNote = EditorNodeOf<EditorNoteBox>;

extern template class EditorNodeOf<OrvNgExtendedNode>;
extern template class EditorNodeOf<OrvNgDotNode>;
extern template class EditorNodeOf<OrvNgBackdropNode>;
extern template class EditorNodeOf<EditorNoteBox>;
