#include "editor/EditorNodeLook.h"

#include "network/NetNode.h"

#include <QHash>

#include <OrvNodeGraph/OrvNgNode.h>

namespace {

QString categoryOf(const NetNode& node)
{
    switch (node.kind) {
    case NetNode::Kind::Input:
        return QStringLiteral("TeleportBroadcast");
    case NetNode::Kind::Output:
        return QStringLiteral("TeleportReceiver");
    case NetNode::Kind::Graph:
        return QStringLiteral("Environment");
    case NetNode::Kind::Node:
        break;
    }
    return node.definition ? EditorNodeLook::categoryOfGroup(node.nodeGroup)
                           : QStringLiteral("MultiChannelInvalid");
}

int shapeOf(NetNode::Kind kind)
{
    switch (kind) {
    case NetNode::Kind::Input:
    case NetNode::Kind::Output:
        return OrvNgNode::ShapeRoundedHexagon;
    case NetNode::Kind::Graph:
        return OrvNgNode::ShapeRectangle;
    case NetNode::Kind::Node:
        break;
    }
    return OrvNgNode::ShapeRoundedRect;
}

} // namespace

EditorNodeLook EditorNodeLook::of(const NetNode& node)
{
    return {categoryOf(node), shapeOf(node.kind)};
}

QString EditorNodeLook::categoryOfGroup(const QString& nodeGroup)
{
    static const QHash<QString, QString> s_Categories{
        {QStringLiteral("math"), QStringLiteral("Math")},
        {QStringLiteral("conditional"), QStringLiteral("Misc")},
        {QStringLiteral("organization"), QStringLiteral("Misc")},
        {QStringLiteral("procedural"), QStringLiteral("Procedural")},
        {QStringLiteral("procedural2d"), QStringLiteral("Procedural")},
        {QStringLiteral("procedural3d"), QStringLiteral("Procedural")},
        {QStringLiteral("texture2d"), QStringLiteral("Paint")},
        {QStringLiteral("texture3d"), QStringLiteral("Paint")},
        {QStringLiteral("geometric"), QStringLiteral("Geometry")},
        {QStringLiteral("application"), QStringLiteral("Geometry")},
        {QStringLiteral("channel"), QStringLiteral("Channel")},
        {QStringLiteral("adjustment"), QStringLiteral("Filter")},
        {QStringLiteral("colortransform"), QStringLiteral("Filter")},
        {QStringLiteral("convolution2d"), QStringLiteral("Filter")},
        {QStringLiteral("compositing"), QStringLiteral("Layer")},
        {QStringLiteral("translation"), QStringLiteral("Layer")},
        {QStringLiteral("light"), QStringLiteral("Lighting")},
        {QStringLiteral("pbr"), QStringLiteral("Surface")},
        {QStringLiteral("npr"), QStringLiteral("Surface")},
        {QStringLiteral("shader"), QStringLiteral("Surface")},
        {QStringLiteral("material"), QStringLiteral("Lighting")},
    };
    return s_Categories.value(nodeGroup, QStringLiteral("Basic"));
}
