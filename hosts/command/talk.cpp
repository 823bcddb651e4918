#include "hosts/command/talk.h"

#include <cstdio>

#include "platform/standard_streams.h"

namespace velandoc {

void Talk(std::string_view line) { WriteTalk("velandoc: " + std::string(line) + "\n"); }

std::string ResultText(HRESULT result) {
  char text[11] = {};
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
  return text;
}

}  // namespace velandoc
