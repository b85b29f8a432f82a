#pragma once

#include "OrvNodeGraph/OrvNodeGraphExport.h"

#include <QGraphicsLinearLayout>

/// A linear layout whose invalidation can be held back while many of its items change.
///
/// Between setInvalidationPaused(true) and setInvalidationPaused(false) any number of invalidate() calls
/// cost nothing; resuming performs at most one. The pause is a flag, not a counter: pausing twice and
/// resuming once resumes.
///
/// Called by  the host, for widgets of its own in the scene; nodes place their ports themselves.
/// Uses       QGraphicsLinearLayout.
/// Tells      its parent layout item, through the base class.
class ORVNODEGRAPH_EXPORT OrvGraphicsLinearLayout : public QGraphicsLinearLayout
{
public:
    explicit OrvGraphicsLinearLayout(QGraphicsLayoutItem* parent = nullptr);
    explicit OrvGraphicsLinearLayout(
        Qt::Orientation orientation, QGraphicsLayoutItem* parent = nullptr);

    /// Drops the cached geometry now, or when the pause ends.
    void invalidate() override;

    /// Begins or ends a pause. Ending one performs the invalidation that was asked for meanwhile, once;
    /// nothing happens when none was.
    void setInvalidationPaused(bool paused);
    bool invalidationPaused() const { return m_Paused; }

private:
    bool m_Pending = false;
    bool m_Paused = false;
};
