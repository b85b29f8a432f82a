#include "OrvCore/OrvPixmap.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

class tst_OrvPixmap : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void denseScreen_takesTheDensePictureWhereThereIsOne()
    {
        const QTemporaryDir directory;
        const auto save = [&directory](const char* name, int size) {
            QImage image(size, size, QImage::Format_ARGB32);
            image.fill(Qt::red);
            return image.save(directory.filePath(QLatin1String(name)));
        };
        QVERIFY(save("Both.png", 8) && save("Both@2x.png", 16) && save("Single.png", 8));

        const struct
        {
            const char* m_File;
            int m_Pixels;
            double m_Ratio;
        } rows[] = {{"Both.png", 16, 2.0}, {"Single.png", 8, 1.0}, {"Missing.png", 0, 1.0}};
        for (const auto& row : rows) {
            const QString path = directory.filePath(QLatin1String(row.m_File));
            const QPixmap pixmap = OrvPixmap::createQPixmapFromPath(path);
            QCOMPARE(pixmap.width(), row.m_Pixels);
            QCOMPARE(pixmap.devicePixelRatio(), row.m_Ratio);
        }
    }
};

// The density is fixed when the application starts.
int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "2");
    const QGuiApplication application(argc, argv);
    tst_OrvPixmap test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_OrvPixmap.moc"
