// What the tests of the page reader share: pages that are loaded, and results in printable form.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "frontpage/page_reader.h"
#include "tests/support/answer_page.h"
#include "tests/support/fault_dom.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {

/// Bytes below 256 as the units of the same number.
inline WideString Widen(std::string_view bytes) {
  WideString wide(bytes.size(), 0);
  std::transform(bytes.begin(), bytes.end(), wide.begin(),
                 [](char byte) { return static_cast<OLECHAR>(static_cast<unsigned char>(byte)); });
  return wide;
}

inline std::string Shown(const WideString& text) { return testing::Printable(text.c_str()); }

/// "key=value; key=value" in the order of the map.
inline std::string Shown(const CDocumentMeta& meta) {
  std::string shown;
  for (const auto& [key, value] : meta.m_values) {
    if (!shown.empty()) shown += "; ";
    shown += Shown(key) + "=" + Shown(value);
  }
  return shown;
}

class PageTest : public ::testing::Test {
 protected:
  HRESULT Load(std::string_view page) { return LoadResponseDom(Widen(page), m_document); }

  testing::ComScope m_com;
  ComPtr<IXMLDOMDocument2> m_document;
};

}  // namespace velandoc
