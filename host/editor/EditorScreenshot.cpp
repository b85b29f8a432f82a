#include "editor/EditorScreenshot.h"

#include "editor/EditorView.h"
#include "editor/EditorWindow.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QImage>
#include <QImageWriter>
#include <QTimer>

namespace {

// Longer than the view takes to notice that nodes have come.
constexpr int kSettleTime = 120; // milliseconds

void settle()
{
    QEventLoop loop;
    QTimer::singleShot(kSettleTime, &loop, &QEventLoop::quit);
    loop.exec();
}

QImage picture(EditorWindow* window, const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    window->render(&image);
    return image;
}

} // namespace

QString EditorScreenshot::save(
    EditorWindow* window, const QString& path, const QSize& size, int zoomPercent)
{
    window->setAttribute(Qt::WA_DontShowOnScreen);
    window->setMinimumSize(1, 1); // the picture has the asked size even if bars do not fit
    window->resize(size);
    window->show();
    settle();
    if (zoomPercent > 0 && window->scene())
        window->view()->lookAt(
            EditorScene::middleOf(window->scene()->nodes()), zoomPercent / 100.0);
    else
        window->frameAll();
    // Items make some of their parts when they are first painted.
    picture(window, size);
    settle();

    QImageWriter writer(path, "png");
    if (writer.write(picture(window, size)))
        return {};
    return QCoreApplication::translate("EditorScreenshot", "%1: %2")
        .arg(path, writer.errorString());
}
