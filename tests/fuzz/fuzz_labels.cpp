// Any text wherever a node shows one, painted once: bounds stay finite, and a text comes back as given.

#include "OrvNodeGraph/OrvNgBackdropNode.h"
#include "OrvNodeGraph/OrvNgEdge.h"
#include "OrvNodeGraph/OrvNgExtendedNode.h"
#include "OrvNodeGraph/OrvNgTextNode.h"
#include "OrvNodeGraph/OrvNgUINode.h"
#include "fuzz/Fuzz.h"

#include <OrvCore/OrvDebug.h>

#include <QApplication>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>

#include <cmath>

namespace {

struct Stage
{
    QGraphicsScene m_Scene;
    OrvNgUINode* m_Note = new OrvNgUINode(nullptr);
    OrvNgTextNode* m_Line = new OrvNgTextNode(nullptr);
    OrvNgBackdropNode* m_Frame = new OrvNgBackdropNode(nullptr);
    OrvNgExtendedNode* m_Node = new OrvNgExtendedNode(nullptr);
    QImage m_Image{320, 200, QImage::Format_ARGB32_Premultiplied};

    Stage()
    {
        for (OrvNgNode* node : all())
            m_Scene.addItem(node);
        m_Node->setPortListMode(OrvNgExtendedNode::PORT_LIST_EXPANDED);
    }
    QVector<OrvNgNode*> all() const { return {m_Note, m_Line, m_Frame, m_Node}; }
    void paint()
    {
        QPainter painter(&m_Image);
        m_Scene.render(&painter, m_Image.rect(), QRectF(-10, -10, 320, 200));
    }
};

bool isFinite(const QRectF& rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width())
        && std::isfinite(rect.height());
}

} // namespace

int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QApplication s_Application(*count, *arguments); // frees its fonts at the end
    OrvSetDebugHandler([](const QString&, int, const QString&, bool, bool) {});
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Stage& s_Stage = *new Stage; // statics of Qt go before it could
    const QString text = Fuzz::text(data, size);
    s_Stage.m_Frame->setLabel(text);
    for (OrvNgNode* node : s_Stage.all())
        node->setText(text);
    const bool isNew
        = !s_Stage.m_Node->input(text) && !s_Stage.m_Node->outputPoints().contains(text);
    if (isNew) {
        s_Stage.m_Node->createInput(text, false, {});
        s_Stage.m_Node->createOutputPoint(text, true);
    }
    s_Stage.paint();
    for (OrvNgNode* node : s_Stage.all())
        ORV_REQUIRE(isFinite(node->sceneBoundingRect()));
    for (OrvNgNode* node : {static_cast<OrvNgNode*>(s_Stage.m_Line),
             static_cast<OrvNgNode*>(s_Stage.m_Frame), static_cast<OrvNgNode*>(s_Stage.m_Node)})
        ORV_REQUIRE(node->text() == text);
    if (isNew) {
        s_Stage.m_Node->removeInput(text);
        s_Stage.m_Node->removeOutputPoint(text);
    }
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
