// Addresses for names that the system does not know, or knows wrongly.
#pragma once

namespace velandoc {

/// From now on the process's connections go where `list` says: "NAME=ADDRESS,NAME=ADDRESS", each
/// address with ":PORT" behind it where the port differs too, an IPv6 address in brackets. What is
/// asked for stays the name, in requests and certificates. For use before any other thread runs.
/// False where names are the system's business alone: on Windows.
bool OverrideNames(const char* list);

}  // namespace velandoc
