// The user at the controlling terminal: the one place where Linux can ask what WinINet would ask in
// a dialog.
//
// Prompts go to the terminal itself, not to the standard streams, which may be pipes. A terminal
// counts only if the process runs in its foreground and the environment variable VELANDOC_NO_INPUT
// is unset, empty or "0"; so nothing ever waits where nobody can answer.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/port.h"

namespace velandoc {

class Terminal {
 public:
  virtual ~Terminal() = default;

  virtual bool IsAvailable() = 0;
  /// Shows the text as it is, then reads a line and returns it without its end. None at the end of
  /// input or if the terminal went away. A secret is not echoed. A signal that comes meanwhile
  /// takes effect after the terminal's settings are restored.
  virtual std::optional<std::string> Ask(std::string_view text) = 0;
  virtual std::optional<std::string> AskSecret(std::string_view text) = 0;
};

template <>
Terminal& SystemPort<Terminal>();

}  // namespace velandoc
