#include "standin/rpc_service.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "standin/caller.h"
#include "standin/rpc_form.h"
#include "standin/rpc_page.h"
#include "standin/site_meta.h"
#include "standin/utf8.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kUrlPath = "/_vti_bin/shtml.dll/_vti_rpc";
constexpr std::string_view kAuthorPath = "/_vti_bin/_vti_aut/author.dll";
constexpr std::string_view kContentType = "application/x-vermeer-urlencoded";
constexpr std::string_view kVersion = ":12.0.0.6665";

constexpr std::uint32_t kNotFound = 589830;
constexpr std::uint32_t kBadRequest = 262150;

using Parameters = std::vector<RpcParameter>;

struct Refusal {
  std::uint32_t status;
  std::string message;
};

struct Call {
  Site& site;
  Web& web;
  const Request& request;
  Parameters parameters;

  const std::string& Value(std::size_t index) const { return parameters.at(index).value; }
};

void CheckFlag(const RpcParameter& parameter) {
  if (parameter.value != "true" && parameter.value != "false")
    throw Refusal{kBadRequest, parameter.name + " is true or false."};
}

// A list in brackets, of paths below the web, separated by semicolons; a backslash in front of a
// character takes its meaning away. An empty list asks for the root.
std::vector<std::string> ReadUrlList(const std::string& text) {
  constexpr std::size_t kMostUrls = 100;
  if (text.size() < 2 || !text.starts_with('[') || !text.ends_with(']'))
    throw Refusal{kBadRequest, "url_list is a list in brackets."};
  std::vector<std::string> urls(1);
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    if (text[i] == ';') {
      urls.emplace_back();
      if (urls.size() > kMostUrls) throw Refusal{kBadRequest, "url_list is too long."};
    } else {
      if (text[i] == '\\' && i + 2 < text.size()) ++i;
      urls.back() += text[i];
    }
  }
  return urls;
}

void OpenService(const Call& call, RpcPage& page) {
  page.Paragraph("service");
  page.OpenList();
  page.Item("service_name", call.web.path);
  page.Meta(WebMeta(CallerLogin(call.site, call.request)));
  page.CloseList();
}

// Says where a URL would lie; nothing needs to be there.
void UrlToWebUrl(const Call& call, RpcPage& page) {
  std::string path = UnescapeUrl(call.Value(1));
  if (!IsUtf8(path)) path = Utf8OfLatin1(path);
  Web* web = path.starts_with('/') ? call.site.FindWebOf(path) : nullptr;
  if (!web) throw Refusal{kNotFound, "There is no web for the URL \"" + path + "\"."};
  std::string file(PathInWeb(*web, path));
  if (const DocumentPlace place = FindDocument(*web, file); place.document) {
    file = place.Path();
  } else if (const auto folder = FindFolder(*web, file)) {
    file = folder->path;
  }
  page.Paragraph("webUrl", web->path);
  page.Paragraph("fileUrl", file);
}

void GetDocsMetaInfo(const Call& call, RpcPage& page) {
  if (call.Value(1) != "/") throw Refusal{kBadRequest, "service_name is \"/\"."};
  CheckFlag(call.parameters[3]);
  CheckFlag(call.parameters[4]);
  std::vector<DocumentPlace> documents;
  std::vector<FolderPlace> folders;
  std::vector<std::string> failed;
  for (std::string& url : ReadUrlList(call.Value(2))) {
    const DocumentPlace document = FindDocument(call.web, url);
    const auto folder = FindFolder(call.web, url);
    if (document.document) {
      documents.push_back(document);
    } else if (folder) {
      folders.push_back(*folder);
    } else {
      failed.push_back(std::move(url));
    }
  }
  page.Paragraph("document_list");
  page.OpenList();
  for (const DocumentPlace& place : documents) {
    page.OpenList();
    page.Item("document_name", place.Path());
    page.Meta(DocumentMeta(call.site, place));
    page.CloseList();
  }
  page.CloseList();
  if (!folders.empty()) {
    page.Paragraph("urldirs");
    page.OpenList();
    for (const FolderPlace& place : folders) {
      page.OpenList();
      page.Item("url", place.path);
      page.Meta(FolderMeta(place));
      page.CloseList();
    }
    page.CloseList();
  }
  if (!failed.empty()) {
    page.Paragraph("failedUrls");
    page.OpenList();
    for (const std::string& url : failed) page.Line(url);
    page.CloseList();
  }
}

