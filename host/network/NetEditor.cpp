#include "network/NetEditor.h"

#include "network/NetEditorText.h"
#include "network/NetFileSaver.h"
#include "network/NetRules.h"

#include <QFile>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace {

const QVector<QByteArray> kBindings{"value", "nodename", "nodegraph", "interfacename", "output"};

// At most six decimals, as files of this format have them, and the same in every language.
QString numberText(qreal number)
{
    QString text = QString::number(number, 'f', 6);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

// One place of the text can be changed only once.
template <typename Move> QVector<Move> lastOfEach(const QVector<Move>& moves, int Move::*index)
{
    QVector<Move> last;
    QSet<int> seen;
    for (auto move = moves.crbegin(); move != moves.crend(); ++move) {
        if (seen.contains((*move).*index))
            continue;
        seen.insert((*move).*index);
        last.prepend(*move);
    }
    return last;
}

QString coordinateText(const NetNode& node, const char* attribute, qreal old, qreal wanted)
{
    const QString text = numberText(wanted);
    return node.hasPosition && numberText(old) == text
        ? node.attributes.value(QLatin1String(attribute))
        : text;
}

NetXmlPairs positionPairs(const NetNode& node, const QPointF& position)
{
    return {{"xpos", coordinateText(node, "xpos", node.position.x(), position.x())},
        {"ypos", coordinateText(node, "ypos", node.position.y(), position.y())}};
}

NetXmlPairs bindingPairs(const NetScope& scope, const NetPortRef& source)
{
    const NetNode& node = scope.nodes.at(source.node);
    const QString& output = node.outputs.at(source.port).name;
    switch (node.kind) {
    case NetNode::Kind::Node:
        if (node.outputs.size() > 1 || node.type == QLatin1String("multioutput"))
            return {{"nodename", node.name}, {"output", output}};
        return {{"nodename", node.name}};
    case NetNode::Kind::Graph:
        return {{"nodegraph", node.name}, {"output", output}};
    case NetNode::Kind::Input:
        return {{"interfacename", node.name}};
    case NetNode::Kind::Output:
        break;
    }
    return {{"output", node.name}};
}

NetXmlPairs defaultPairs(const NetPort& port)
{
    return port.defaultValue.isNull() ? NetXmlPairs() : NetXmlPairs{{"value", port.defaultValue}};
}

} // namespace

/// A change of an open document. What to do is worked out when it is made first, on the document as it is
/// then: several changes may be asked for before the first of them is made.
///
/// Called by  the host's undo commands.
/// Uses       NetEditor::Text.
/// Tells      NetEditor's listeners, through its signals.
class NetEditorChange : public NetEditor::Change
{
public:
    using Plan = std::function<NetEdit(const NetEditor::Text&)>;

    NetEditorChange(NetEditor* editor, Plan plan)
        : m_Editor(editor)
        , m_Plan(std::move(plan))
    {
    }

