#pragma once

#include <QString>

// Takes pictures of the whole display into a folder, numbered in the order in which they are taken:
//
//     Camera camera("/tmp/pictures");
//     camera.shoot("start"); // 01-start.png
class Camera
{
public:
    explicit Camera(const QString &directory, int taken = 0);

    // Waits until the display has come to rest. False when the picture could not be taken.
    bool shoot(const QString &name);
    int taken() const { return _taken; }

private:
    QString _directory;
    int _taken;
};
