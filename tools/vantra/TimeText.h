#pragma once

#include <VantraCore/PropertyNode.h>

#include <VantraCore/Time.h>

#include <string>

namespace vantra {

// "2026-11-21T14:03:07.25Z", the whole seconds in UTC and only the fraction's needed digits; a year
// outside 0000 to 9999 signed ("-0001-12-31T23:00:00Z").
std::string timestampText(Tarvex::VantraCore::Timestamp value);

// An ISO 8601 date and time, "2026-11-21T14:03:07.25Z" or with a space for the T, and "+02:00" or
// none for the zone (none is UTC). False when `text` is no such time, or one outside the years 0000 to
// 9999 in UTC.
bool parseTimestamp(std::string const &text, Tarvex::VantraCore::Timestamp &value);

// `tree` with every duration and timestamp value replaced by strings of the same shape: "1.5 s",
// "2026-11-21T14:03:07.25Z". The console formatter draws no time values; people read these.
Tarvex::VantraCore::PropertyNode readableTimes(Tarvex::VantraCore::PropertyNode tree);

}  // namespace vantra
