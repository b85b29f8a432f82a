#include "support/Scenario.h"

namespace {

using Frame = OrvNgBackdropNode;

/// A frame that counts how often it stands out.
class MarkedFrame : public Frame
{
public:
    using Frame::Frame;
    ~MarkedFrame() override { aboutToBeDestroyed(); }
    void hightlightBackdropForNodeInsert() override { mark(1); }
    void unHightlightBackdropForNodeInsert() override { mark(-1); }

    int m_Marks = 0;

private:
    void mark(int change)
    {
        m_Marks += change;
        m_Marks > 0 ? Frame::hightlightBackdropForNodeInsert()
                    : Frame::unHightlightBackdropForNodeInsert();
    }
};

} // namespace

void ScenarioStage::addFrameWords()
{
    word("frame", [this] {
        introduce(new MarkedFrame(nullptr));
        frame().resizeNode(size(2));
    });
    word("framelabel", [this] { frame().setLabel(text(1)); });
    word("frameinserting", [this] { frame().hightlightBackdropForNodeInsert(); });
    word("background", [this] { frame().setNodeBackgroundColour(color(1)); });
    word("setposition", [this] { frame().setPosition(pair(1)); });
    word("setrect", [this] { frame().setRect(rect(1)); });
    word("refreshchildren", [this] { frame().refreshChildrenList(isOn(1)); });
    word("wrap", [this] { frame().wrapAroundSelection(rect(1), isOn(3)); });
    word("wrapnodes", [this] {
        QList<OrvNgNode*> nodes{nullptr};
        for (const QString& name : textsFrom(1))
            nodes.append(nodeOf(name));
        frame().wrapAroundNodes({}, nodes);
    });
    // Questions
    word("children", [this] {
        return namesOf([this](OrvNgNode* node) { return frame().childrenList().contains(node); });
    });
    word("marked", [this] {
        return namesOf([](OrvNgNode* node) {
            auto* frame = dynamic_cast<MarkedFrame*>(node);
            return frame && frame->m_Marks == 1;
        });
    });
    word("zorder", [this] { return frame().zOrder(); });
    word("z", [this] { return node().zValue(); });
    word("above", [this] { return node().zValue() > node(1).zValue(); });
    word("adjusted", [this] { return frame().adjustedBackgroundColor(); });
}
