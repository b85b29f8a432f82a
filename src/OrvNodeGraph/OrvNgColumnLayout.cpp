#include "OrvNodeGraph/OrvNgColumnLayout.h"

#include <QGraphicsItem>
#include <QMarginsF>
#include <QWidget>

namespace {

bool isShown(const QGraphicsLayoutItem& entry)
{
    const QGraphicsItem* item = entry.graphicsItem();
    return !item || item->isVisibleTo(item->parentItem());
}

QMarginsF contentsMargins(const QGraphicsLayout& layout)
{
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    layout.getContentsMargins(&left, &top, &right, &bottom);
    return QMarginsF(left, top, right, bottom);
}

} // namespace

OrvNgColumnLayout::OrvNgColumnLayout(double spacing)
    : OrvGraphicsLinearLayout(Qt::Vertical)
    , m_Spacing(spacing)
{
    setContentsMargins(0.0, 0.0, 0.0, 0.0);
    setSpacing(spacing);
}

template <typename Visitor> void OrvNgColumnLayout::forEachShown(Visitor visit) const
{
    for (int i = 0; i < count(); ++i) {
        QGraphicsLayoutItem* entry = itemAt(i);
        if (isShown(*entry))
            visit(*entry);
    }
}

QSizeF OrvNgColumnLayout::sizeHint(Qt::SizeHint which, const QSizeF&) const
{
    double minimumWidth = 0.0;
    double preferredWidth = 0.0;
    double maximumWidth = QWIDGETSIZE_MAX;
    double height = 0.0;
    double gap = 0.0;
    forEachShown([&](const QGraphicsLayoutItem& entry) {
        minimumWidth = qMax(minimumWidth, entry.minimumWidth());
        preferredWidth = qMax(preferredWidth, entry.preferredWidth());
        maximumWidth = qMin(maximumWidth, entry.maximumWidth());
        height += gap + entry.preferredHeight();
        gap = m_Spacing;
    });
    maximumWidth = qMax(minimumWidth, maximumWidth);
    double width = qBound(minimumWidth, preferredWidth, maximumWidth);
    if (which == Qt::MinimumSize || which == Qt::MinimumDescent)
        width = minimumWidth;
    else if (which == Qt::MaximumSize)
        width = maximumWidth;

    const QMarginsF margins = contentsMargins(*this);
    return QSizeF(
        width + margins.left() + margins.right(), height + margins.top() + margins.bottom());
}

void OrvNgColumnLayout::setGeometry(const QRectF& rect)
{
    // Deliberate: the grid arithmetic of the direct base is what this class replaces.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QGraphicsLayout::setGeometry(rect); // clazy:exclude=skipped-base-method
    const QRectF room = geometry().marginsRemoved(contentsMargins(*this));
    double top = room.top();
    forEachShown([&](QGraphicsLayoutItem& entry) {
        const QSizeF size(qMin(room.width(), entry.maximumWidth()), entry.preferredHeight());
        entry.setGeometry(QRectF(QPointF(room.left(), top), size));
        top += size.height() + m_Spacing;
    });
}
