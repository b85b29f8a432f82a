#pragma once

#include "OrvNodeGraph/OrvNgColumnLayout.h"

/// Internal. The main layout of an extended node: header, output ports, input ports.
///
/// Its node lays it out at every change, so that ports stand where edges look for them; Qt's layout
/// requests through the event queue would only do the same work again. Since nothing ever marks the
/// layout as activated, Qt does not even post them, and the queue stays short however many nodes
/// change.
///
/// Called by  OrvNgExtendedNode; its main widget, with events.
/// Uses       OrvNgColumnLayout.
/// Tells      nobody.
class OrvNgFaceLayout : public OrvNgColumnLayout
{
public:
    OrvNgFaceLayout();

    /// Places everything anew in the room that the main widget has.
    void layOut();
    void widgetEvent(QEvent* event) override;
};
