// Shared libraries as a program loads them by path, and the place of the component's own.
#pragma once

#include <string>

namespace velandoc {

/// Full path in UTF-8 of the component's library that belongs to this program: velandoc.dll beside
/// the program on Windows; on Linux libvelandoc.so where CoGetClassObject looks for it and, if
/// there is none, in ../lib of the program's folder, where one could be put.
std::string ComponentLibraryPath();

/// Null on failure, with the system's words for it in `problem`. There is no unloading: a library
/// with live objects must stay, and a program that loads one keeps it to its end.
void* LoadSharedLibrary(const std::string& path, std::string& problem);

/// The address of an exported function, to be cast to its type; null if the library has no such
/// export.
using ExportedFunction = void (*)();
ExportedFunction FindExport(void* library, const char* name);

}  // namespace velandoc
