// The component's dialog templates for the home whose loader knows none. Compiled into whoever
// shows them, from the same numbers and texts as the resource of Windows.
#pragma once

#include <iterator>
#include <span>

#include "platform/posix/com/com.h"
#include "resources/edit_fields_dialog.h"

namespace velandoc {

/// A push button; position and size in dialog units of the client area.
struct DialogButton {
  int id;
  LPCWSTR text;
  int x;
  int y;
  int width;
  int height;
  bool isDefault;
};

/// A resizable window with a caption and a close box, and its controls in the order of the Tab key.
struct DialogTemplate {
  WORD id;
  LPCWSTR caption;
  int width;  // of the client area, in dialog units
  int height;
  std::span<const DialogButton> buttons;
};

inline constexpr int kDialogBaseX = 6;
inline constexpr int kDialogBaseY = 13;

/// Dialog units to pixels, rounded to the nearest.
constexpr int DialogPixelsX(int units) { return (units * kDialogBaseX + 2) / 4; }
constexpr int DialogPixelsY(int units) { return (units * kDialogBaseY + 4) / 8; }

inline constexpr DialogButton kEditFieldsButtons[] = {
    {EDIT_FIELDS_OK_ID, u"" EDIT_FIELDS_OK_TEXT, EDIT_FIELDS_OK_X, EDIT_FIELDS_OK_Y,
     EDIT_FIELDS_BUTTON_WIDTH, EDIT_FIELDS_BUTTON_HEIGHT, true},
    {EDIT_FIELDS_CANCEL_ID, u"" EDIT_FIELDS_CANCEL_TEXT, EDIT_FIELDS_CANCEL_X, EDIT_FIELDS_CANCEL_Y,
     EDIT_FIELDS_BUTTON_WIDTH, EDIT_FIELDS_BUTTON_HEIGHT, false},
};
inline constexpr DialogTemplate kDialogTemplates[] = {
    {EDIT_FIELDS_ID, u"" EDIT_FIELDS_CAPTION, EDIT_FIELDS_WIDTH, EDIT_FIELDS_HEIGHT,
     kEditFieldsButtons},
};

/// Null if there is none.
constexpr const DialogTemplate* FindDialogTemplate(WORD id) {
  for (const DialogTemplate& found : kDialogTemplates) {
    if (found.id == id) return &found;
  }
  return nullptr;
}

}  // namespace velandoc
