// Shows template 201 with a page through the DialogHost port and tells on its output, a line each,
// what the port reports. dialog_test.py drives the window and reads the lines.
//
//   dialog_driver [OPTIONS] PAGE
//
//   --call NAME[,ARGUMENT...]   at OK, call the function of the page and print what it returns; may
//                               be given again
//   --number N                  an argument of the calls that follow, behind the others, as VT_I2
//   --stay                      OK does not end the dialog
//   --listen ID                 ask for the clicks of the element
//   --times N                   show the dialog N times
//   --focus                     tell where the keyboard's focus goes
//   --end-at-once               end it before it is seen
//   --thread                    show it on another thread, after a first one on the main thread
//   --loop                      from inside a GTK main loop of the program's own, over its window
//   --busy-loop                 while another thread runs GTK's main loop
//   --measure N                 make the calls N times on completion, print milliseconds, end; also
//                               those until the window was there and until the page was
#include <gtk/gtk.h>
#undef TRUE
#undef FALSE

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "hosts/text_encoding.h"
#include "platform/dialog_host.h"
#include "platform/owners.h"

namespace {

using namespace velandoc;  // a program of its own
using Clock = std::chrono::steady_clock;

struct Call {
  std::vector<WideString> words;
  std::optional<short> number;
};

struct Options {
  std::string page;
  std::vector<Call> calls;
  std::vector<WideString> listen;
  std::optional<short> number;
  int times = 1;
  int measure = 0;
  bool stay = false;
  bool endAtOnce = false;
  bool focus = false;
  bool thread = false;
  bool loop = false;
  bool busyLoop = false;
};

double Milliseconds(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void Say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

std::string Hex(HRESULT result) {
  char text[16];
  std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(result));
  return text;
}

/// The last window that was made.
GtkWidget* DialogWidget() {
  GList* const windows = gtk_window_list_toplevels();
  GtkWidget* const newest = GTK_WIDGET(windows->data);
  g_list_free(windows);
  return newest;
}

void WatchFocus() {
  const auto tell = +[](GtkWindow*, GtkWidget* widget, gpointer) {
    if (widget == nullptr) return;
    Say(std::string("focus ") +
        (GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : "page"));
  };
  g_signal_connect(DialogWidget(), "set-focus", G_CALLBACK(tell), nullptr);
}

class Driver final : public DialogEvents, public BrowserEvents {
 public:
  explicit Driver(const Options& options) : m_options(options) {}

  void Show() {
    WideString reason;
    m_start = Clock::now();
    const INT_PTR result = m_host.DialogBoxParamW(201, nullptr, *this, &reason);
    Say("result " + std::to_string(result) + (reason.empty() ? "" : " " + Utf8FromWide(reason)));
    // The handles and the document have died with the dialog.
    RECT rect{};
    if (m_dialog != nullptr) {
      Say("dead handle " + std::to_string(m_host.GetClientRect(m_dialog, &rect)));
    }
    if (m_document) {
      IDispatch* script = nullptr;
      Say("dead document " + Hex(m_document->get_Script(&script)));
      m_document.Reset();
    }
    if (m_script) {
      CallAll();
      m_script.Reset();
    }
    m_dialog = nullptr;
  }

 private:
  BOOL OnDialogCreated(HWND dialog) noexcept override {
    m_dialog = dialog;
    RECT client{};
    m_host.GetClientRect(dialog, &client);
    m_okOffset = Offset(1, client);
    m_cancelOffset = Offset(2, client);
    for (const WideString& id : m_options.listen) m_wanted.push_back({DISPID_CLICK, id.c_str()});
    m_browser = m_host.CreateBrowser(dialog, client, m_wanted, *this);
    const WideString url = OLESTR("file://") + WideFromUtf8(m_options.page);
    m_host.Navigate(m_browser, url.c_str());
    if (m_options.focus) WatchFocus();
    if (m_options.measure != 0) MeasureShow();
    if (m_options.endAtOnce) m_host.EndDialog(dialog, 7);
    Say("created " + std::to_string(client.right) + " " + std::to_string(client.bottom));
    return 1;
  }

  void OnDialogSize(UINT type, int width, int height) noexcept override {
    constexpr UINT kMove = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
    m_host.SetWindowPos(m_host.GetDlgItem(m_dialog, 1), nullptr, width - m_okOffset.x,
                        height - m_okOffset.y, 0, 0, kMove);
    m_host.SetWindowPos(m_host.GetDlgItem(m_dialog, 2), nullptr, width - m_cancelOffset.x,
                        height - m_cancelOffset.y, 0, 0, kMove);
    m_host.MoveWindow(m_browser, 0, 0, width, height - m_okOffset.y - 10, 1);
    Say("size " + std::to_string(type) + " " + std::to_string(width) + " " +
        std::to_string(height));
  }

  void OnDialogCommand(int id) noexcept override {
    Say("command " + std::to_string(id));
    if (id == 1) CallAll();
    if (id == 2 || !m_options.stay) m_host.EndDialog(m_dialog, id);
  }

  void OnDialogDestroyed() noexcept override { Say("destroyed"); }

  void OnDocumentComplete(IHTMLDocument2* document) noexcept override {
    m_document = document;
    document->get_Script(m_script.Receive());
    Say("document");
    if (m_options.measure == 0) return;
    Say("loaded " + std::to_string(Milliseconds(m_start)));
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < m_options.measure; ++i) CallAll(false);
    Say("each " + std::to_string(Milliseconds(start) / m_options.measure));
    m_host.EndDialog(m_dialog, 1);
  }

