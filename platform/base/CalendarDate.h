#pragma once

#include <QDateTime>

// A point in time with its time zone; an invalid QDateTime stands for none.
using CalendarDate = QDateTime;
