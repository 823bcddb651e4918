#include "platform/posix/dialog/confined_page.h"

#include <exception>
#include <iterator>
#include <utility>

#include "platform/posix/com/utf8.h"

namespace velandoc {
namespace {

/// The page's own scripts and styles, and nothing that would have to be fetched, local files
/// included.
constexpr char kPolicy[] =
    "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; "
    "form-action 'none'; base-uri 'none'";

/// A port that nothing can listen on. WebKit knows no switch that turns the network off, and does
/// not promise that such a proxy is tried and fails: the lane `dialog` watches that nothing
/// arrives.
constexpr char kNoProxy[] = "socks5://0.0.0.0:0";

/// What reaches for the network past the policy. The names of features are not part of WebKit's
/// stable interface; one that a release does not know is passed over, and the proxy remains.
constexpr const char* kFeaturesOff[] = {"LinkPreconnect", "LinkPreconnectEarlyHints",
                                        "LinkDNSPrefetch"};

/// The world of scripts in which ours runs, out of the page's sight.
constexpr char kWorld[] = "velandoc";

GObjectPtr<WebKitSettings> MakeSettings() {
  GObjectPtr<WebKitSettings> settings(webkit_settings_new());
  // A form needs none of these. Software drawing spares it the start of a graphics stack.
  g_object_set(
      settings.get(), "hardware-acceleration-policy", WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER,
      "enable-webgl", FALSE, "enable-webaudio", FALSE, "enable-media", FALSE, "enable-mediasource",
      FALSE, "enable-media-stream", FALSE, "enable-webrtc", FALSE, "enable-html5-local-storage",
      FALSE, "enable-html5-database", FALSE, "enable-page-cache", FALSE, "enable-fullscreen", FALSE,
      "enable-developer-extras", FALSE, "allow-file-access-from-file-urls", FALSE,
      "allow-universal-access-from-file-urls", FALSE, "javascript-can-open-windows-automatically",
      FALSE, "javascript-can-access-clipboard", FALSE, nullptr);
  WebKitFeatureList* features = webkit_settings_get_all_features();
  for (gsize i = 0; i < webkit_feature_list_get_length(features); ++i) {
    WebKitFeature* feature = webkit_feature_list_get(features, i);
    for (const char* name : kFeaturesOff) {
      if (g_strcmp0(webkit_feature_get_identifier(feature), name) == 0) {
        webkit_settings_set_feature_enabled(settings.get(), feature, FALSE);
      }
    }
  }
  webkit_feature_list_unref(features);
  return settings;
}

GObjectPtr<WebKitWebContext> MakeContext() {
  GObjectPtr<WebKitWebsiteDataManager> data(webkit_website_data_manager_new_ephemeral());
  WebKitNetworkProxySettings* nowhere = webkit_network_proxy_settings_new(kNoProxy, nullptr);
  webkit_website_data_manager_set_network_proxy_settings(data.get(),
                                                         WEBKIT_NETWORK_PROXY_MODE_CUSTOM, nowhere);
  webkit_network_proxy_settings_free(nowhere);
  GObjectPtr<WebKitWebContext> context(
      webkit_web_context_new_with_website_data_manager(data.get()));
  webkit_web_context_set_cache_model(context.get(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
  return context;
}

/// What the page's author cannot see. It tells of Enter, which a page would send its form for, and
/// of a click inside an element with one of the ids, the nearest if there are several. And it moves
/// the focus: WebKit gives none to an element when the Tab key enters a page, and loses the next
/// key when it leaves one. All of that happens inside the page, since that alone knows when the
/// keys typed before have arrived.
std::string PageWatch(const std::string& ids) {
  return R"(
    const tell = text => window.webkit.messageHandlers.velandoc.postMessage(text);
    const wanted = ')" +
         ids + R"('.split(' ').filter(id => id);

    function focusNext(forward, from) {
      const stops = [...document.querySelectorAll(
          'input, select, textarea, button, a[href], [tabindex]')].filter(
          node => !node.disabled && node.tabIndex >= 0 && node.getClientRects().length);
      if (!forward) stops.reverse();
      for (const node of stops.slice(stops.indexOf(from) + 1)) {
        node.focus();
        if (document.activeElement !== node) continue;
        if (node.select) node.select();
        return true;
      }
      return false;
    }

    addEventListener('keydown', event => {
      if (!event.isTrusted || event.isComposing) return;
      if (event.ctrlKey || event.altKey || event.metaKey) return;
      if (event.key !== 'Enter' && event.keyCode !== 9) return;
      event.preventDefault();
      event.stopImmediatePropagation();
      if (event.key === 'Enter') {
        if (!event.repeat) tell('Enter');
      } else if (!focusNext(!event.shiftKey, document.activeElement)) {
        document.activeElement?.blur();
        tell(event.shiftKey ? 'Back' : 'Forth');
      }
    }, true);

    addEventListener('click', event => {
      for (let node = event.target; node; node = node.parentElement) {
        if (wanted.includes(node.id)) return tell('click ' + node.id);
      }
    }, true);
  )";
}

gboolean Refuse() { return TRUE; }

}  // namespace

/// A call under way. It lives until WebKit has answered, however long nobody waits for it any more.
struct ConfinedPage::Call {
  bool isAnswered = false;
  bool isText = false;
  bool threw = false;
  std::string bytes;
};

ConfinedPage::ConfinedPage(PageEvents& events, const std::string& clicks)
    : m_events(events), m_context(MakeContext()), m_content(webkit_user_content_manager_new()) {
  MakeView(clicks);
  Connect();
}

ConfinedPage::~ConfinedPage() {
  m_alert.reset();
  g_signal_handlers_disconnect_by_data(m_content.get(), this);
  if (m_input) g_signal_handlers_disconnect_by_data(m_input.get(), this);
  g_signal_handlers_disconnect_by_data(m_view.get(), this);
  gtk_widget_destroy(Widget());
}

void ConfinedPage::MakeView(const std::string& clicks) {
  WebKitUserScript* script = webkit_user_script_new_for_world(
      PageWatch(clicks).c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
      WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, kWorld, nullptr, nullptr);
  webkit_user_content_manager_add_script(m_content.get(), script);
  webkit_user_script_unref(script);
  webkit_user_content_manager_register_script_message_handler_in_world(m_content.get(), "velandoc",
                                                                       kWorld);
  const GObjectPtr<WebKitSettings> settings = MakeSettings();
  m_view.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(
      g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", m_context.get(), "settings", settings.get(),
                   "user-content-manager", m_content.get(), "default-content-security-policy",
                   kPolicy, nullptr))));
  // A view may have none.
  if (WebKitInputMethodContext* input = webkit_web_view_get_input_method_context(m_view.get())) {
    m_input.reset(WEBKIT_INPUT_METHOD_CONTEXT(g_object_ref(input)));
  }
}

