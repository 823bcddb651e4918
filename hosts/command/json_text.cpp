#include "hosts/command/json_text.h"

#include <nlohmann/json.hpp>

#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {

std::string JsonText(const nlohmann::ordered_json& json) {
  WideString kept;
  std::string text;
  // What is below 0x20 is a line feed of the indentation: within texts it is escaped already.
  for (const OLECHAR unit : WideFromUtf8(json.dump(2))) {
    const auto number = static_cast<char16_t>(unit);
    if (number < 0x20 || !CanSteer(number)) {
      kept.push_back(unit);
      continue;
    }
    text += Utf8FromWide(kept) + "\\u" + HexText(number, 4);
    kept.clear();
  }
  return text + Utf8FromWide(kept) + "\n";
}

}  // namespace velandoc