struct Method {
  std::string_view name;
  bool hasVersion;
  std::string_view path;
  std::array<std::string_view, 5> parameters;  // as many as are not empty
  void (*answer)(const Call&, RpcPage&);
};

constexpr Method kMethods[] = {
    {"open service", false, kAuthorPath, {"method"}, OpenService},
    {"url to web url", true, kUrlPath, {"method", "url"}, UrlToWebUrl},
    {"getDocsMetaInfo",
     true,
     kAuthorPath,
     {"method", "service_name", "url_list", "listHiddenDocs", "listLinkInfo"},
     GetDocsMetaInfo},
};

std::string TextOf(const Method& method) {
  std::string text(method.name);
  if (method.hasVersion) text += kVersion;
  return text;
}

const Method& FindMethod(const Parameters& parameters, std::string_view path) {
  const std::string& wanted = parameters.front().value;
  for (const Method& method : kMethods)
    if (wanted == TextOf(method) && path.ends_with(method.path)) return method;
  throw Refusal{kBadRequest, "There is no method \"" + wanted + "\" at this address."};
}

void CheckParameters(const Method& method, const Parameters& parameters) {
  const auto count =
      static_cast<std::size_t>(std::count_if(method.parameters.begin(), method.parameters.end(),
                                             [](std::string_view name) { return !name.empty(); }));
  bool areRight = parameters.size() == count;
  for (std::size_t i = 0; areRight && i < count; ++i)
    areRight = parameters[i].name == method.parameters.at(i);
  if (!areRight)
    throw Refusal{kBadRequest, "The parameters of " + std::string(method.name) + " are others."};
}

void CheckHeader(const Request& request, std::string_view name) {
  const std::string* value = request.Find(name);
  if (!value || *value != kContentType)
    throw Refusal{kBadRequest, std::string(name) + " has to be " + std::string(kContentType) + "."};
}

Parameters ReadParameters(const Request& request) {
  CheckHeader(request, "Content-Type");
  CheckHeader(request, "X-Vermeer-Content-Type");
  std::string problem;
  auto parameters = ParseRpcForm(request.body, problem);
  if (!parameters) throw Refusal{kBadRequest, problem};
  if (parameters->front().name != "method")
    throw Refusal{kBadRequest, "The first parameter is the method."};
  return std::move(*parameters);
}

// What stands in front of the service's own path.
std::string WebPath(const Request& request) {
  std::string_view path = request.path;
  path.remove_suffix(path.ends_with(kUrlPath) ? kUrlPath.size() : kAuthorPath.size());
  return UnescapeUrl(path);
}

Response Page(const std::string& page) {
  return TextAnswer(200, "application/x-vermeer-rpc", page);
}

Response AnswerCall(Site& site, Web& web, const Request& request) {
  // A server that has not understood the method has nothing to repeat.
  std::string name;
  try {
    Parameters parameters = ReadParameters(request);
    const Method& method = FindMethod(parameters, request.path);
    name = method.name;
    name += kVersion;
    CheckParameters(method, parameters);
    RpcPage page(name);
    method.answer(Call{site, web, request, std::move(parameters)}, page);
    return Page(page.Finish());
  } catch (const Refusal& refusal) {
    RpcPage page(name);
    page.Status(refusal.status, refusal.message);
    return Page(page.Finish());
  }
}

}  // namespace

bool RpcService::Serves(const Request& request) const {
  return request.path.ends_with(kUrlPath) || request.path.ends_with(kAuthorPath);
}

Response RpcService::Answer(const Request& request) {
  if (request.method != "POST") return HtmlPage(405, "Method Not Allowed", "This page takes POST.");
  return m_sites.With([&request](Site& site) {
    Web* web = site.FindWeb(WebPath(request));
    return web ? AnswerCall(site, *web, request)
               : HtmlPage(404, "Not Found", "There is no web at this address.");
  });
}

}  // namespace velandoc::standin