void ConfinedPage::Connect() {
  const auto connect = [this](const char* signal, auto handler) {
    g_signal_connect(m_view.get(), signal, G_CALLBACK(handler), this);
  };
  connect("decide-policy", &OnDecidePolicy);
  connect("load-changed", &OnLoadChanged);
  connect("load-failed", &OnLoadFailed);
  connect("script-dialog", &OnScriptDialog);
  connect("context-menu", &OnContextMenu);
  connect("run-file-chooser", &OnFileChooser);
  connect("web-process-terminated", &OnTerminated);
  connect("focus", &OnFocus);
  connect("enter-fullscreen", &Refuse);
  connect("print", &Refuse);
  g_signal_connect(m_content.get(), "script-message-received::velandoc", G_CALLBACK(&OnWatch),
                   this);
  if (!m_input) return;
  const auto begin = +[](WebKitInputMethodContext*, gpointer page) {
    static_cast<ConfinedPage*>(page)->m_composing = true;
  };
  const auto end = +[](WebKitInputMethodContext*, gpointer page) {
    static_cast<ConfinedPage*>(page)->m_composing = false;
  };
  g_signal_connect(m_input.get(), "preedit-started", G_CALLBACK(begin), this);
  g_signal_connect(m_input.get(), "preedit-finished", G_CALLBACK(end), this);
}

bool ConfinedPage::Load(const std::string& path) {
  if (!m_uri.empty() || m_gone) return false;
  const GlibText absolute(g_canonicalize_filename(path.c_str(), nullptr));
  const GlibText uri(g_filename_to_uri(absolute.get(), nullptr, nullptr));
  if (!uri) return false;
  m_uri = uri.get();
  webkit_web_view_load_uri(m_view.get(), m_uri.c_str());
  return true;
}

ConfinedPage::Outcome ConfinedPage::Run(const std::string& body, WideString& text, bool& isText) {
  text.clear();
  isText = false;
  if (m_gone) return Outcome::kGone;
  const auto call = std::make_shared<Call>();
  webkit_web_view_call_async_javascript_function(
      m_view.get(), body.data(), static_cast<gssize>(body.size()), nullptr, nullptr, nullptr,
      nullptr, &OnCallDone, new std::shared_ptr<Call>(call));
  ++m_calls;
  while (!call->isAnswered && !m_gone) g_main_context_iteration(nullptr, TRUE);
  --m_calls;
  if (m_gone) return Outcome::kGone;
  if (call->threw) return Outcome::kThrew;
  isText = call->isText;
  if (!Utf8ToWide(call->bytes, text)) return Outcome::kThrew;
  return Outcome::kValue;
}

void ConfinedPage::Kill() {
  webkit_web_view_terminate_web_process(m_view.get());
  SetGone();
}

void ConfinedPage::SetGone() {
  if (m_gone) return;
  m_gone = true;
  m_alert.reset();
  m_events.OnPageGone();
}

/// The page goes to its own file once, before it is there.
bool ConfinedPage::MayGoTo(const char* uri) const {
  return !m_loaded && uri != nullptr && m_uri == uri;
}

