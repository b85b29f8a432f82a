#include "editor/EditorBreadcrumbBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

EditorBreadcrumbBar::EditorBreadcrumbBar(QWidget* parent)
    : QWidget(parent)
    , m_Layout(new QHBoxLayout(this))
{
    setObjectName(QStringLiteral("breadcrumbs"));
    setAttribute(Qt::WA_StyledBackground);
    m_Layout->setContentsMargins(6, 3, 6, 3);
    m_Layout->setSpacing(2);
    m_Layout->addStretch(1);
}

void EditorBreadcrumbBar::setTrail(const QVector<Crumb>& trail)
{
    for (QWidget* old : qAsConst(m_Shown)) {
        m_Layout->removeWidget(old);
        old->hide();
        old->deleteLater(); // it may be the button that was clicked
    }
    m_Shown.clear();
    for (int i = 0; i < trail.size(); ++i)
        addCrumb(trail.at(i), i + 1 == trail.size());
}

void EditorBreadcrumbBar::addCrumb(const Crumb& crumb, bool isLast)
{
    const auto append = [this](QWidget* widget) {
        m_Layout->insertWidget(m_Layout->count() - 1, widget); // before the stretch
        m_Shown.append(widget);
    };
    if (!m_Shown.isEmpty())
        append(new QLabel(QString(QChar(0x203A)), this));
    auto* button = new QToolButton(this);
    QString text = crumb.text;
    button->setText(text.replace(QLatin1Char('&'), QLatin1String("&&")));
    button->setFocusPolicy(Qt::NoFocus);
    button->setEnabled(!isLast);
    QFont present = font();
    present.setBold(isLast); // here and not in the style sheet, which measures with the plain font
    button->setFont(present);
    connect(button, &QToolButton::clicked, this,
        [this, scope = crumb.scope] { Q_EMIT scopeClicked(scope); });
    append(button);
}
