#pragma once

// How the reading of an item file went. Who is going to write over a file that is there but was not readable, or not
// completely, keeps a copy of it first.
struct ItemFileReading
{
    // A dictionary was read from the file.
    bool readable = false;
    // Everything that the file holds would be written again, whether or not this version knows what it is.
    bool complete = false;
};