  void OnElementEvent(const ElementEvent& event) noexcept override {
    Say("click " + Utf8FromWide(event.element));
  }

  void MeasureShow() {
    const auto tell = +[](GtkWidget*, GdkEvent*, gpointer driver) -> gboolean {
      Say("shown " + std::to_string(Milliseconds(static_cast<Driver*>(driver)->m_start)));
      return 0;
    };
    g_signal_connect(DialogWidget(), "map-event", G_CALLBACK(tell), this);
  }

  POINT Offset(int id, const RECT& client) {
    RECT rect{};
    const HWND button = m_host.GetDlgItem(m_dialog, id);
    m_host.GetWindowRect(button, &rect);
    m_host.ScreenToClient(m_dialog, &rect);
    return {client.right - rect.left, client.bottom - rect.top};
  }

  void CallAll(bool say = true) {
    for (const Call& call : m_options.calls) {
      const std::string line = CallOne(call);
      if (say) Say(line);
    }
  }

  std::string CallOne(const Call& call) {
    const std::string name = "call " + Utf8FromWide(call.words[0]) + " ";
    if (!m_script) return name + "without a document";
    LPOLESTR word = const_cast<LPOLESTR>(call.words[0].c_str());
    DISPID id = 0;
    const HRESULT found = m_script->GetIDsOfNames(IID_NULL, &word, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(found)) return name + "unknown " + Hex(found);
    std::vector<Variant> owned;
    if (call.number) owned.emplace_back(*call.number, VARTYPE{VT_I2});
    for (std::size_t i = call.words.size(); i-- > 1;) owned.emplace_back(WideView(call.words[i]));
    std::vector<VARIANT> arguments;
    for (const Variant& one : owned) arguments.push_back(one.Get());
    DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    Variant result;
    const HRESULT called = m_script->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                            &params, &result.Get(), nullptr, nullptr);
    if (FAILED(called)) return name + "failed " + Hex(called);
    if (result.Get().vt != VT_BSTR) return name + "type " + std::to_string(result.Get().vt);
    return name + "text " +
           Utf8FromWide(WideView(result.Get().bstrVal, SysStringLen(result.Get().bstrVal)));
  }

  DialogHost& m_host = CurrentPort<DialogHost>();
  const Options& m_options;
  Clock::time_point m_start;
  HWND m_dialog = nullptr;
  HWND m_browser = nullptr;
  POINT m_okOffset{};
  POINT m_cancelOffset{};
  std::vector<ElementEvent> m_wanted;
  ComPtr<IHTMLDocument2> m_document;
  ComPtr<IDispatch> m_script;
};

Options Parse(int count, char** words) {
  Options options;
  auto next = [&, i = 0]() mutable { return ++i < count ? words[i] : nullptr; };
  while (const char* word = next()) {
    const std::string option = word;
    if (option == "--stay") {
      options.stay = true;
    } else if (option == "--end-at-once") {
      options.endAtOnce = true;
    } else if (option == "--focus") {
      options.focus = true;
    } else if (option == "--thread") {
      options.thread = true;
    } else if (option == "--loop") {
      options.loop = true;
    } else if (option == "--busy-loop") {
      options.busyLoop = true;
    } else if (option == "--times") {
      options.times = std::atoi(next());
    } else if (option == "--measure") {
      options.measure = std::atoi(next());
    } else if (option == "--number") {
      options.number = static_cast<short>(std::atoi(next()));
    } else if (option == "--listen") {
      options.listen.push_back(WideFromUtf8(next()));
    } else if (option == "--call") {
      Call call{{}, options.number};
      std::string rest = next();
      for (std::size_t end = 0; end != std::string::npos; rest.erase(0, end + 1)) {
        end = rest.find(',');
        call.words.push_back(WideFromUtf8(rest.substr(0, end)));
        if (end == std::string::npos) break;
      }
      options.calls.push_back(call);
    } else {
      options.page = option;
    }
  }
  return options;
}

/// A program with a window and a main loop of its own, which shows the dialog from inside it.
void ShowFromLoop(Driver& driver) {
  gtk_init(nullptr, nullptr);
  GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "Host");
  gtk_window_set_default_size(GTK_WINDOW(window), 900, 600);
  gtk_widget_show_all(window);
  const auto waitForFocus = +[](gpointer data) -> gboolean {
    GList* const windows = gtk_window_list_toplevels();
    const bool active = gtk_window_is_active(GTK_WINDOW(windows->data)) != 0;
    g_list_free(windows);
    if (!active) return G_SOURCE_CONTINUE;
    static_cast<Driver*>(data)->Show();
    gtk_main_quit();
    return G_SOURCE_REMOVE;
  };
  g_timeout_add(20, waitForFocus, &driver);
  gtk_main();
  Say("main loop ended");
}

void ShowBesideLoop(Driver& driver) {
  GMainLoop* const loop = g_main_loop_new(nullptr, 0);
  std::thread other([&] { g_main_loop_run(loop); });
  while (!g_main_loop_is_running(loop)) std::this_thread::yield();
  driver.Show();
  g_main_loop_quit(loop);
  other.join();
  g_main_loop_unref(loop);
}

}  // namespace

int main(int count, char** words) {
  const Options options = Parse(count, words);
  Driver driver(options);
  if (options.loop) {
    ShowFromLoop(driver);
  } else if (options.busyLoop) {
    ShowBesideLoop(driver);
  } else {
    for (int i = 0; i < options.times; ++i) driver.Show();
    if (options.thread) std::thread([&] { driver.Show(); }).join();
  }
  Say(std::string("locale ") + std::setlocale(LC_ALL, nullptr));
}
