#include "standin/hdfs_service.h"

#include <algorithm>
#include <string>
#include <utility>

#include "standin/hdfs_call.h"
#include "standin/hdfs_data_node.h"
#include "standin/hdfs_error.h"
#include "standin/hdfs_name_node.h"
#include "standin/hdfs_operation.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

// An answer that is there before the body.
class SettledSink final : public BodySink {
 public:
  explicit SettledSink(Response answer) : m_answer(std::move(answer)) {
    // The body may still be on its way.
    m_answer.close = true;
  }

  const Response* Settled() const override { return &m_answer; }
  bool NeedsBytes() const override { return false; }
  void Add(std::string_view) override {}
  void Skip(std::uint64_t) override {}
  Response Finish() override { return m_answer; }

 private:
  Response m_answer;
};

// The JSON writer of HttpFS escapes slashes and ends the line.
void WriteAsHttpFs(Response& response) {
  const auto isJson = [](const Header& header) {
    return header.name == "Content-Type" && header.value.starts_with("application/json");
  };
  if (std::none_of(response.headers.begin(), response.headers.end(), isJson)) return;
  std::string text;
  for (const char c : response.body) {
    if (c == '/') text += '\\';
    text += c;
  }
  response.body = text + '\n';
}

// Runs `answer` and turns what it throws into the answer that a client sees.
template <typename Function>
Response Guarded(const HdfsSettings& settings, const Function& answer) {
  Response response;
  try {
    response = answer();
  } catch (const HdfsError& error) {
    response = HdfsErrorAnswer(error);
  } catch (const BadHdfsAddress& error) {
    response = HtmlPage(400, "Bad Request", error.what());
  }
  if (settings.isHttpFs) WriteAsHttpFs(response);
  return response;
}

bool IsUpload(const HdfsCall& call, const Request& request) {
  return call.isForData && call.op == "CREATE" && request.method == "PUT";
}

Response AnswerCall(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
                    const Request& request) {
  if (!call.isForData) return AnswerAsNameNode(store, settings, call, request);
  const HdfsOperation& operation = FindHdfsOperation(call.op, request.method);
  if (operation.kind == HdfsOperationKind::kOpen)
    return OpenAsDataNode(store, settings, call, request);
  throw HdfsError(HdfsFault::kIllegalArgument, "Invalid operation " + call.op);
}

}  // namespace

bool HdfsService::Serves(const Request& request) const {
  return ParseHdfsCall(request).has_value();
}

Response HdfsService::Answer(const Request& request) {
  const HdfsSettings settings = m_store.Settings();
  const HdfsCall call = ParseHdfsCall(request).value();
  Response response =
      Guarded(settings, [&] { return AnswerCall(m_store, settings, call, request); });
  // A data node ends every connection.
  if (call.isForData && !settings.isHttpFs) response.close = true;
  return response;
}

std::unique_ptr<BodySink> HdfsService::OpenBody(const Request& request) {
  const HdfsSettings settings = m_store.Settings();
  const HdfsCall call = ParseHdfsCall(request).value();
  if (!IsUpload(call, request)) {
    // A client that asks whether to send its body is redirected before it does.
    if (!request.Lists("Expect", "100-continue")) return nullptr;
    return std::make_unique<SettledSink>(Answer(request));
  }
  const std::string* type = request.Find("Content-Type");
  if (settings.isHttpFs && !(type && EqualNoCase(*type, "application/octet-stream")))
    return std::make_unique<SettledSink>(
        HtmlPage(400, "Bad Request",
                 "Data upload requests must have content-type set to 'application/octet-stream'"));
  std::unique_ptr<BodySink> sink;
  Response refusal = Guarded(settings, [&] {
    sink = CreateAsDataNode(m_store, settings, call, request);
    return Response();
  });
  if (!sink) sink = std::make_unique<SettledSink>(std::move(refusal));
  return sink;
}

}  // namespace velandoc::standin
