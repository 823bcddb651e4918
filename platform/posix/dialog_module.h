// The dialog module, libvelandoc-dialog.so: what only a machine with a display needs. Neither the
// library nor a program is linked with it, or with what it is made of; the library loads it when
// the first dialog is asked for and keeps it to the process's end.
//
// It is looked for beside the library, then in ../lib of the library's folder (where a program of a
// build tree that holds the library's code finds it), then where the dynamic loader looks.
#pragma once

#include "platform/dialog_host.h"

namespace velandoc {

inline constexpr char kDialogModuleName[] = "libvelandoc-dialog.so";

/// Counts up with every change of the port's classes or of the templates: module and library come
/// from one build.
inline constexpr unsigned kDialogModuleVersion = 1;

/// The module's one export, under this name and with C linkage. The module's port, which lives as
/// long as the process; null for another version than its own. It does not touch the display: what
/// is missing there is said by DialogBoxParamW.
using DialogModuleFunction = DialogHost* (*)(unsigned version);
inline constexpr char kDialogModuleFunction[] = "VelandocDialogHost";

}  // namespace velandoc
