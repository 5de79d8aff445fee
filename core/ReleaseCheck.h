#pragma once

namespace ReleaseCheck
{
// Asks the maker's server which release is the current one and tells the user, who can have the page with a newer one
// opened. Waits for the answer and for the user; a failure of any kind counts as up to date. Nothing happens while a
// check is going on already.
void checkForNewRelease();
} // namespace ReleaseCheck
