// The DialogHost port: one modal dialog with push buttons and a browser, as the system shows it.
// The operations have the names, arguments and results of the Windows functions behind them where
// there are such.
//
// Everything happens on the thread that calls DialogBoxParamW: the port starts no thread that a
// caller could see, and all events come on that thread, inside that call. Windows are handles. They
// are good from OnDialogCreated until DialogBoxParamW returns; outside of that every operation on
// one fails and does nothing. Several dialogs one after the other are usual, one inside the other
// is not asked for.
//
// Units are pixels, of the client area's top left corner unless something else is said. A dialog
// template is in dialog units: a width of 4 is that of the font's average letter, a height of 8
// that of the font, so pixels are x * baseX / 4 and y * baseY / 8, rounded to the nearest (as
// MulDiv does). Linux takes the base that Windows has for "MS Shell Dlg" of 8 points at 96 dots an
// inch, 6 by 13 pixels: template 201 has a client area of 599 by 354 there. A display's scale is
// applied below the port.
#pragma once

#include <span>

#include "platform/html_document.h"
#include "platform/port.h"
#include "platform/text.h"
#include "platform/window_types.h"

namespace velandoc {

/// What a dialog is told. None of these raises: who has an exception keeps it, ends the dialog and
/// raises it behind DialogBoxParamW.
class DialogEvents {
 public:
  /// The window and the template's controls stand, not yet shown. FALSE if the focus has been set
  /// here; TRUE gives it to the first control with WS_TABSTOP. EndDialog in here ends the dialog
  /// before it is seen.
  virtual BOOL OnDialogCreated(HWND dialog) noexcept = 0;
  /// WM_SIZE: the client area is `width` by `height` now; `type` is SIZE_*. Comes once between
  /// OnDialogCreated and the moment when the user sees the dialog, even if nothing has changed, and
  /// then for every change.
  virtual void OnDialogSize(UINT type, int width, int height) noexcept = 0;
  /// A push button of the template was clicked, or what stands for it: Enter is the default button
  /// (the one with BS_DEFPUSHBUTTON) unless another button has the focus, also from inside the
  /// page's text boxes and lists; Escape and the window's close box are IDCANCEL. The dialog stays
  /// until EndDialog. Not while a script call is under way, so not behind an alert box.
  virtual void OnDialogCommand(int id) noexcept = 0;
  /// The last event: the handles die with it.
  virtual void OnDialogDestroyed() noexcept = 0;

 protected:
  ~DialogEvents() = default;
};

/// An event of a page's element that a dialog wants to hear of.
struct ElementEvent {
  DISPID event;     // DISPID_CLICK is the one in use
  LPCWSTR element;  // the element's id attribute
};

/// What a dialog is told of its page. None of these raises.
class BrowserEvents {
 public:
  /// The page has been loaded, its scripts have run, and they can be called. `document` is never
  /// null and borrowed: who keeps it adds a reference. Does not come for a page that could not be
  /// loaded. Never inside Navigate.
  virtual void OnDocumentComplete(IHTMLDocument2* document) noexcept = 0;
  /// One of the events that were asked for. An element may come into the page at any time.
  virtual void OnElementEvent(const ElementEvent& event) noexcept = 0;

 protected:
  ~BrowserEvents() = default;
};

class DialogHost {
 public:
  virtual ~DialogHost() = default;

  /// Shows the dialog of the template `id` and runs it until EndDialog. Modal over `owner`; null
  /// stands for the thread's active window, or none. -1 if there can be no window (no display, no
  /// such template, no part of the system that shows it): then no event has come, and `*reason`
  /// says why in words, without a line end; it is left alone otherwise. Else what EndDialog gave,
  /// or IDCANCEL if the program was told to quit or the owner took the dialog with it.
  ///
  /// Windows takes the template from the resources that are current for the thread
  /// (AfxGetResourceHandle) or, where those lack it, from the library's own.
  virtual INT_PTR DialogBoxParamW(WORD id, HWND owner, DialogEvents& events,
                                  WideString* reason) = 0;
  /// From inside an event: the dialog is hidden and ended when the event returns. The first result
  /// counts.
  virtual BOOL EndDialog(HWND dialog, INT_PTR result) = 0;
  /// Null if there is none.
  virtual HWND GetDlgItem(HWND dialog, int id) = 0;

  /// For a dialog: left and top are 0.
  virtual BOOL GetClientRect(HWND window, RECT* rect) = 0;
  /// On the screen. A system that does not tell where on the screen a window lies may use any
  /// origin, as long as ScreenToClient takes off the same.
  virtual BOOL GetWindowRect(HWND window, RECT* rect) = 0;
  /// Both corners of `rect`.
  virtual BOOL ScreenToClient(HWND window, RECT* rect) = 0;
  /// `flags` are of SWP_*; all that is asked for is SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE.
  virtual BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height,
                            UINT flags) = 0;
  virtual BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) = 0;
  virtual LRESULT DefWindowProcW(HWND window, UINT message, WPARAM first, LPARAM second) = 0;

  /// Makes the browser of a dialog, once, from OnDialogCreated on: a window of its own on the place
  /// `place`, a stop of the Tab key in front of the template's controls. Tab leaves the page behind
  /// its last element. Null if there can be none: the dialog then stands without a page. `wanted`
  /// and `events` live as long as the dialog.
  ///
  /// The page needs nothing but its own file. A host where that can be told loads nothing else: no
  /// network, no other file, no new window, no navigation away, no form sent. alert() shows a box
  /// over the dialog with the text as it stands and waits for OK.
  virtual HWND CreateBrowser(HWND dialog, const RECT& place, std::span<const ElementEvent> wanted,
                             BrowserEvents& events) = 0;
  /// Begins to load `url` and returns. What stands behind "file://" is a path of this system, to
  /// the letter: no percent sign in it is an escape, a "#" or "?" ends nothing, on Windows its
  /// separators are backslashes, and a relative one is taken from the current folder. The file is
  /// UTF-16, little-endian, with a byte order mark.
  virtual BOOL Navigate(HWND browser, LPCWSTR url) = 0;
};

/// On Linux the system's port is in a module of its own, loaded at the first DialogBoxParamW
/// (platform/posix/dialog_module.h).
template <>
DialogHost& SystemPort<DialogHost>();

}  // namespace velandoc
