#pragma once

#include "network/NetConnector.h"
#include "network/NetEditor.h"
#include "network/NetXmlWriter.h"

#include <QHash>

#include <vector>

/// What one change does to the text and to the model. Everything that stands in the text is read from it
/// again after the change, in either direction, so only the way is kept and not the outcome.
struct NetEdit
{
    struct Node
    {
        int scope = -1;
        int node = -1;
    };

    struct Shown
    {
        int node = -1;
        QPointF position;
        bool hasPosition = true;
    };

    NetXmlPatches patches;
    int scope = -1;
    QVector<Node> changed; ///< boxes whose elements get another text
    QVector<QPair<Node, int>> rewired; ///< inputs that get another source
    QVector<int> moved;
    QVector<int> removed;
    QString addedName; ///< of a new dot; null for none
    int added = -1; ///< its position, once it was there
    int addedBefore = -1; ///< the node whose element it stands before
    QVector<int> orderBefore; ///< of the scope's elements; filled in when the change is made first
    QVector<int> changedBackdrops;
    QVector<int> removedBackdrops;
    bool addsBackdrop = false;
    int addedBackdrop = -1; ///< its position, once it was there
    std::vector<Shown>
        shown; ///< boxes without an element; their positions are exchanged with the model's
};

/// The text of the open document and the way between its elements and the boxes of the model.
///
/// A box finds its element by its place in the file's order and not by its name, because names repeat.
///
/// Called by  NetEditor.
/// Uses       NetXmlFile, NetScopeBuilder, NetConnector.
/// Tells      nobody.
class NetEditor::Text
{
public:
    explicit Text(NetDocument* document);

    const NetXmlFile& file() const { return m_Document->file(); }
    /// The element of a box; null when it has none in the document's own file.
    pugi::xml_node element(int scope, int node) const;
    /// The element of a box's input: the box itself, or a child; null when it is not listed.
    pugi::xml_node inputElement(int scope, const NetPortRef& dest) const;
    /// The element of a scope: the root, or the graph's; null when it is in another file.
    pugi::xml_node scopeElement(int scope) const;
    /// The elements of the scope's backdrops that are there, by position.
    QHash<int, pugi::xml_node> backdropElements(int scope) const;
    /// Names that a new element of the scope must not have.
    bool isNameTaken(int scope, const QString& name) const;
    /// The wanted name, or one like it with another number at its end.
    QString freeName(int scope, const QString& wanted) const;

    /// Makes the change, or takes it back. False, with nothing done, when the text is not the one that
    /// the change was made for.
    bool apply(NetEdit* edit, bool forward);

    QByteArray onDisk; ///< the document's own file as read, or as saved last
    /// Makes another file the document's own, with the same text.
    void setPath(const QString& path);

private:
    using Elements = QHash<int, pugi::xml_node>;

    const Elements& elements(int scope) const;
    bool setText(const QString& path, const QByteArray& bytes);
    void changeNodes(NetEdit* edit, bool forward);
    int appendDot(NetEdit* edit);
    void changeBackdrops(NetEdit* edit, bool forward);
    void remove(int scope, const QVector<int>& nodes);
    void refresh(int scope, int node);
    void refreshBox(int scope, int node);
    void reconsiderNames();

    NetDocument* m_Document;
    QVector<QVector<int>> m_Order; // by scope: the boxes that have an element, in the file's order
    mutable QHash<int, Elements> m_Elements; // by scope and box; made when asked for
};
