// Owners for what GLib and GTK hand out.
#pragma once

#include <memory>

#include "platform/posix/dialog/gtk_headers.h"

namespace velandoc {

/// A reference of a GObject.
struct ObjectRelease {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class Object>
using GObjectPtr = std::unique_ptr<Object, ObjectRelease>;

/// Memory of GLib's.
struct GlibFree {
  void operator()(gpointer memory) const { g_free(memory); }
};
using GlibText = std::unique_ptr<char, GlibFree>;

}  // namespace velandoc
