// The box of a page's alert(), over the dialog. The script waits until it is closed.
#pragma once

#include "platform/posix/dialog/gtk_headers.h"

namespace velandoc {

/// GTK's thread only.
class AlertBox {
 public:
  /// Shows `alert`'s text as it stands, modal over `owner`, which may be null.
  AlertBox(GtkWindow* owner, WebKitScriptDialog* alert);
  AlertBox(const AlertBox&) = delete;
  AlertBox& operator=(const AlertBox&) = delete;
  /// Takes the box away and lets the script go on.
  ~AlertBox();

 private:
  void Close();

  WebKitScriptDialog* m_alert;  // null once closed
  GtkWidget* m_box;
};

}  // namespace velandoc
