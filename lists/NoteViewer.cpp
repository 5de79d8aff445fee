#include "lists/NoteViewer.h"

#include <utility>

namespace
{
NoteViewer::Opener &installedOpener()
{
    static NoteViewer::Opener opener;
    return opener;
}
} // namespace

void NoteViewer::setOpener(Opener opener)
{
    installedOpener() = std::move(opener);
}

void NoteViewer::showNote(const WayfoldBookmarkNotePtr &note)
{
    if (installedOpener())
        installedOpener()(note);
}