gboolean ConfinedPage::OnDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                      WebKitPolicyDecisionType type, gpointer page) {
  WebKitURIRequest* request = nullptr;
  if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) {
    request = webkit_navigation_action_get_request(
        webkit_navigation_policy_decision_get_navigation_action(
            WEBKIT_NAVIGATION_POLICY_DECISION(decision)));
  } else if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
    request =
        webkit_response_policy_decision_get_request(WEBKIT_RESPONSE_POLICY_DECISION(decision));
  }
  const bool allowed = request != nullptr && static_cast<ConfinedPage*>(page)->MayGoTo(
                                                 webkit_uri_request_get_uri(request));
  allowed ? webkit_policy_decision_use(decision) : webkit_policy_decision_ignore(decision);
  return TRUE;
}

void ConfinedPage::OnLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer page) {
  auto& self = *static_cast<ConfinedPage*>(page);
  if (event == WEBKIT_LOAD_COMMITTED) self.m_loaded = true;
  // Comes after every load that failed, too, and so after each navigation that was refused.
  if (event != WEBKIT_LOAD_FINISHED || !self.m_loaded || self.m_loadFailed) return;
  if (!std::exchange(self.m_complete, true)) self.m_events.OnPageLoaded();
}

gboolean ConfinedPage::OnLoadFailed(WebKitWebView*, WebKitLoadEvent, char*, GError*,
                                    gpointer page) {
  auto& self = *static_cast<ConfinedPage*>(page);
  // A navigation that was refused fails, too, and leaves the page as it is.
  if (!self.m_loaded) self.m_loadFailed = true;
  return TRUE;  // no page of WebKit's own that tells of it
}

gboolean ConfinedPage::OnScriptDialog(WebKitWebView* view, WebKitScriptDialog* dialog,
                                      gpointer page) {
  // confirm() and prompt() answer "no" without asking: the form has neither.
  if (webkit_script_dialog_get_dialog_type(dialog) != WEBKIT_SCRIPT_DIALOG_ALERT) return TRUE;
  GtkWidget* const window = gtk_widget_get_toplevel(GTK_WIDGET(view));
  static_cast<ConfinedPage*>(page)->m_alert =
      std::make_unique<AlertBox>(GTK_IS_WINDOW(window) ? GTK_WINDOW(window) : nullptr, dialog);
  return TRUE;
}

gboolean ConfinedPage::OnContextMenu(WebKitWebView*, WebKitContextMenu*, GdkEvent*,
                                     WebKitHitTestResult* place, gpointer) {
  // Text can be cut and pasted; reloading, saving and the like are not for a dialog.
  return !webkit_hit_test_result_context_is_editable(place);
}

gboolean ConfinedPage::OnFocus(GtkWidget* view, GtkDirectionType direction, gpointer) {
  const bool isForward = direction == GTK_DIR_TAB_FORWARD;
  if (!isForward && direction != GTK_DIR_TAB_BACKWARD) return FALSE;
  if (gtk_widget_is_focus(view) != FALSE) return FALSE;  // the way out
  gtk_widget_grab_focus(view);
  const char* const enter = isForward ? "focusNext(true, null)" : "focusNext(false, null)";
  webkit_web_view_call_async_javascript_function(WEBKIT_WEB_VIEW(view), enter, -1, nullptr, kWorld,
                                                 nullptr, nullptr, nullptr, nullptr);
  return TRUE;
}

gboolean ConfinedPage::OnFileChooser(WebKitWebView*, WebKitFileChooserRequest* request, gpointer) {
  webkit_file_chooser_request_cancel(request);
  return TRUE;
}

void ConfinedPage::OnWatch(WebKitUserContentManager*, WebKitJavascriptResult* message,
                           gpointer page) {
  constexpr std::string_view kClick = "click ";
  const GlibText text(jsc_value_to_string(webkit_javascript_result_get_js_value(message)));
  const std::string_view told = text.get();
  PageEvents& events = static_cast<ConfinedPage*>(page)->m_events;
  if (told == "Enter") events.OnPageEnter();
  if (told == "Forth" || told == "Back") events.OnPageLeft(told == "Forth");
  if (told.substr(0, kClick.size()) == kClick) events.OnPageClick(told.substr(kClick.size()));
}

void ConfinedPage::OnTerminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer page) {
  static_cast<ConfinedPage*>(page)->SetGone();
}

void ConfinedPage::OnCallDone(GObject* view, GAsyncResult* result, gpointer call) {
  const std::unique_ptr<std::shared_ptr<Call>> owner(static_cast<std::shared_ptr<Call>*>(call));
  Call& answered = **owner;
  answered.isAnswered = true;
  GError* error = nullptr;
  const GObjectPtr<JSCValue> value(
      webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), result, &error));
  answered.threw = error != nullptr;
  g_clear_error(&error);
  if (!value || !jsc_value_is_string(value.get())) return;
  answered.isText = true;
  GBytes* bytes = jsc_value_to_string_as_bytes(value.get());
  gsize size = 0;
  const void* data = g_bytes_get_data(bytes, &size);
  answered.bytes.assign(static_cast<const char*>(data), size);
  g_bytes_unref(bytes);
}

}  // namespace velandoc
