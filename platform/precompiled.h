// The headers that nearly every source of the window-less half pulls in.
#pragma once
#include <QtCore>
#include <functional>
#include <memory>
#include <optional>
