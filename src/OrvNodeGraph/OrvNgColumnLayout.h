#pragma once

#include "OrvNodeGraph/OrvGraphicsLinearLayout.h"

/// Internal. A vertical layout that stands its items one below the other at their preferred
/// heights, each as wide as the column and the item allow. Hidden items take neither room nor
/// spacing.
///
/// It computes sizes and places itself. Qt's own arithmetic serves every style and stretch, which a
/// node does not use, and pays for it with a hidden QWidget and six arrays for each layout.
///
/// Called by  OrvNgExtendedNode and OrvNgPortList, which fill it and read its hints.
/// Uses       OrvGraphicsLinearLayout, for its list of items and the pause.
/// Tells      its parent layout item, through the base class.
class OrvNgColumnLayout : public OrvGraphicsLinearLayout
{
public:
    /// Without contents margins.
    explicit OrvNgColumnLayout(double spacing);

    void setGeometry(const QRectF& rect) override;

protected:
    /// The column is as wide as its widest item wants to be, yet within the limit of those that
    /// have one. constraint is ignored: no height here depends on a width.
    QSizeF sizeHint(Qt::SizeHint which, const QSizeF& constraint = QSizeF()) const override;

private:
    template <typename Visitor> void forEachShown(Visitor visit) const;

    const double m_Spacing;
};