    void redo() override
    {
        if (m_Done || !m_Editor)
            return;
        if (m_Plan) {
            m_Edit = m_Plan(*m_Editor->m_Text);
            m_Plan = nullptr;
        }
        m_Done = m_Editor->m_Text->apply(&m_Edit, true);
        if (m_Done)
            tell(true);
    }
    void undo() override
    {
        if (!m_Done || !m_Editor || !m_Editor->m_Text->apply(&m_Edit, false))
            return;
        m_Done = false;
        tell(false);
    }

private:
    void tell(bool forward)
    {
        const auto listed
            = [](int index) { return index >= 0 ? QVector<int>{index} : QVector<int>(); };
        const QVector<int> added = listed(m_Edit.added);
        forward ? tellNodes(added, m_Edit.removed) : tellNodes(m_Edit.removed, added);
        const QVector<int> addedBackdrop = listed(m_Edit.addedBackdrop);
        for (const int each : forward ? addedBackdrop : m_Edit.removedBackdrops)
            Q_EMIT m_Editor->backdropAdded(m_Edit.scope, each);
        for (const int each : qAsConst(m_Edit.changedBackdrops))
            Q_EMIT m_Editor->backdropChanged(m_Edit.scope, each);
        for (const int each : forward ? m_Edit.removedBackdrops : addedBackdrop)
            Q_EMIT m_Editor->backdropRemoved(m_Edit.scope, each);
    }
    // New boxes first and vanished ones last, so that a listener knows both ends of what is rewired.
    void tellNodes(const QVector<int>& added, const QVector<int>& removed)
    {
        for (const int node : added)
            Q_EMIT m_Editor->nodeAdded(m_Edit.scope, node);
        for (const int node : added) {
            const int inputs = m_Editor->scope(m_Edit.scope).nodes.at(node).inputs.size();
            for (int port = 0; port < inputs; ++port) {
                if (m_Editor->connectionTo(m_Edit.scope, {node, port}))
                    Q_EMIT m_Editor->inputChanged(m_Edit.scope, node, port);
            }
        }
        for (const auto& [end, port] : qAsConst(m_Edit.rewired))
            Q_EMIT m_Editor->inputChanged(end.scope, end.node, port);
        for (const int node : removed)
            Q_EMIT m_Editor->nodeRemoved(m_Edit.scope, node);
        if (!m_Edit.moved.isEmpty())
            Q_EMIT m_Editor->nodesMoved(m_Edit.scope, m_Edit.moved);
    }

    QPointer<NetEditor> m_Editor;
    Plan m_Plan; // null once it was carried out
    NetEdit m_Edit;
    bool m_Done = false;
};

NetEditor::NetEditor(std::shared_ptr<NetDocument> document)
    : m_Document(std::move(document))
    , m_Text(std::make_unique<Text>(m_Document.get()))
{
}

NetEditor::~NetEditor() = default;

const NetDocument& NetEditor::document() const
{
    return *m_Document;
}

const NetScope& NetEditor::scope(int scope) const
{
    return m_Document->scopes().at(scope);
}

QString NetEditor::whyNotConnect(int scope, const NetPortRef& source, const NetPortRef& dest) const
{
    return NetRules(*m_Document).whyNotConnect(scope, source, dest);
}

QString NetEditor::whyNotDisconnect(int scope, const NetPortRef& dest) const
{
    return NetRules(*m_Document).whyNotDisconnect(scope, dest);
}

QString NetEditor::whyNotMove(int scope, int node) const
{
    return NetRules(*m_Document).whyNotMove(scope, node);
}

QString NetEditor::whyNotRemove(int scope, int node) const
{
    return NetRules(*m_Document).whyNotRemove(scope, node);
}

const NetConnection* NetEditor::connectionTo(int scope, const NetPortRef& dest) const
{
    if (scope < 0 || scope >= m_Document->scopes().size())
        return nullptr;
    const NetScope& network = m_Document->scopes().at(scope);
    const int found = network.connectionTo(dest.node, dest.port);
    return found < 0 ? nullptr : &network.connections.at(found);
}

