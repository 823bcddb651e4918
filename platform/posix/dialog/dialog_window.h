// One dialog on the screen: the window, the template's buttons, the page.
//
// GTK lays nothing out here. Every control lies where it was put, in pixels of the client area, and
// whoever is told of a new size moves it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dialog_host.h"
#include "platform/owners.h"
#include "platform/posix/dialog/confined_page.h"
#include "platform/posix/dialog/gtk_headers.h"
#include "platform/posix/dialog_template.h"

namespace velandoc {

/// A control, and what a handle of the port points to. The client area of the dialog is one, too.
struct DialogControl {
  GtkWidget* widget;
  RECT place;
  int id;
};

/// GTK's thread only.
class DialogWindow final : private PageEvents {
 public:
  DialogWindow(const DialogTemplate& dialog, DialogEvents& events);
  DialogWindow(const DialogWindow&) = delete;
  DialogWindow& operator=(const DialogWindow&) = delete;
  ~DialogWindow();

  /// Tells OnDialogCreated, shows the window, hands on what happens until End, tells
  /// OnDialogDestroyed. What End was given.
  INT_PTR Run();
  void End(INT_PTR result);

  /// Null for a handle that is none of this dialog's.
  DialogControl* Find(HWND handle);
  DialogControl* FindById(int id);
  bool IsClientArea(const DialogControl& control) const { return &control == m_client.get(); }
  /// Sizes below nothing count as nothing.
  void Place(DialogControl& control, const RECT& place);

  /// Null the second time.
  DialogControl* CreatePage(const RECT& place, std::span<const ElementEvent> wanted,
                            BrowserEvents& events);
  bool LoadPage(const std::string& path);

 private:
  static constexpr int kNoCommand = 0;

  void AddButton(const DialogButton& button);
  void SetOwner();
  bool HasPageFocus() const;
  /// Takes a command from GTK, to be told of from the loop: while a script call is under way
  /// nothing is, and only Cancel is kept, since it ends the page that does not answer.
  void Take(int id);
  void TellCommand();
  void TellSize();

  void OnPageLoaded() noexcept override;
  void OnPageEnter() noexcept override;
  void OnPageLeft(bool forward) noexcept override;
  void OnPageClick(std::string_view id) noexcept override;
  void OnPageGone() noexcept override;

  static gboolean OnPosition(GtkOverlay*, GtkWidget* child, GdkRectangle* place, gpointer window);
  static gboolean OnKey(GtkWidget*, GdkEventKey* event, gpointer window);
  static gboolean OnDelete(GtkWidget*, GdkEvent*, gpointer window);
  static void OnClicked(GtkButton* button, gpointer window);

  DialogEvents& m_events;
  BrowserEvents* m_browserEvents = nullptr;
  GtkWidget* m_window;
  std::unique_ptr<DialogControl> m_client;
  std::vector<std::unique_ptr<DialogControl>> m_controls;
  std::shared_ptr<ConfinedPage> m_page;
  std::vector<ElementEvent> m_wanted;
  int m_defaultId = kNoCommand;
  int m_command = kNoCommand;         // taken, not yet told
  bool m_pageLoaded = false;          // not yet told
  std::vector<std::size_t> m_clicks;  // into m_wanted, not yet told
  bool m_ended = false;
  INT_PTR m_result = 0;
};

}  // namespace velandoc
