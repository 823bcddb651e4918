#include "hosts/command/hdfs_caller.h"

#include <exception>

#include "hdfs/hdfs_client.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "hosts/command/talk.h"
#include "hosts/text_encoding.h"
#include "platform/atl/com_object.h"
#include "platform/code_page.h"

namespace velandoc {
namespace {

template <class Client>
ComPtr<IHdfsClient> Create() {
  CComObject<Client>* object = nullptr;
  CheckResult(CComObject<Client>::CreateInstance(&object));
  return ComPtr<IHdfsClient>(object);
}

/// The bytes that the WinHTTP client took for text of the ANSI code page. JSON is UTF-8.
std::string AnsiBytes(WideView text) {
  if (text.empty()) return {};
  std::string bytes(text.size() * 2, '\0');  // no code page has more for a unit
  const int count = CurrentPort<CodePage>().WideCharToMultiByte(
      CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
      static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

bool CannotConnect(const HdfsFailure& failure) {
  return failure.error == ERROR_INTERNET_CANNOT_CONNECT ||
         failure.error == ERROR_INTERNET_NAME_NOT_RESOLVED;
}

/// Whether another name node may do what this one did not, without anything being done twice.
bool MayAskAnother(const HdfsFailure& failure, const HdfsCall& call) {
  if (failure.node != "name node") return false;
  if (failure.IsStandby() || CannotConnect(failure)) return true;
  return call.repeatable && failure.status == 0 && failure.error != 0;
}

}  // namespace

ComPtr<IHdfsClient> CreateHdfsClient(HdfsStack stack) {
  switch (stack) {
    case HdfsStack::kWinInet:
      return Create<CHdfsClient>();
    case HdfsStack::kWinHttp:
      return Create<CHdfsClientWinHttp>();
  }
  return nullptr;
}

std::optional<HdfsFailure> HdfsCaller::RunAt(const NameNode& node, const HdfsCall& call,
                                             const std::function<HRESULT(IHdfsClient&)>& step) {
  HdfsExchangeLog& log = HdfsExchangeLog::OfThread();
  log.Clear();
  HRESULT result = E_FAIL;
  std::string raised;
  try {
    const ComPtr<IHdfsClient> client = CreateHdfsClient(m_options.stack);
    CheckResult(client->put_BaseUrl(Bstr(WideFromUtf8(node.url)).Get()));
    // BaseUrl takes 80 and 443 for no port at all.
    if (node.port) CheckResult(client->put_Port(*node.port));
    CheckResult(client->put_UserName(Bstr(WideFromUtf8(m_options.user)).Get()));
    CheckResult(client->put_HdfsPath(Bstr(WideFromUtf8(call.path)).Get()));
    CheckResult(client->put_Op(Bstr(WideFromUtf8(call.operation)).Get()));
    if (!m_options.checksCertificates) CheckResult(client->put_Options(0));
    result = step(*client);
  } catch (const _com_error& error) {
    result = error.Error();
    raised = "the component raised " + ResultText(result);
  } catch (const std::exception& error) {
    raised = std::string("the component raised an exception: ") + error.what();
  }
  if (!log.Exchanges().empty()) {
    const HdfsExchange& last = log.Exchanges().back();
    if (last.status != call.wanted || last.error != 0) {
      return ExplainExchange(call.operation, call.path, last, call.wanted);
    }
  }
  if (SUCCEEDED(result) && raised.empty()) return std::nullopt;
  if (raised.empty()) raised = "the component answered " + ResultText(result);
  return LocalFailure(call.operation, call.path, raised, kExitFailure);
}

std::optional<HdfsFailure> HdfsCaller::Run(const HdfsCall& call,
                                           const std::function<HRESULT(IHdfsClient&)>& step) {
  const std::vector<NameNode>& nodes = m_nodes.All();
  const std::size_t first = m_nodes.Active();
  std::string earlier;
  for (std::size_t turn = 0;; ++turn) {
    const std::size_t index = (first + turn) % nodes.size();
    std::optional<HdfsFailure> failure = RunAt(nodes[index], call, step);
    if (!failure || !MayAskAnother(*failure, call)) {
      m_nodes.SetActive(index);
      return failure;
    }
    if (turn + 1 == nodes.size()) {
      failure->what += earlier;
      return failure;
    }
    earlier += "; before it " + failure->host + ": " + failure->what;
  }
}

std::optional<HdfsFailure> HdfsCaller::ReadText(const char* operation, const std::string& path,
                                                std::string& text) {
  return Run({operation, path}, [&](IHdfsClient& client) {
    Bstr answer;
    const HRESULT result = client.GetText(answer.Receive());
    if (FAILED(result)) return result;
    const bool isAnsi = m_options.stack == HdfsStack::kWinHttp;
    text = isAnsi ? AnsiBytes(answer.View()) : Utf8FromWide(answer.View());
    return result;
  });
}

}  // namespace velandoc