NetEditor::ChangePtr NetEditor::moveNodes(int scope, const QVector<NetMove>& moves)
{
    QVector<NetMove> wanted;
    const QVector<NetMove> single = lastOfEach(moves, &NetMove::node);
    for (const NetMove& move : single) {
        if (!whyNotMove(scope, move.node).isEmpty() || !std::isfinite(move.position.x())
            || !std::isfinite(move.position.y()))
            return nullptr;
        const NetNode& node = this->scope(scope).nodes.at(move.node);
        const bool same = node.hasPosition
            && numberText(node.position.x()) == numberText(move.position.x())
            && numberText(node.position.y()) == numberText(move.position.y());
        if (!same)
            wanted.append(move);
    }
    if (wanted.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, wanted](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        NetXmlWriter writer(text.file(), &edit.patches);
        for (const NetMove& move : wanted) {
            if (!whyNotMove(scope, move.node).isEmpty())
                continue;
            const NetNode& node = this->scope(scope).nodes.at(move.node);
            edit.moved.append(move.node);
            if (const pugi::xml_node element = text.element(scope, move.node)) {
                writer.setAttributes(element, positionPairs(node, move.position));
                edit.changed.append({scope, move.node});
            } else {
                edit.shown.push_back({move.node, move.position, true});
            }
        }
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::connectInput(
    int scope, const NetPortRef& source, const NetPortRef& dest)
{
    if (!whyNotConnect(scope, source, dest).isEmpty())
        return nullptr;
    const NetConnection* old = connectionTo(scope, dest);
    if (old && old->sourceNode == source.node && old->sourcePort == source.port)
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, source, dest](const Text& text) {
        NetEdit edit;
        if (!whyNotConnect(scope, source, dest).isEmpty())
            return edit;
        edit.scope = scope;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        NetXmlWriter writer(text.file(), &edit.patches);
        NetXmlPairs binding = bindingPairs(this->scope(scope), source);
        if (const pugi::xml_node input = text.inputElement(scope, dest)) {
            writer.setAttributes(input, binding, kBindings);
            return edit;
        }
        const NetPort& port = this->scope(scope).nodes.at(dest.node).inputs.at(dest.port);
        binding.prepend({"type", port.type});
        binding.prepend({"name", port.name});
        writer.addInput(text.element(scope, dest.node), binding);
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::disconnectInput(int scope, const NetPortRef& dest)
{
    if (!whyNotDisconnect(scope, dest).isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, dest](const Text& text) {
        NetEdit edit;
        if (!whyNotDisconnect(scope, dest).isEmpty())
            return edit;
        edit.scope = scope;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        NetXmlWriter(text.file(), &edit.patches)
            .setAttributes(text.inputElement(scope, dest),
                defaultPairs(this->scope(scope).nodes.at(dest.node).inputs.at(dest.port)),
                kBindings);
        return edit;
    });
}

namespace {

// The inputs outside a set of nodes of one scope that the set feeds, in the own file: those of the scope,
// and those inside graphs of the document that take from one of its graphs or outputs.
QVector<QPair<NetEdit::Node, int>> consumersOf(
    const NetDocument& document, int scopeIndex, const QSet<int>& nodes)
{
    QVector<QPair<NetEdit::Node, int>> consumers;
    const NetScope& scope = document.scopes().at(scopeIndex);
    for (const NetConnection& wire : scope.connections) {
        if (nodes.contains(wire.sourceNode) && !nodes.contains(wire.destNode)
            && scope.nodes.at(wire.destNode).fileIndex == 0)
            consumers.append({{scopeIndex, wire.destNode}, wire.destPort});
    }
    const auto isOutside = [&](const NetOpenEnd& end) {
        const auto kind
            = end.binding == NetBinding::NodeGraph ? NetNode::Kind::Graph : NetNode::Kind::Output;
        return end.reason == NetOpenEnd::Reason::Outside
            && nodes.contains(scope.indexOf(kind, end.wantedName));
    };
    for (const NetScope& inner : document.scopes()) {
        if (scopeIndex != 0 || inner.index == 0)
            continue;
        for (const NetOpenEnd& end : inner.openEnds) {
            if (isOutside(end)
                && NetRules(document).whyNotMove(inner.index, end.destNode).isEmpty())
                consumers.append({{inner.index, end.destNode}, end.destPort});
        }
    }
    return consumers;
}

// True when the scope lies inside one of the boxes, at any depth.
bool isInside(const NetDocument& document, int scopeIndex, int around, const QSet<int>& boxes)
{
    for (int inner = scopeIndex; document.scopes().at(inner).parent >= 0;
         inner = document.scopes().at(inner).parent) {
        const int parent = document.scopes().at(inner).parent;
        if (parent == around && boxes.contains(document.scopes().at(parent).boxOf(inner)))
            return true;
    }
    return false;
}

} // namespace

NetEditor::ChangePtr NetEditor::removeNodes(int scope, const QVector<int>& nodes)
{
    for (const int node : nodes) {
        if (!whyNotRemove(scope, node).isEmpty())
            return nullptr;
    }
    if (nodes.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, nodes](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        QSet<int> gone;
        for (const int node : nodes) {
            if (whyNotRemove(scope, node).isEmpty())
                gone.insert(node);
        }
        edit.removed = QVector<int>(gone.cbegin(), gone.cend());
        std::sort(edit.removed.begin(), edit.removed.end());
        // Deliberate: a backdrop whose "contains" names one of them keeps its list. Who reads it passes over
        // names that are not there, and lists of other programs are not ours to tidy.
        NetXmlWriter writer(text.file(), &edit.patches);
        for (const int node : qAsConst(edit.removed))
            writer.remove(text.element(scope, node));
        const auto consumers = consumersOf(*m_Document, scope, gone);
        for (const auto& consumer : consumers) {
            const auto& [end, port] = consumer;
            if (isInside(*m_Document, end.scope, scope, gone))
                continue;
            writer.setAttributes(text.inputElement(end.scope, {end.node, port}),
                defaultPairs(this->scope(end.scope).nodes.at(end.node).inputs.at(port)), kBindings);
            edit.changed.append(end);
            edit.rewired.append(consumer);
        }
        return edit;
    });
}

namespace {

// The dot repeats what the connection says of its source.
bool canRepeat(const NetScope& scope, const NetConnection& wire)
{
    const NetNode& from = scope.nodes.at(wire.sourceNode);
    const NetPort& output = from.outputs.at(wire.sourcePort);
    return NetXmlWriter::canWrite(from.name + output.name + output.type);
}

} // namespace

NetEditor::ChangePtr NetEditor::insertDot(
    int scope, const NetPortRef& dest, const QPointF& position)
{
    const NetConnection* present = connectionTo(scope, dest);
    if (!whyNotDisconnect(scope, dest).isEmpty() || !present
        || !canRepeat(this->scope(scope), *present) || !std::isfinite(position.x())
        || !std::isfinite(position.y()))
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, dest, position](const Text& text) {
        NetEdit edit;
        const NetConnection* wire = connectionTo(scope, dest);
        if (!whyNotDisconnect(scope, dest).isEmpty() || !wire
            || !canRepeat(this->scope(scope), *wire))
            return edit;
        edit.scope = scope;
        for (int number = 1; edit.addedName.isNull(); ++number) {
            const QString name = QStringLiteral("dot%1").arg(number);
            if (!text.isNameTaken(scope, name))
                edit.addedName = name;
        }
        edit.addedBefore = dest.node;
        edit.changed.append({scope, dest.node});
        edit.rewired.append({{scope, dest.node}, dest.port});
        const NetScope& network = this->scope(scope);
        const QString& type = network.nodes.at(wire->sourceNode).outputs.at(wire->sourcePort).type;
        NetXmlPairs input = bindingPairs(network, {wire->sourceNode, wire->sourcePort});
        input.prepend({"type", type});
        input.prepend({"name", QStringLiteral("in")});
        NetXmlWriter writer(text.file(), &edit.patches);
        writer.addNodeBefore(text.element(scope, dest.node), "dot",
            {{"name", edit.addedName}, {"type", type}, {"xpos", numberText(position.x())},
                {"ypos", numberText(position.y())}},
            input);
        writer.setAttributes(
            text.inputElement(scope, dest), {{"nodename", edit.addedName}}, kBindings);
        return edit;
    });
}

