#pragma once

#include "network/NetScope.h"

#include <QColor>
#include <QHash>
#include <QRectF>
#include <QVector>

class EditorScene;
class OrvNgBackdropNode;
class OrvNgNode;
class QGraphicsItem;

/// The backdrops and notes of a scene, by the positions of their models in the scope: frames behind the
/// nodes, and boxes of text. They are no nodes of the network: nothing counts, connects or lays them out.
///
/// What lies inside a backdrop is a matter of places alone; nothing is stored about it.
///
/// Called by  EditorScene, EditorEdits, the window (what is selected).
/// Uses       EditorNode (its backdrop and note), NetPlacement, the scene's model.
/// Tells      nobody.
class EditorBackdrops
{
public:
    /// What a point on a backdrop or note is about.
    enum class Text {
        None,
        Title,
        Doc ///< of a note, or the remark below a backdrop's title
    };

    explicit EditorBackdrops(EditorScene* scene);

    /// Makes all items. Called once, when the nodes are in the scene.
    void build();
    /// Null for a position out of range, and for what is removed.
    OrvNgNode* item(int index) const;
    /// -1 for an item that is neither a backdrop or note of the scene nor a part of one.
    int indexOf(const QGraphicsItem* item) const;
    /// All that are there.
    QVector<OrvNgNode*> items() const;
    /// Positions of those that are selected, in rising order.
    QVector<int> selected() const;
    /// The text that an item under the mouse shows, for tool tips and double clicks.
    Text textOf(const QGraphicsItem* hit) const;
    /// One is being deleted, by whomever.
    void forget(OrvNgNode* item);

    // Places

    /// Whether it stands where it was put last, and has not been resized.
    bool isAtRest(int index) const;
    /// Shows the place and size that the model has.
    void putBack(int index);
    /// Where it stands now, as the model would write it. A size or corner that did not change is the model's.
    QRectF fileRect(int index) const;

    // The model changed

    void followChange(int index);
    void followAddition(int index);
    void followRemoval(int index);

    /// The style changed: those without a colour of their own follow it.
    void recolor();

    /// The colour on the screen: the model's, else one that goes with the style's title bars, or paper for
    /// notes.
    static QColor colorOf(const NetBackdrop& backdrop);
    /// Of "#RRGGBB" or three numbers from 0 to 1 (a fourth is left out); an invalid colour for all else.
    static QColor colorFromText(const QString& text);

private:
    struct Shown
    {
        OrvNgNode* item = nullptr;
        QPointF pos; ///< where it was put last
        QSizeF size;
    };

    const NetBackdrop& model(int index) const;
    OrvNgBackdropNode* frame(int index) const;
    void make(int index);
    void show(int index);
    void color(int index);
    void restack(int index);

    EditorScene* m_Scene;
    QVector<Shown> m_Shown; ///< parallel to NetScope::backdrops
    QHash<const QGraphicsItem*, int> m_Indices;
};
