#include "model/SmartFolderSources.h"

namespace
{
SmartFolderSources *currentSources = nullptr;
}

SmartFolderSources *SmartFolderSources::current()
{
    return currentSources;
}

void SmartFolderSources::setCurrent(SmartFolderSources *sources)
{
    currentSources = sources;
}