QString NetEditor::whyNotChangeBackdrop(int scope, int backdrop) const
{
    return NetRules(*m_Document).whyNotChangeBackdrop(scope, backdrop);
}

QString NetEditor::whyNotRemoveBackdrop(int scope, int backdrop) const
{
    return NetRules(*m_Document).whyNotRemoveBackdrop(scope, backdrop);
}

namespace {

struct RectNumber
{
    const char* attribute;
    qreal old;
    qreal wanted;

    bool isChanged() const { return numberText(old) != numberText(wanted); }
};

std::array<RectNumber, 4> rectNumbers(const QRectF& old, const QRectF& wanted)
{
    return {{{"xpos", old.x(), wanted.x()}, {"ypos", old.y(), wanted.y()},
        {"width", old.width(), wanted.width()}, {"height", old.height(), wanted.height()}}};
}

bool isSameInFile(const QRectF& a, const QRectF& b)
{
    const auto numbers = rectNumbers(a, b);
    return std::none_of(numbers.cbegin(), numbers.cend(),
        [](const RectNumber& number) { return number.isChanged(); });
}

bool isUsable(const QRectF& rect)
{
    const auto numbers = rectNumbers({}, rect);
    return rect.width() >= 0 && rect.height() >= 0
        && std::all_of(numbers.cbegin(), numbers.cend(),
            [](const RectNumber& number) { return std::isfinite(number.wanted); });
}

// A position counts only when both of its numbers are there; a size that is missing is the default one.
NetXmlPairs rectPairs(const NetBackdrop& backdrop, const QRectF& rect)
{
    const auto numbers = rectNumbers(backdrop.rect, rect);
    const bool moved = numbers[0].isChanged() || numbers[1].isChanged();
    NetXmlPairs pairs;
    for (const RectNumber& number : numbers) {
        const QString text = backdrop.attributes.value(QLatin1String(number.attribute));
        const bool position = &number < &numbers[2];
        bool isNumber = false;
        const qreal old = text.trimmed().toDouble(&isNumber);
        if (number.isChanged() || (moved && position && !(isNumber && std::isfinite(old))))
            pairs.append({number.attribute, numberText(number.wanted)});
        else if (!text.isNull())
            pairs.append({number.attribute, text});
    }
    return pairs;
}

bool isColor(const QString& text)
{
    static const QRegularExpression s_Color(
        QStringLiteral("^\\s*(#[0-9A-Fa-f]{6}|[0-9.eE+-]+([\\s,]+[0-9.eE+-]+){2})\\s*$"));
    return s_Color.match(text).hasMatch();
}

// What of a title can stand in a name; accents go, anything else becomes an underscore between words.
QString nameOf(const NetBackdrop& backdrop)
{
    QString name;
    bool gap = false;
    for (const QChar c : backdrop.title.normalized(QString::NormalizationForm_KD)) {
        const bool legal = c.unicode() < 128 && (c.isLetterOrNumber() || c == QLatin1Char('_'));
        if (legal && gap && !name.isEmpty())
            name += QLatin1Char('_');
        if (legal)
            name += c;
        gap = !legal && (gap || !c.isMark());
    }
    if (!name.isEmpty() && !name.at(0).isDigit())
        return name;
    return backdrop.isNote ? QStringLiteral("note") : QStringLiteral("backdrop");
}

NetXmlPairs newBackdropPairs(const NetBackdrop& backdrop, const QString& name)
{
    NetXmlPairs pairs{{"name", name}};
    for (const RectNumber& number : rectNumbers({}, backdrop.rect))
        pairs.append({number.attribute, numberText(number.wanted)});
    if (!backdrop.title.trimmed().isEmpty() && backdrop.title != name)
        pairs.append({"uiname", backdrop.title});
    if (!backdrop.doc.isEmpty())
        pairs.append({"doc", backdrop.doc});
    if (isColor(backdrop.color))
        pairs.append({"uicolor", backdrop.color});
    if (backdrop.isNote)
        pairs.append({"contains", QString()});
    return pairs;
}

} // namespace

