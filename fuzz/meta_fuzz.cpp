// What holds for every meta-info value that a server sends: for both reads of it, and for every
// date that is found in it.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "connection/utf8.h"
#include "frontpage/document_meta.h"
#include "frontpage/scan_zone.h"
#include "platform/owners.h"

namespace velandoc {
namespace {

constexpr LPCWSTR kKey = OLESTR("vti_etag");
constexpr double kSecond = 1.0 / 86400;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckText(const CDocumentMeta& meta, WideView raw) {
  const WideString text = meta.GetTextValue(kKey);
  Require(text.find(OLECHAR{0}) == WideString::npos);
  const std::size_t separator = raw.find(OLECHAR{'|'});
  if (separator == WideView::npos) {
    Require(text.empty());
  } else {
    Require(raw.substr(separator + 1, text.size()) == text);
  }
  const WideString guid = meta.GetDocGuid();
  Require(text.find(guid) != WideString::npos);
  Require(guid.find(OLECHAR{'}'}) >= guid.size() - (guid.empty() ? 0 : 1));
}

/// A date that was read is one that the system writes, and reads again.
void CheckDate(DATE date) {
  SYSTEMTIME time;
  Require(VariantTimeToSystemTime(date, &time) == TRUE);
  DATE again = 0;
  Require(SystemTimeToVariantTime(&time, &again) == TRUE && std::fabs(again - date) < kSecond / 2);
  FILETIME ticks;
  Require((SystemTimeToFileTime(&time, &ticks) == TRUE) == (time.wYear >= 1601));

  Variant value;
  value.Get().vt = VT_DATE;
  value.Get().date = date;
  Variant text;
  Require(VariantChangeType(&text.Get(), &value.Get(), 0, VT_BSTR) == S_OK);
  Require(VarDateFromStr(text.Get().bstrVal, LOCALE_USER_DEFAULT, 0, &again) == S_OK);
  Require(std::fabs(again - date) < kSecond / 2);
}

void CheckDateText(const WideString& text) {
  DATE date = 0;
  const HRESULT result = VarDateFromStr(text.c_str(), LOCALE_USER_DEFAULT, 0, &date);
  const Variant source{WideView(text)};
  Variant converted;
  Require(VariantChangeType(&converted.Get(), &source.Get(), 0, VT_DATE) == result);
  Require(result == S_OK || (result == DISP_E_TYPEMISMATCH && date == 0));
  if (result == S_OK) {
    Require(converted.Get().date == date);
    CheckDate(date);
  }
}

void CheckVariant(const CDocumentMeta& meta, WideView raw) {
  const bool isText = raw.find(OLECHAR{'|'}) == WideView::npos && !raw.empty() && raw.front() != 0;
  Variant out;
  bool found = false;
  try {
    found = meta.GetVariantValue(kKey, out.Get());
  } catch (const std::out_of_range&) {
    const WideView text = raw.substr(0, raw.find(OLECHAR{0}));
    Require(isText && text.front() == 'T' && text.find(OLECHAR{' '}) == WideView::npos);
    Require(out.Get().vt == VT_EMPTY);
    return;
  }
  if (!isText) {
    Require(!found && out.Get().vt == VT_EMPTY);
  } else if (raw.front() == 'T') {
    Require(out.Get().vt == (found ? VT_DATE : VT_EMPTY));
    if (found) Require(std::isfinite(MirrorDate(out.Get().date)));
  } else {
    const bool isNumber = raw.front() == 'B' || raw.front() == 'I';
    Require(found && out.Get().vt == (isNumber ? VT_EMPTY : VT_BSTR));
  }
}

void CheckZone(WideView text) {
  ScannedZone zone;
  const int filled = ScanZone(text, zone);
  Require(filled >= 0 && filled <= 3);
  Require(zone.hours >= -9 && zone.hours <= 99 && zone.minutes >= -9 && zone.minutes <= 99);
}

void Check(const WideString& raw) {
  CDocumentMeta meta;
  meta.m_values[kKey] = raw;
  CheckText(meta, raw);
  CheckVariant(meta, raw);
  CheckDateText(raw);
  CheckZone(raw);
  const std::size_t blank = raw.rfind(OLECHAR{' '});
  if (blank != WideString::npos) CheckZone(WideView(raw).substr(blank + 1));
}

}  // namespace
}  // namespace velandoc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // One unit a byte, as an answer's bytes arrive, and the greater units that UTF-8 gives.
  velandoc::Check(velandoc::WideString(data, data + size));
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  velandoc::Check(velandoc::FromUtf8(bytes.c_str()));
  return 0;
}
