#pragma once

#include <QByteArray>
#include <memory>

class Image;

// Pictures of people, as the lists draw them: square, and no larger than a row may be.
namespace ContactPicture
{
// From the file of a picture (PNG, JPEG, ...), of which the middle is shown; none when it is none.
std::shared_ptr<Image> fromData(const QByteArray &file);
QByteArray toPng(const Image &image);
} // namespace ContactPicture
