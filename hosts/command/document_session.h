// One document, opened by the component's own object, with all that is to be known of the way.
//
// The object is made in this process and not by its ProgID: its interface gives no list of the
// meta-info's keys, of the columns or of the row, and tells of a failure only that it was one.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/client.h"
#include "hosts/command/exchange_watch.h"
#include "hosts/command/moment.h"
#include "hosts/command/step_failure.h"
#include "platform/atl/atl_module.h"
#include "platform/owners.h"

namespace velandoc {

/// What a member of the interface answered.
template <class Value>
struct Reply {
  HRESULT result = E_FAIL;
  Value value{};
  std::string exception;  // what was raised in place of a result; empty if nothing was

  bool Answered() const { return exception.empty() && SUCCEEDED(result); }
  Value ValueOr(Value other) const { return Answered() ? value : other; }
};

class DocumentSession {
 public:
  DocumentSession();

  /// Opens `target`, which FindTargetProblem has let pass. False if no document is open then; the
  /// reasons are told on the error stream. A document of which a part did not arrive is open, and
  /// what is missing is told likewise.
  bool Open(const std::string& target);

  /// What was missing of an open document, in the order of its requests.
  const std::vector<StepFailure>& Missing() const { return m_missing; }
  bool RowArrived() const { return !Own().ItemAttributes().empty(); }

  const CClient& Own() const { return *m_own; }
  CClient& Own() { return *m_own; }
  const std::vector<ExchangeRecord>& Records() const { return m_watch.Records(); }

  WideString Url() const;
  WideString WebUrl() const;
  WideString ListId() const;
  WideString ContentTypeId() const;
  WideString DocId() const;
  /// The display name of who holds the document.
  WideString Holder() const;

  /// Calls a member whose last argument is its result. What it raises is caught.
  template <class Raw>
  Reply<Raw> Ask(HRESULT (STDMETHODCALLTYPE IClient::*member)(Raw*)) const {
    Reply<Raw> reply;
    Guard(reply.exception, [&] { reply.result = (m_client.Get()->*member)(&reply.value); });
    return reply;
  }
  /// FrontPageMetaInfo: its type and value as text; nothing for an empty value.
  Reply<std::optional<std::string>> AskMeta(const WideString& key) const;

  Reply<VARIANT_BOOL> CheckIn(const WideString& comment, INT type) const;

  /// Runs `step` and gives what it raised as text in `exception`.
  static void Guard(std::string& exception, const std::function<void()>& step);

 private:
  WideString Text(HRESULT (STDMETHODCALLTYPE IClient::*member)(BSTR*)) const;
  bool OpenUrlOrPath(const std::string& target);

  std::unique_ptr<CAtlModule> m_module;  // holds the object's lock, so it goes last
  ExchangeWatch m_watch;
  PortScope<WinInet> m_scope;
  ComPtr<IClient> m_client;
  CClient* m_own = nullptr;  // the same object
  std::vector<StepFailure> m_missing;
};

}  // namespace velandoc
