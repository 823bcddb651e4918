// The handles that callers hold: small numbers that stand for sessions, connections and requests.
//
// A closed or invented number is told from an open one, and each kind from the others. Closing a
// handle closes what was opened below it, so a child's number is invalid from then on; the objects
// live as long as a running operation uses them. The table is shared by all threads.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/posix/http/endpoint.h"
#include "platform/posix/wininet_types.h"

namespace velandoc::http {

class HandleObject {
 public:
  virtual ~HandleObject() = default;

 private:
  friend class HandleTable;
  std::vector<HINTERNET> m_children;
  HINTERNET m_parent = nullptr;
};

struct Session final : HandleObject {
  std::string agent;
  bool usesProxies = true;
};

struct Connect final : HandleObject {
  std::shared_ptr<Session> session;
  std::string host;
  INTERNET_PORT port = 0;  // 0: the scheme's own
};

class HandleTable {
 public:
  /// `parent` null for a session.
  static HINTERNET Open(std::shared_ptr<HandleObject> object, HINTERNET parent);
  /// Null for a number that is not open.
  static std::shared_ptr<HandleObject> Find(HINTERNET handle);
  /// False for a number that is not open.
  static bool Close(HINTERNET handle);
  static std::size_t OpenCount();

  /// The object of this kind. Otherwise null, with ERROR_INVALID_HANDLE or
  /// ERROR_INTERNET_INCORRECT_HANDLE_TYPE as the last error.
  template <class Kind>
  static std::shared_ptr<Kind> Get(HINTERNET handle) {
    std::shared_ptr<HandleObject> object = Find(handle);
    std::shared_ptr<Kind> kind = std::dynamic_pointer_cast<Kind>(object);
    if (kind == nullptr) ReportWrong(object != nullptr);
    return kind;
  }

 private:
  static void ReportWrong(bool isOpen);
};

}  // namespace velandoc::http