NetEditor::ChangePtr NetEditor::moveBackdrops(int scope, const QVector<NetBackdropMove>& moves)
{
    QVector<NetBackdropMove> wanted;
    const QVector<NetBackdropMove> single = lastOfEach(moves, &NetBackdropMove::backdrop);
    for (const NetBackdropMove& move : single) {
        if (!whyNotChangeBackdrop(scope, move.backdrop).isEmpty() || !isUsable(move.rect))
            return nullptr;
        if (!isSameInFile(this->scope(scope).backdrops.at(move.backdrop).rect, move.rect))
            wanted.append(move);
    }
    if (wanted.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, wanted](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        NetXmlWriter writer(text.file(), &edit.patches);
        const auto elements = text.backdropElements(scope);
        for (const NetBackdropMove& move : wanted) {
            if (!whyNotChangeBackdrop(scope, move.backdrop).isEmpty())
                continue;
            writer.setAttributes(elements.value(move.backdrop),
                rectPairs(this->scope(scope).backdrops.at(move.backdrop), move.rect));
            edit.changedBackdrops.append(move.backdrop);
        }
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::setBackdropTitle(int scope, int backdrop, const QString& title)
{
    if (!whyNotChangeBackdrop(scope, backdrop).isEmpty())
        return nullptr;
    const QString& name = this->scope(scope).backdrops.at(backdrop).name;
    const bool showsName = title.trimmed().isEmpty() || title == name;
    return setBackdropAttribute(scope, backdrop, "uiname", showsName ? QString() : title);
}

NetEditor::ChangePtr NetEditor::setBackdropDoc(int scope, int backdrop, const QString& doc)
{
    return setBackdropAttribute(scope, backdrop, "doc", doc);
}

NetEditor::ChangePtr NetEditor::setBackdropColor(int scope, int backdrop, const QString& color)
{
    if (!color.isEmpty() && !isColor(color))
        return nullptr;
    return setBackdropAttribute(scope, backdrop, "uicolor", color);
}

NetEditor::ChangePtr NetEditor::setBackdropAttribute(
    int scope, int backdrop, const char* attribute, const QString& value)
{
    if (!whyNotChangeBackdrop(scope, backdrop).isEmpty())
        return nullptr;
    const NetAttributes& old = this->scope(scope).backdrops.at(backdrop).attributes;
    if (old.value(QLatin1String(attribute)) == value)
        return nullptr;
    const auto plan = [this, scope, backdrop, attribute, value](const Text& text) {
        NetEdit edit;
        if (!whyNotChangeBackdrop(scope, backdrop).isEmpty())
            return edit;
        edit.scope = scope;
        edit.changedBackdrops.append(backdrop);
        const NetXmlPairs wanted
            = value.isEmpty() ? NetXmlPairs() : NetXmlPairs{{attribute, value}};
        NetXmlWriter(text.file(), &edit.patches)
            .setAttributes(text.backdropElements(scope).value(backdrop), wanted, {attribute});
        return edit;
    };
    return std::make_unique<NetEditorChange>(this, plan);
}

NetEditor::ChangePtr NetEditor::addBackdrop(int scope, const NetBackdrop& backdrop)
{
    if (!NetRules(*m_Document).whyNotAdd(scope).isEmpty() || !isUsable(backdrop.rect))
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, backdrop](const Text& text) {
        NetEdit edit;
        if (!NetRules(*m_Document).whyNotAdd(scope).isEmpty())
            return edit;
        edit.scope = scope;
        edit.addsBackdrop = true;
        NetXmlWriter(text.file(), &edit.patches)
            .addLast(text.scopeElement(scope), "backdrop",
                newBackdropPairs(backdrop, text.freeName(scope, nameOf(backdrop))));
        return edit;
    });
}

