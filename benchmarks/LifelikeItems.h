#pragma once

#include "model/WayfoldBookmarkFolder.h"

// The items of a diligent user after years: links and notes in a folder for each site.
namespace LifelikeItems
{
constexpr int sites = 1000;
constexpr int itemsOfSite = 19;
constexpr int firstNoteOfSite = 3;

// 20,000 items, the folders included; the same at every run.
WayfoldBookmarkFolderPtr tree();
} // namespace LifelikeItems
