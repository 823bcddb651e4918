#include "platform/posix/dialog/alert_box.h"

namespace velandoc {

AlertBox::AlertBox(GtkWindow* owner, WebKitScriptDialog* alert)
    : m_alert(webkit_script_dialog_ref(alert)),
      m_box(gtk_message_dialog_new(
          owner, static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
          GTK_MESSAGE_WARNING, GTK_BUTTONS_OK, "%s", webkit_script_dialog_get_message(alert))) {
  // A reference of our own: the owner may be destroyed first, and the box with it.
  g_object_ref(m_box);
  if (owner != nullptr) gtk_window_set_title(GTK_WINDOW(m_box), gtk_window_get_title(owner));
  const auto close = +[](GtkDialog*, int, gpointer self) { static_cast<AlertBox*>(self)->Close(); };
  g_signal_connect(m_box, "response", G_CALLBACK(close), this);
  gtk_widget_show_all(m_box);
}

AlertBox::~AlertBox() {
  Close();
  g_signal_handlers_disconnect_by_data(m_box, this);
  gtk_widget_destroy(m_box);
  g_object_unref(m_box);
}

void AlertBox::Close() {
  if (m_alert == nullptr) return;
  gtk_widget_hide(m_box);
  webkit_script_dialog_close(m_alert);
  webkit_script_dialog_unref(m_alert);
  m_alert = nullptr;
}

}  // namespace velandoc
