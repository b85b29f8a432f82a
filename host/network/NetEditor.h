#pragma once

#include "network/NetDocument.h"

#include <QObject>

#include <memory>

/// One end of a connection: positions in NetScope::nodes and in that node's inputs or outputs.
struct NetPortRef
{
    int node = -1;
    int port = -1;
};

/// A node's new place, in the unit of its scope's file positions.
struct NetMove
{
    int node = -1;
    QPointF position;
};

/// A backdrop's new place, in the unit of its scope's file positions.
struct NetBackdropMove
{
    int backdrop = -1;
    QRectF rect;
};

/// Changes an open document, and takes changes back.
///
/// Every change is made in the text of the file as well, in the smallest place that will hold it: what a
/// change does not concern keeps its bytes, and taking the change back gives the old bytes again. Positions
/// of nodes in a scope stay the same for as long as the document is open: a deleted node keeps its place in
/// the list, marked as removed.
///
/// Elements that an include brought in, and inputs that only a definition knows of, cannot be changed; a
/// change that concerns them is refused.
///
/// Called by  the editor's undo commands, the window (saving).
/// Uses       NetDocument.
/// Tells      scenes what changed, through its signals.
class NetEditor : public QObject
{
    Q_OBJECT

public:
    /// A change that can be made, taken back and made again, in turn.
    class Change
    {
    public:
        virtual ~Change() = default;
        virtual void redo() = 0;
        virtual void undo() = 0;
    };
    using ChangePtr = std::unique_ptr<Change>;

    explicit NetEditor(std::shared_ptr<NetDocument> document);
    ~NetEditor() override;

    const NetDocument& document() const;
    const NetScope& scope(int scope) const;

    // Rules: an empty text, or one translated sentence why not

    QString whyNotConnect(int scope, const NetPortRef& source, const NetPortRef& dest) const;
    QString whyNotDisconnect(int scope, const NetPortRef& dest) const;
    QString whyNotMove(int scope, int node) const;
    QString whyNotRemove(int scope, int node) const;

    /// The connection of an input; null when it has none.
    const NetConnection* connectionTo(int scope, const NetPortRef& dest) const;

    // Changes: made by their redo(). Null when a rule forbids one, or there is nothing to do

    /// An input of a functional graph has no element that could hold a position: it stands there until the
    /// document is closed, and the text does not change.
    ChangePtr moveNodes(int scope, const QVector<NetMove>& moves);
    /// Replaces the input's value or connection; lists the input if only the definition had it.
    ChangePtr connectInput(int scope, const NetPortRef& source, const NetPortRef& dest);
    /// The input stays listed, with the definition's default as its value.
    ChangePtr disconnectInput(int scope, const NetPortRef& dest);
    /// Removes the nodes and disconnects what they fed.
    ChangePtr removeNodes(int scope, const QVector<int>& nodes);
    /// Puts a new pass-through node between the ends of a connection; position in file units. Its index is
    /// the one that nodeAdded() tells, the end of the scope's list.
    ChangePtr insertDot(int scope, const NetPortRef& dest, const QPointF& position);

    // Backdrops and notes: positions in NetScope::backdrops stay the same as those of nodes do

    QString whyNotChangeBackdrop(int scope, int backdrop) const;
    QString whyNotRemoveBackdrop(int scope, int backdrop) const;
    ChangePtr moveBackdrops(int scope, const QVector<NetBackdropMove>& moves);
    /// An empty title takes the name's place away: the name shows.
    ChangePtr setBackdropTitle(int scope, int backdrop, const QString& title);
    /// The text of a note, or the remark on a backdrop; an empty one goes.
    ChangePtr setBackdropDoc(int scope, int backdrop, const QString& doc);
    /// "#RRGGBB", or three numbers from 0 to 1; an empty one goes. Null for any other text.
    ChangePtr setBackdropColor(int scope, int backdrop, const QString& color);
    /// Adds a backdrop, or a note, at the end of the scope; rectangle, title, doc and color of the argument
    /// count, and isNote. Its name is made of the title; its index is the one that backdropAdded() tells, the
    /// end of the scope's list. A colour that is none is left out.
    ChangePtr addBackdrop(int scope, const NetBackdrop& backdrop);
    ChangePtr removeBackdrops(int scope, const QVector<int>& backdrops);

    // The file

    /// The document's own file as it would be saved now.
    QByteArray text() const;
    /// Writes the text to a file, whole or not at all, and makes that file the document's. False with one
    /// sentence when it cannot be written: the old file is then untouched.
    ///
    /// A file that another program changed meanwhile is overwritten: ask changedOnDisk() first. Includes
    /// with relative paths count from the new place; their text stays as it is, so a document that has
    /// some should be saved in its own folder.
    bool save(const QString& path, QString* error);
    /// True when the document's own file holds something else than what was read from it or saved to it
    /// last, or cannot be read any more. False when it is gone: nothing would be overwritten.
    bool changedOnDisk() const;

Q_SIGNALS:
    /// The nodes' positions are now those of the scope.
    void nodesMoved(int scope, const QVector<int>& nodes);
    /// The connection of that input is now what the scope says.
    void inputChanged(int scope, int node, int port);
    /// The node is there, new or again; inputChanged() follows for every connection it has.
    void nodeAdded(int scope, int node);
    /// The backdrop's rectangle, texts or colour are now those of the scope.
    void backdropChanged(int scope, int backdrop);
    void backdropAdded(int scope, int backdrop);
    void backdropRemoved(int scope, int backdrop);
    /// The node is marked as removed and nothing is connected to it. Its consumers' inputChanged() came
    /// before.
    void nodeRemoved(int scope, int node);

private:
    class Text;
    friend class NetEditorChange;

    /// Null when the attribute says so already; an empty value takes it out.
    ChangePtr setBackdropAttribute(
        int scope, int backdrop, const char* attribute, const QString& value);

    std::shared_ptr<NetDocument> m_Document;
    std::unique_ptr<Text> m_Text;
};
