// A page in a WebKit view that may load nothing but its own file.
//
// The page is made of a server's texts, which nobody has escaped, so it may hold markup and scripts
// of anybody's. What they can do ends at the page: the content security policy lets scripts and
// styles run that stand in the page and loads nothing else; every navigation but the first is
// refused, a form's and a new window's among them; what the policy does not cover (a connection
// made in advance) is switched off; and whatever would still look for the network is sent to a
// proxy that there is none of. Nothing is kept on disk.
//
// GTK's thread only. Callbacks come from inside the main loop.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/dialog/alert_box.h"
#include "platform/posix/dialog/gtk_headers.h"
#include "platform/posix/dialog/gtk_owners.h"
#include "platform/text.h"

namespace velandoc {

class PageEvents {
 public:
  /// The page is complete, and its functions can be called. Once.
  virtual void OnPageLoaded() noexcept = 0;
  /// Enter in the page, behind everything that was typed before.
  virtual void OnPageEnter() noexcept = 0;
  /// Tab behind the last element or, not `forward`, in front of the first one.
  virtual void OnPageLeft(bool forward) noexcept = 0;
  /// A click inside the element `id`, one of those that were asked for.
  virtual void OnPageClick(std::string_view id) noexcept = 0;
  /// The process that showed the page has died; nothing can be called any more.
  virtual void OnPageGone() noexcept = 0;

 protected:
  ~PageEvents() = default;
};

class ConfinedPage {
 public:
  /// What came of a call into the page.
  enum class Outcome { kValue, kThrew, kGone };

  /// `events` outlives the page. `clicks` are the ids, separated by blanks, of the elements whose
  /// clicks are wanted; the page's author cannot see who listens.
  ConfinedPage(PageEvents& events, const std::string& clicks);
  ConfinedPage(const ConfinedPage&) = delete;
  ConfinedPage& operator=(const ConfinedPage&) = delete;
  ~ConfinedPage();

  /// Belongs to this object, too; who puts it into a container takes a reference.
  GtkWidget* Widget() const { return GTK_WIDGET(m_view.get()); }

  /// Begins to load the file. Once a page; false for a path that has no URL or after the first
  /// time.
  bool Load(const std::string& path);

  /// Runs `body`, the body of a function, in the page and waits; the main loop runs meanwhile. The
  /// value is written to `text` if it is a string, else `isText` is false and `text` empty.
  Outcome Run(const std::string& body, WideString& text, bool& isText);

  /// Ends the process that shows the page: a call that is under way comes back with kGone.
  void Kill();

  bool IsGone() const { return m_gone; }
  /// A call, and with it maybe an alert box, is under way.
  bool IsCalling() const { return m_calls > 0; }
  /// Whether an input method holds text that is not in the page yet: Escape is its own then.
  bool IsComposing() const { return m_composing; }

 private:
  struct Call;

  void MakeView(const std::string& clicks);
  void Connect();
  void SetGone();
  bool MayGoTo(const char* uri) const;

  static gboolean OnDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer page);
  static void OnLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer page);
  static gboolean OnLoadFailed(WebKitWebView*, WebKitLoadEvent, char*, GError*, gpointer page);
  static gboolean OnScriptDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer page);
  static gboolean OnContextMenu(WebKitWebView*, WebKitContextMenu*, GdkEvent*,
                                WebKitHitTestResult* place, gpointer);
  static gboolean OnFocus(GtkWidget* view, GtkDirectionType direction, gpointer);
  static gboolean OnFileChooser(WebKitWebView*, WebKitFileChooserRequest* request, gpointer);
  static void OnWatch(WebKitUserContentManager*, WebKitJavascriptResult* message, gpointer page);
  static void OnTerminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer page);
  static void OnCallDone(GObject* view, GAsyncResult* result, gpointer call);

  PageEvents& m_events;
  GObjectPtr<WebKitWebContext> m_context;
  GObjectPtr<WebKitUserContentManager> m_content;
  GObjectPtr<WebKitWebView> m_view;
  GObjectPtr<WebKitInputMethodContext> m_input;  // null if the view has none
  std::string m_uri;                             // empty before Load
  std::unique_ptr<AlertBox> m_alert;
  int m_calls = 0;
  bool m_loadFailed = false;
  bool m_loaded = false;
  bool m_complete = false;  // and told
  bool m_composing = false;
  bool m_gone = false;
};

}  // namespace velandoc
