#include "frontpage/document_meta.h"

#include <cmath>
#include <stdexcept>

#include "frontpage/scan_zone.h"
#include "platform/out_of_memory.h"
#include "platform/owners.h"

namespace velandoc {
namespace {

constexpr double kHoursPerDay = 24.0;
constexpr double kMinutesPerDay = 1440.0;
constexpr std::size_t kZoneLength = 5;
// What differs from 0 by less than half a second is day 0 and no date before it.
constexpr double kHalfSecondLimit = -1.0 / 172800.0;

WideView UpToNul(WideView text) { return text.substr(0, text.find(OLECHAR{0})); }

/// The system's headers take the source of a conversion without const, and do not write to it.
HRESULT ChangeType(VARIANT& out, const Variant& source, VARTYPE type) {
  return VariantChangeType(&out, const_cast<VARIANT*>(&source.Get()), 0, type);
}

/// Moves `date` by the zone. The sign is applied as it reads, not turned round to reach UTC:
/// "+0100" makes the time one hour later. A zone that is none leaves the date as it is.
void ApplyZone(WideView text, double& date) {
  ScannedZone zone;
  if (ScanZone(text, zone) != 3) return;
  const double offset = zone.hours / kHoursPerDay + zone.minutes / kMinutesPerDay;
  double moved = MirrorDate(date);
  if (zone.sign == '+') {
    moved = offset + moved;
  } else if (zone.sign == '-') {
    moved = moved - offset;
  } else {
    return;
  }
  if (moved > kHalfSecondLimit) {
    date = moved;
  } else {
    const double day = std::floor(moved);
    date = (day - moved) + day;
  }
}

/// A date as the system reads it, or else one with a zone behind its last blank.
bool ReadDate(VARIANT& out, const Variant& source, WideString text) {
  Variant converted;
  if (SUCCEEDED(ChangeType(converted.Get(), source, VT_DATE))) {
    out = converted.Get();
    VariantInit(&converted.Get());  // `out` owns it now
    return true;
  }
  double date = 0.0;
  bool failed = false;
  if (!ParseDateText(date, failed, text.c_str())) {
    const std::size_t blank = text.rfind(OLECHAR{' '});
    // With these words in both homes; a string's own exception would bring its library's.
    if (blank == WideString::npos) throw std::out_of_range("invalid string position");
    const WideString zone = text.substr(blank + 1);
    text.erase(blank);
    if (ParseDateText(date, failed, text.c_str()) && zone.size() == kZoneLength) {
      ApplyZone(zone, date);
    }
  }
  if (failed) return false;
  VariantClear(&out);
  out.vt = VT_DATE;
  out.date = date;
  return true;
}

}  // namespace

WideString CDocumentMeta::FindRawValue(LPCWSTR key) const {
  const auto found = m_values.find(ViewOf(key));
  return found != m_values.end() ? found->second : WideString();
}

WideString CDocumentMeta::GetTextValue(LPCWSTR key) const {
  const WideString raw = FindRawValue(key);
  const std::size_t separator = raw.find(OLECHAR{'|'});
  if (separator == WideString::npos) return WideString();
  return WideString(UpToNul(WideView(raw).substr(separator + 1)));
}

WideString CDocumentMeta::GetDocGuid() const {
  WideString text = GetTextValue(OLESTR("vti_etag"));
  if (const std::size_t open = text.find(OLECHAR{'{'}); open != WideString::npos) {
    text.erase(0, open);
  }
  if (const std::size_t close = text.find(OLECHAR{'}'}); close != WideString::npos) {
    text.erase(close + 1);
  }
  return text;
}

WideString CDocumentMeta::GetListName() const { return GetTextValue(OLESTR("vti_listname")); }

bool CDocumentMeta::GetVariantValue(LPCWSTR key, VARIANT& out) const {
  VariantClear(&out);
  return RaiseOutOfMemory([&] {
    const WideString raw = FindRawValue(key);
    // Deliberate, though the ordinary form of a value has a "|" behind its type letters: the typed
    // read takes only a value without one, and converts the whole of it, its first letter too.
    if (raw.find(OLECHAR{'|'}) != WideString::npos) return false;
    const WideView text = UpToNul(raw);
    if (text.empty()) return false;
    const Variant source(text);
    switch (text.front()) {
      // A boolean or number that cannot be read is a value all the same, an empty one.
      case 'B':
        ChangeType(out, source, VT_BOOL);
        return true;
      case 'I':
        ChangeType(out, source, VT_I4);
        return true;
      case 'T':
        return ReadDate(out, source, WideString(text));
      default:
        VariantCopy(&out, const_cast<VARIANT*>(&source.Get()));
        return true;
    }
  });
}

bool ParseDateText(double& date, bool& failed, LPCWSTR text) {
  const HRESULT result = VarDateFromStr(const_cast<OLECHAR*>(text != nullptr ? text : OLESTR("")),
                                        LOCALE_USER_DEFAULT, 0, &date);
  failed = FAILED(result);
  if (failed) date = result == DISP_E_TYPEMISMATCH ? 0.0 : -1.0;
  return !failed;
}

double MirrorDate(double date) {
  if (date > kHalfSecondLimit) return date;
  const double day = std::ceil(date);
  return day - (date - day);
}

}  // namespace velandoc
