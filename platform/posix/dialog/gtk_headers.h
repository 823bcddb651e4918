// GTK's and WebKit's headers, in an order in which both GLib and COM have their TRUE and FALSE:
// GLib's are macros, which COM's header must not meet; what is left behind are COM's constants of
// the same values.
#pragma once

// clang-format off
#include "platform/com.h"
#include <gtk/gtk.h>
#include <gdk/gdkkeysyms.h>
#include <jsc/jsc.h>
#include <webkit2/webkit2.h>
// clang-format on

#undef TRUE
#undef FALSE
