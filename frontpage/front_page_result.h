// CFrontPageResult, what one answer of the FrontPage server leaves behind.
#pragma once

#include <cstdint>

#include "frontpage/document_meta.h"
#include "platform/text.h"

namespace velandoc {

/// A plain value. The status is recorded and decides nothing: a method has succeeded when the value
/// that it was sent for is there, whatever else the server says.
struct CFrontPageResult {
  CDocumentMeta m_meta;
  WideString m_extraText;  // copied with the rest; nothing writes it
  WideString m_statusMessage;
  std::int32_t m_status = 0;
  bool m_hasStatus = false;  // the answer held a status paragraph
  bool m_hasMeta = false;    // it held a list of pairs of an even length above 0
};

}  // namespace velandoc
