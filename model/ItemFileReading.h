#pragma once

// How the reading of an item file went. Who is going to write over a file that is there but was not readable, or that
// the tree does not hold completely, keeps a copy of it first.
struct ItemFileReading
{
    // A dictionary was read from the file.
    bool readable = false;
    // Entries that were left out: of an unknown kind, without a title, or inside one of those.
    int skippedEntries = 0;
    // Everything that the file holds, down to its keys, would be written again.
    bool complete = false;
};
