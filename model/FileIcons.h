#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QString>
#include <chrono>
#include <memory>

class Image;

// The desktop's icons of files. Finding one out means to look at the file, and a list wants it at every drawing; where
// the file lies on another machine, that may take long. So an icon is kept for a while, and looked for again after it.
class FileIcons
{
public:
    explicit FileIcons(std::chrono::milliseconds keptFor = std::chrono::seconds(5)) : _keptFor(keptFor) {}

    // A new image each time; none for an empty path.
    std::shared_ptr<Image> iconForFile(const QString &path);

private:
    struct Kept
    {
        std::shared_ptr<Image> image;
        QDeadlineTimer end;
    };

    const Kept &keep(const QString &path);

    std::chrono::milliseconds _keptFor;
    QHash<QString, Kept> _icons; // by path
};
