#pragma once

// Run at start-up, before the store starts: makes the drawer's widgets known to the interface files, and gives the
// rooms below what they ask of this one: the items' dialogs, the note window, the preferences, and the maker of a
// window's drawer.
void installDrawerRoom();
