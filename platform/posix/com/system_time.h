// The three ways of telling a time: a DATE, the calendar's SYSTEMTIME, the FILETIME that counts
// 100 nanoseconds from the beginning of 1601. None of them knows a zone.
//
// The conversions give TRUE, or FALSE with the result untouched. They keep no last error.
#pragma once

#include "platform/posix/com/types.h"

/// Rounded to seconds, a half up. FALSE for a date before the year 100 or after 9999.
STDAPI_(INT) COM_EXPORT VariantTimeToSystemTime(DOUBLE date, SYSTEMTIME* time);
/// Years below 100 are widened like those of texts; days of 0 to 31 that the month lacks count into
/// its neighbour. Weekday and milliseconds are not looked at.
STDAPI_(INT) COM_EXPORT SystemTimeToVariantTime(SYSTEMTIME* time, DOUBLE* date);

/// For the years 1601 to 30827; the weekday is not looked at.
STDAPI_(BOOL) COM_EXPORT SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);
/// What is less than a millisecond is cut off. FALSE for counts that have the highest bit.
STDAPI_(BOOL) COM_EXPORT FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time);
