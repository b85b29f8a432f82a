#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

class QHBoxLayout;

/// The way from the document to the scope on show: one button for each level, the last one marked
/// as the present one.
///
/// Called by  EditorWindow.
/// Uses       nothing else.
/// Tells      the window, through scopeClicked.
class EditorBreadcrumbBar : public QWidget
{
    Q_OBJECT

public:
    struct Crumb
    {
        QString text;
        int scope = -1;
    };

    explicit EditorBreadcrumbBar(QWidget* parent = nullptr);

    void setTrail(const QVector<Crumb>& trail);

Q_SIGNALS:
    void scopeClicked(int scope);

private:
    void addCrumb(const Crumb& crumb, bool isLast);

    QHBoxLayout* m_Layout;
    QVector<QWidget*> m_Shown;
};
