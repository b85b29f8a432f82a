#pragma once

#include "network/NetEditor.h"

#include <QStringList>

#include <climits>
#include <functional>
#include <limits>
#include <random>

/// Draws changes of a document from a sequence of numbers. Positions in lists, coordinates and texts are
/// bad ones now and then: the editor has to refuse them.
class NetDice
{
public:
    enum Kind {
        Move,
        Connect,
        Disconnect,
        Remove,
        Dot,
        AddBackdrop,
        MoveBackdrop,
        Title,
        Doc,
        Color,
        RemoveBackdrop,
        KindCount
    };

    NetDice(NetEditor* editor, unsigned seed)
        : m_Editor(editor)
        , m_Numbers(seed)
    {
    }

    /// Told what is about to be tried.
    std::function<void(const QString&)> trace = [](const QString&) {};

    int below(int limit)
    {
        return limit > 0 ? static_cast<int>(m_Numbers() % static_cast<unsigned>(limit)) : -1;
    }
    bool oneIn(int many) { return below(many) == 0; }
    int index(int count)
    {
        static const QVector<int> s_Bad{-1, INT_MIN, INT_MAX};
        return oneIn(100) ? (s_Bad + QVector<int>{count}).at(below(4)) : below(count);
    }
    const QString& text()
    {
        static const QStringList s_Texts{QString(), QStringLiteral("a \"<&\n'b"),
            QString::fromUtf8("R\xC3\xA9sum\xC3\xA9 2"), QStringLiteral("#12aBfF"),
            QStringLiteral(" "), QStringLiteral("1, .5 0e0"), QString(3000, QLatin1Char('x')),
            QString(QChar(0xD800)), QStringLiteral("]]>%1\t&amp;"),
            QStringLiteral("\u202E\u0301\u0001")};
        return s_Texts.at(below(s_Texts.size()));
    }
    qreal number(int limit, qreal from = 0)
    {
        static const QVector<qreal> s_Odd{std::numeric_limits<qreal>::quiet_NaN(),
            std::numeric_limits<qreal>::infinity(), -0.0, 1e-9, -1e5, 1e5};
        return oneIn(200) ? s_Odd.at(below(s_Odd.size())) : from + below(limit) / 70.0;
    }
    QPointF point()
    {
        const qreal x = number(4000, -20);
        return {x, number(2600, -10)};
    }
    QRectF rect()
    {
        const QPointF corner = point();
        const qreal width = number(900);
        return {corner, QSizeF(width, number(600))};
    }

    /// Null when the document allows nothing of the kind in a few hundred draws.
    NetEditor::ChangePtr draw(Kind kind, int tries = 400)
    {
        NetEditor::ChangePtr change;
        while (!change && tries-- > 0)
            change = tryDraw(kind);
        return change;
    }

private:
    NetEditor::ChangePtr tryDraw(Kind kind)
    {
        const auto& scopes = m_Editor->document().scopes();
        const int scope = below(scopes.size());
        const NetScope& network = scopes.at(scope);
        const int node = index(network.nodes.size());
        const int other = index(network.nodes.size());
        const int port = index(network.nodes.value(node).inputs.size());
        const int output = index(network.nodes.value(other).outputs.size());
        const int backdrop = index(network.backdrops.size());
        trace(QString::asprintf("kind %d in %d: node %d.%d, %d.%d, backdrop %d", kind, scope, node,
            port, other, output, backdrop));
        const NetPortRef dest{node, port};
        switch (kind) {
        case Move:
            return m_Editor->moveNodes(scope, {{node, point()}, {other, point()}});
        case Connect:
            return m_Editor->connectInput(scope, {other, output}, dest);
        case Disconnect:
            return m_Editor->disconnectInput(scope, dest);
        case Remove:
            return m_Editor->removeNodes(
                scope, oneIn(2) ? QVector<int>{node} : QVector<int>{node, other});
        case Dot:
            return m_Editor->insertDot(scope, dest, point());
        case AddBackdrop: {
            NetBackdrop fresh;
            fresh.rect = rect();
            fresh.title = text();
            fresh.doc = text();
            fresh.color = text();
            fresh.isNote = oneIn(2);
            return m_Editor->addBackdrop(scope, fresh);
        }
        case MoveBackdrop:
            return m_Editor->moveBackdrops(scope, {{backdrop, rect()}});
        case Title:
            return m_Editor->setBackdropTitle(scope, backdrop, text());
        case Doc:
            return m_Editor->setBackdropDoc(scope, backdrop, text());
        case Color:
            return m_Editor->setBackdropColor(scope, backdrop, text());
        case RemoveBackdrop:
            return m_Editor->removeBackdrops(scope, {backdrop, backdrop});
        case KindCount:
            break;
        }
        return nullptr;
    }

    NetEditor* m_Editor;
    std::mt19937 m_Numbers;
};
