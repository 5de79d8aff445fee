#include "tests/e2e/support/Camera.h"

#include "tests/e2e/support/Tool.h"

#include <QFile>
#include <QImage>

Camera::Camera(const QString &directory, int taken) : _directory(directory), _taken(taken) {}

bool Camera::shoot(const QString &name)
{
    QImage before;
    for (int tries = 0; tries < 30; ++tries) {
        const auto png = Tool::run(QStringLiteral("import"), {QStringLiteral("-silent"), QStringLiteral("-window"),
                                                              QStringLiteral("root"), QStringLiteral("png:-")});
        const QImage picture = png ? QImage::fromData(*png, "PNG") : QImage();
        if (picture.isNull())
            return false;
        if (picture == before) {
            const QString number = QStringLiteral("%1").arg(++_taken, 2, 10, QLatin1Char('0'));
            return picture.save(_directory + QLatin1Char('/') + number + QLatin1Char('-') + name +
                                QLatin1String(".png"));
        }
        before = picture;
    }
    return false;
}
