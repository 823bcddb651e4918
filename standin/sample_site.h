// sites/sample.json, built in.
#pragma once

#include <string_view>

namespace velandoc::standin {

extern const std::string_view kSampleSite;

}  // namespace velandoc::standin
