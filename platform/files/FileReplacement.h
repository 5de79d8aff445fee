#pragma once

#include <QByteArray>
#include <QString>

// Puts the contents in place of the file's, or makes the file, for its owner alone. They are written to a temporary
// file beside it, `<name>.saving-<6 letters>`, and flushed, and so is the folder in the end. Permissions and links are
// kept: what a link leads to is replaced. Null when that worked, else the reason; the file is what it was then, unless
// it was only the flushing of the folder that failed.
QString replaceFile(const QString &path, const QByteArray &contents);
// Removes the temporary files of that file whose processes were killed. Those of the living, in whatever program or on
// whatever machine, are locked and stay.
void removeAbandonedSaves(const QString &path);
