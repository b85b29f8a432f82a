#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

class OrvNgView;
class QGraphicsScene;

/// Internal. While a scene tells its views which of its items have changed, our views among them take the
/// rectangle around the changes for what has to be repainted, although their update mode asks for
/// everything: nobody but the scene's own queued calls is answered that way, and the mode is as the host set
/// it again before anybody else runs.
///
/// Items are allowed to paint two viewport pixels beyond their bounds.
///
/// Called by  OrvNgView, each of which has one; of several for one scene the last acts for all.
/// Uses       the scene's views.
/// Tells      nobody.
class OrvNgPartialUpdates : public QObject
{
public:
    /// A null scene is one that nobody follows.
    void follow(QGraphicsScene* scene);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static QVector<QPointer<OrvNgView>> viewsThatPaintPartly(const QGraphicsScene& scene);

    QPointer<QGraphicsScene> m_Scene;
    quint64 m_RollChanges = 0; ///< OrvNgRollCall::changes() when the scene was last heard
};