NetEditor::ChangePtr NetEditor::removeBackdrops(int scope, const QVector<int>& backdrops)
{
    for (const int each : backdrops) {
        if (!whyNotRemoveBackdrop(scope, each).isEmpty())
            return nullptr;
    }
    if (backdrops.isEmpty())
        return nullptr;
    return std::make_unique<NetEditorChange>(this, [this, scope, backdrops](const Text& text) {
        NetEdit edit;
        edit.scope = scope;
        NetXmlWriter writer(text.file(), &edit.patches);
        const auto elements = text.backdropElements(scope);
        for (const int each : backdrops) {
            if (edit.removedBackdrops.contains(each)
                || !whyNotRemoveBackdrop(scope, each).isEmpty())
                continue;
            edit.removedBackdrops.append(each);
            writer.remove(elements.value(each));
        }
        return edit;
    });
}

QByteArray NetEditor::text() const
{
    return m_Text->file().bytes();
}

bool NetEditor::changedOnDisk() const
{
    QFile file(m_Document->filePath());
    if (!file.exists())
        return false;
    return file.size() != m_Text->onDisk.size() || !file.open(QIODevice::ReadOnly)
        || file.readAll() != m_Text->onDisk;
}

bool NetEditor::save(const QString& path, QString* error)
{
    const QByteArray bytes = text();
    const QString problem = NetFileSaver::save(path, bytes);
    if (error)
        *error = problem;
    if (!problem.isEmpty())
        return false;
    m_Text->setPath(path);
    m_Text->onDisk = bytes;
    return true;
}
