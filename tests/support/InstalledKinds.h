#pragma once

#include "model/ItemCodec.h"

// For programs that have no plug-in to start: the kinds of items are there before anything else is.
inline const bool areKindsInstalled = (ItemCodec::install(), true);
