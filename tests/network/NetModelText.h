#pragma once

#include "network/NetDocument.h"
#include "support/Literals.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <algorithm>

/// Everything that a document's model says, as sorted lines, so that an edited model can be compared with
/// one that was read from the edited text. Left out is what may differ: positions in lists, line numbers,
/// keys, and ports and inputs that were known only from a use that an edit took away.
class NetModelText
{
public:
    static QStringList of(const NetDocument& document)
    {
        QStringList lines;
        for (const NetScope& scope : document.scopes()) {
            if (isThere(document, scope))
                NetModelText(scope, &lines).addAll();
        }
        lines.sort();
        return lines;
    }
    /// The first line that one of two models has and the other has not, of each; empty for equal ones.
    static QString difference(const QStringList& model, const QStringList& wanted)
    {
        const auto extra = [](const QStringList& here, const QStringList& there) {
            const QSet<QString> known(there.cbegin(), there.cend());
            const auto found = std::find_if(here.cbegin(), here.cend(),
                [&known](const QString& line) { return !known.contains(line); });
            return found == here.cend() ? u"(repeated lines)"_s : found->left(2000);
        };
        return model == wanted ? QString()
                               : u"\nin the model  %1\nin the text   %2"_s.arg(
                                   extra(model, wanted), extra(wanted, model));
    }

private:
    NetModelText(const NetScope& scope, QStringList* lines)
        : m_Scope(scope)
        , m_Lines(lines)
    {
        QHash<QString, int> occurrences;
        for (const NetNode& node : scope.nodes) {
            const QString label = QString::number(static_cast<int>(node.kind)) + u' ' + node.name;
            m_Labels.append(
                node.removed ? u"removed"_s : label + u'#' + QString::number(++occurrences[label]));
        }
        for (const NetConnection& wire : scope.connections)
            m_Used.insert({wire.sourceNode, wire.sourcePort});
    }

    static bool isThere(const NetDocument& document, const NetScope& scope)
    {
        if (scope.parent < 0)
            return true;
        const NetScope& around = document.scopes().at(scope.parent);
        return !around.nodes.at(around.boxOf(scope.index)).removed && isThere(document, around);
    }
    static QString texts(const NetAttributes& attributes)
    {
        QString text;
        for (const auto& pair : attributes.pairs())
            text += pair.first + u'=' + pair.second + u' ';
        return text;
    }
    static QString texts(const NetPort& port)
    {
        return u"[%1 %2 %3 %4 %5 %6] "_s
            .arg(port.name, port.type, port.value, port.defaultValue, texts(port.attributes))
            .arg(int(port.listed) + 2 * int(port.defined));
    }

    bool isKnownByUse(int node, int output) const
    {
        const NetNode& box = m_Scope.nodes.at(node);
        return box.kind == NetNode::Kind::Output
            || (box.type == u"multioutput" && !box.definition && !box.outputs.at(output).listed)
            || (box.implied && !m_Scope.definition);
    }
    void addNode(int index)
    {
        const NetNode& node = m_Scope.nodes.at(index);
        QString inputs;
        for (const NetPort& port : node.inputs) {
            if (node.kind != NetNode::Kind::Input || port.isConnected())
                inputs += texts(port);
        }
        QString outputs;
        QStringList used; // in no order of their own
        for (int i = 0; i < node.outputs.size(); ++i) {
            if (!isKnownByUse(index, i))
                outputs += texts(node.outputs.at(i));
            else if (m_Used.contains({index, i}))
                used += texts(node.outputs.at(i));
        }
        used.sort();
        outputs += used.join(QString());
        if (node.implied && outputs.isEmpty())
            return;
        const QString place = node.hasPosition && !node.implied
            ? u"%1 %2"_s.arg(node.position.x(), 0, 'g', 17).arg(node.position.y(), 0, 'g', 17)
            : QString();
        add({m_Labels.at(index), node.category, node.type, node.nodeGroup,
            node.definition ? node.definition->name : QString(), place, texts(node.attributes),
            inputs, outputs});
    }
    void addBackdrop(const NetBackdrop& backdrop)
    {
        QString place;
        const QRectF& rect = backdrop.rect;
        for (const qreal number : {rect.x(), rect.y(), rect.width(), rect.height()})
            place += QString::number(number, 'g', 17) + u' ';
        add({backdrop.isNote ? u"note"_s : u"backdrop"_s, backdrop.name, backdrop.title,
            backdrop.doc, backdrop.color, place, texts(backdrop.attributes)});
    }
    void addAll()
    {
        for (int i = 0; i < m_Scope.nodes.size(); ++i) {
            if (!m_Scope.nodes.at(i).removed)
                addNode(i);
        }
        for (const NetConnection& wire : m_Scope.connections) {
            add({m_Labels.at(wire.sourceNode),
                m_Scope.nodes.at(wire.sourceNode).outputs.at(wire.sourcePort).name, u">"_s,
                m_Labels.at(wire.destNode),
                m_Scope.nodes.at(wire.destNode).inputs.at(wire.destPort).name,
                QString::number(static_cast<int>(wire.binding))});
        }
        for (const NetOpenEnd& end : m_Scope.openEnds) {
            add({u"open"_s, m_Labels.at(end.destNode),
                m_Scope.nodes.at(end.destNode).inputs.at(end.destPort).name, end.wantedName,
                end.wantedOutput, QString::number(static_cast<int>(end.binding)),
                QString::number(static_cast<int>(end.reason))});
        }
        for (const NetBackdrop& backdrop : m_Scope.backdrops) {
            if (!backdrop.removed)
                addBackdrop(backdrop);
        }
        add({u"scope"_s, texts(m_Scope.attributes)});
    }
    void add(const QStringList& parts)
    {
        m_Lines->append(m_Scope.path + u" | "_s + parts.join(u" | "_s));
    }

    const NetScope& m_Scope;
    QStringList* m_Lines;
    QStringList m_Labels;
    QSet<QPair<int, int>> m_Used; // outputs
};
