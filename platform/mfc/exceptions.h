// The exceptions that MFC throws by pointer. Who catches one ends it with Delete().
#pragma once

#include "platform/com.h"

class CException {
 public:
  /// `autoDelete` says that the object was made with new; Delete() leaves any other alone.
  explicit CException(BOOL autoDelete = TRUE) : m_bAutoDelete(autoDelete) {}
  CException(const CException&) = delete;
  CException& operator=(const CException&) = delete;

  /// The exception in words, null-ended, in a buffer of `size` characters. FALSE with an empty text
  /// if it has none, which the base always says. `helpContext` may be null and else becomes 0.
  virtual BOOL GetErrorMessage(LPWSTR buffer, UINT size, UINT* helpContext = nullptr);
  void Delete();

 protected:
  virtual ~CException() = default;

 private:
  BOOL m_bAutoDelete;
};

/// A result of COM's, success codes among them.
class COleException final : public CException {
 public:
  explicit COleException(SCODE code) : m_sc(code) {}

  SCODE m_sc;
};

[[noreturn]] void AfxThrowOleException(SCODE code);
