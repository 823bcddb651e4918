#include "hosts/command/document_session.h"

#include <exception>

#include "hosts/command/command_module.h"
#include "hosts/command/document_target.h"
#include "hosts/command/probe_url.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

void WarnOfUnusedPort(const std::string& url) {
  if (const auto port = FindUnusedPort(url)) {
    Talk("warning: port " + *port + " of '" + url +
         "' is used for the document's meta-info alone: all else asks the scheme's default port");
  }
}

std::string VariantText(const VARIANT& value) {
  Variant text;
  if (FAILED(VariantChangeType(text.Receive(), const_cast<VARIANT*>(&value), 0, VT_BSTR))) {
    return {};
  }
  return Utf8FromWide(WideView(text.Get().bstrVal, SysStringLen(text.Get().bstrVal)));
}

}  // namespace

DocumentSession::DocumentSession()
    : m_module(std::make_unique<CommandModule>()),
      m_watch(CurrentPort<WinInet>()),
      m_scope(m_watch) {
  CComObject<CClient>* object = nullptr;
  CheckResult(CComObject<CClient>::CreateInstance(&object));
  m_own = object;
  m_client = ComPtr<IClient>(object);
}

void DocumentSession::Guard(std::string& exception, const std::function<void()>& step) {
  try {
    step();
  } catch (const _com_error& error) {
    exception = "the component raised " + ResultText(error.Error());
  } catch (const std::exception& error) {
    exception = std::string("the component raised an exception: ") + error.what();
  }
}

bool DocumentSession::OpenUrlOrPath(const std::string& target) {
  VARIANT_BOOL opened = VARIANT_FALSE;
  std::string exception;
  bool mapped = true;
  Guard(exception, [&] {
    if (IsUrlTarget(target)) {
      m_client->InitFromURL(Bstr(WideFromUtf8(target)).Get(), &opened);
    } else {
      const Bstr path(WideFromUtf8(AbsolutePath(target)));
      mapped = SUCCEEDED(m_client->InitFromUNC(path.Get(), &opened));
    }
  });
  if (!exception.empty()) {
    const std::string step =
        Records().empty() ? "before the first request" : "in " + Records().back().operation;
    Talk("opening '" + VisibleText(target) + "' failed " + step + ": " + exception);
    return false;
  }
  if (!mapped) {
    Talk("'" + VisibleText(target) +
         "' is no path on a WebDAV share that is known here: type the document's URL");
    return false;
  }
  if (!IsUrlTarget(target)) WarnOfUnusedPort(Utf8FromWide(Url()));

  OpenedParts parts;
  parts.user = opened != VARIANT_FALSE;
  parts.login = !Own().UserLogin().empty();
  parts.web = !Own().WebPath().empty();
  parts.document = !DocId().empty();
  parts.list = !ListId().empty();
  parts.columns = !Own().Fields().empty();
  parts.row = RowArrived();
  m_missing = ReviewOpen(parts, Records());
  return parts.document;
}

bool DocumentSession::Open(const std::string& target) {
  if (IsUrlTarget(target)) WarnOfUnusedPort(target);
  const bool opened = OpenUrlOrPath(target);
  if (!opened && !m_missing.empty()) Talk("cannot open '" + VisibleText(target) + "'");
  for (const StepFailure& failure : m_missing) {
    Talk((opened ? "warning: " : "") + FailureText(failure));
  }
  return opened;
}

WideString DocumentSession::Text(HRESULT (STDMETHODCALLTYPE IClient::*member)(BSTR*)) const {
  Bstr text;
  CheckResult((m_client.Get()->*member)(text.Receive()));
  return text.Text();
}

WideString DocumentSession::Url() const { return Text(&IClient::get_URL); }
WideString DocumentSession::WebUrl() const { return Text(&IClient::get_WebURL); }
WideString DocumentSession::ListId() const { return Text(&IClient::get_ListID); }
WideString DocumentSession::ContentTypeId() const { return Text(&IClient::get_ContentTypeID); }
WideString DocumentSession::DocId() const { return Text(&IClient::get_DocID); }
WideString DocumentSession::Holder() const { return Text(&IClient::get_SharePointCheckoutUser); }

Reply<std::optional<std::string>> DocumentSession::AskMeta(const WideString& key) const {
  Reply<std::optional<std::string>> reply;
  Guard(reply.exception, [&] {
    Variant value;
    reply.result = m_client->get_FrontPageMetaInfo(Bstr(key).Get(), value.Receive());
    if (value.Get().vt != VT_EMPTY) reply.value = VariantText(value.Get());
  });
  return reply;
}

Reply<VARIANT_BOOL> DocumentSession::CheckIn(const WideString& comment, INT type) const {
  Reply<VARIANT_BOOL> reply;
  Guard(reply.exception,
        [&] { reply.result = m_client->CheckIn(Bstr(comment).Get(), type, &reply.value); });
  return reply;
}

}  // namespace velandoc
