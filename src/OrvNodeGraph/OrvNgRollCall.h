#pragma once

#include <QRectF>
#include <QVector>

class QGraphicsItem;
class QGraphicsScene;

/// Internal. The visible top-level items of a scene from the lowest to the topmost, without looking at
/// the children of ours: a scene of ten thousand nodes holds hundreds of thousands, and the framework has no
/// list of the outermost ones.
///
/// The scene is asked for its items, which it goes through in stacking order. While that goes on, our
/// top-level items note that they were reached and answer that they are nowhere, so that the scene passes
/// over what they contain. Items of other classes are found as ever.
///
/// Called by  OrvNgFarList; OrvNgNode and OrvNgEdge answer.
/// Uses       QGraphicsScene::items.
/// Tells      nobody.
class OrvNgRollCall
{
public:
    /// What is known of an item from the way in which it answered.
    enum class Kind { Node, Edge, Other };
    struct Entry
    {
        QGraphicsItem* m_Item = nullptr;
        Kind m_Kind = Kind::Other;
    };

    /// Those whose bounds meet a rectangle of the scene; of ours maybe some more. Where an item of another class
    /// stands is told against those of ours with the same z value that come within reach of it, scene units.
    static QVector<Entry> hold(QGraphicsScene* scene, const QRectF& rect, double reach = 0.0);

    /// Scene coordinates, with the children that stick out.
    static QRectF boundsOfTree(const QGraphicsItem& item);

    /// Asked first by boundingRect() of extended nodes (Kind::Node) and edges. True, while a roll is called,
    /// for a top-level item: it then returns nowhere().
    static bool answers(const QGraphicsItem* item, Kind kind)
    {
        return s_Roll && isNoted(item, kind);
    }
    static QRectF nowhere();

    /// A node has come into a scene, or a node or an edge is about to leave it: rolls that were called before do
    /// not hold any more.
    static void noteChange() { ++s_Changes; }
    static quint64 changes() { return s_Changes; }

private:
    static bool isNoted(const QGraphicsItem* item, Kind kind);
    static void insertOther(
        QVector<Entry>& roll, QGraphicsScene* scene, QGraphicsItem* item, double reach);

    static quint64 s_Changes;
    static QVector<Entry>* s_Roll; ///< null while none is called
};
