#include "hosts/command/dialog_watch.h"

#include "hosts/text_encoding.h"

namespace velandoc {

INT_PTR DialogWatch::DialogBoxParamW(WORD id, HWND owner, DialogEvents& events,
                                     WideString* reason) {
  const INT_PTR result = m_below.DialogBoxParamW(id, owner, events, reason);
  m_reason = Utf8FromWide(*reason);
  m_result.reset();
  if (m_reason.empty()) m_result = result;
  return result;
}

}  // namespace velandoc
