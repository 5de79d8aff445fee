#pragma once

#include "model/WayfoldBookmarkNote.h"

#include <functional>

// How a list shows a note for reading; filled in at start-up by the room that has the window.
namespace NoteViewer
{
using Opener = std::function<void(const WayfoldBookmarkNotePtr &)>;

// An empty one takes the viewer away: notes are not opened then.
void setOpener(Opener opener);
void showNote(const WayfoldBookmarkNotePtr &note);
} // namespace NoteViewer
