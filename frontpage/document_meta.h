// CDocumentMeta, what the FrontPage server says about one document or folder.
#pragma once

#include <functional>
#include <map>

#include "platform/com.h"
#include "platform/text.h"

namespace velandoc {

/// A plain value: raw values by key, exactly as they arrived, and two ways of reading them, which
/// disagree about the "|" behind a value's type letters. Keys differ in case.
struct CDocumentMeta {
  WideString m_documentName;
  WideString m_urlEntry;
  std::map<WideString, WideString, std::less<>> m_values;  // in the order of their code units
  bool m_hasDocument = false;  // the pairs came from a well-formed list of a document
  bool m_hasUrlEntry = false;  // and here of a folder

  /// Empty if there is no such key.
  WideString FindRawValue(LPCWSTR key) const;
  /// What follows the first "|" of the value; empty if it has none, or if there is no such key.
  WideString GetTextValue(LPCWSTR key) const;
  /// The braced GUID of the document's etag; the etag whole if it has no braces.
  WideString GetDocGuid() const;
  /// The list's GUID, from a folder's meta-info.
  WideString GetListName() const;
  /// Reads a value that has no "|" by its first letter: B boolean, I 32-bit integer, T date, all
  /// else text. `out`, which is cleared first, is the caller's to clear. False, with `out` empty,
  /// for a missing or empty value, one that has a "|", and a date that cannot be read; true with
  /// `out` empty for a number or boolean that cannot. Raises `_com_error` with E_OUTOFMEMORY, and
  /// std::out_of_range with "invalid string position" for a T value that is no date and has no
  /// blank.
  bool GetVariantValue(LPCWSTR key, VARIANT& out) const;
};

/// `text`, null for empty, as a date by the user's locale. On failure false, `failed` set, and
/// `date` 0.0 for a text that is no date, -1.0 for any other error.
bool ParseDateText(double& date, bool& failed, LPCWSTR text);

/// Turns a date of the OLE scale, whose fraction counts forward from the day even before the epoch,
/// into one on a linear scale: -1.25, six in the morning of day -1, is -0.75. What is not half a
/// second before the epoch, or later, stays. Not its own inverse.
double MirrorDate(double date);

}  // namespace velandoc
