#include "standin/soap_service.h"

#include <algorithm>

#include "standin/caller.h"
#include "standin/text.h"
#include "standin/utf8.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kContentType = "text/xml; charset=utf-8";

bool FitsRule(const SoapParameter& parameter, const SoapParameterRule& rule) {
  return parameter.name == rule.name && (rule.isXml || parameter.children.empty());
}

bool AreRight(const std::vector<SoapParameter>& parameters,
              const std::vector<SoapParameterRule>& rules) {
  std::size_t next = 0;
  for (const SoapParameterRule& rule : rules) {
    const bool isThere = next < parameters.size() && FitsRule(parameters[next], rule);
    if (!isThere && !rule.isOptional) return false;
    if (isThere) ++next;
  }
  return next == parameters.size();
}

std::string NamesOf(const std::vector<SoapParameterRule>& rules) {
  if (rules.empty()) return "none";
  std::string names;
  for (const SoapParameterRule& rule : rules) {
    if (!names.empty()) names += ", ";
    names += rule.name;
  }
  return names;
}

}  // namespace

const XmlElement* SoapContext::Element(std::string_view name) const {
  const auto found =
      std::find_if(call.parameters.begin(), call.parameters.end(),
                   [name](const SoapParameter& parameter) { return parameter.name == name; });
  return found == call.parameters.end() ? nullptr : &*found;
}

const std::string& SoapContext::Text(std::string_view name) const {
  static const std::string none;
  const XmlElement* element = Element(name);
  return element ? element->text : none;
}

const User& SoapContext::Caller() const {
  const User* user = FindCaller(site, request);
  if (!user) throw SoapRefusal("Access denied.", "0x80070005");
  return *user;
}

bool SoapService::Serves(const Request& request) const {
  return LowerAscii(request.path).ends_with(m_path);
}

Response SoapService::Answer(const Request& request) {
  if (request.method == "POST") return Call(request);
  if (request.method == "GET" || request.method == "HEAD") return Page();
  return HtmlPage(405, "Method Not Allowed", "This page takes GET and POST.");
}

Response SoapService::Page() const {
  std::string names;
  for (const SoapOperation& operation : m_operations) {
    if (!names.empty()) names += ", ";
    names += operation.name;
  }
  return HtmlPage(200, m_title, "Operations: " + names + ".");
}

Response SoapService::Call(const Request& request) {
  const std::string* type = request.Find("Content-Type");
  if (!type || *type != kContentType)
    return SoapFault("Client", "The Content-Type has to be " + std::string(kContentType) + ".");
  const std::string* action = request.Find("SOAPAction");
  if (!action || !action->starts_with(m_namespace))
    return SoapFault("Client", "The SOAPAction header names no operation of this service: " +
                                   (action ? *action : std::string("there is none")));
  std::string problem;
  const auto call = ParseSoapCall(request.body, problem);
  if (!call) return SoapFault("Client", problem);
  if (call->serviceNamespace != m_namespace)
    return SoapFault("Client", "The call stands in another namespace.");
  if (call->method != action->substr(m_namespace.size()))
    return SoapFault("Client", "The call is another one than the SOAPAction header says.");
  for (const SoapOperation& operation : m_operations) {
    if (operation.name != call->method) continue;
    if (AreRight(call->parameters, operation.parameters)) return Run(request, *call, operation);
    return SoapFault("Client", "The parameters of " + call->method +
                                   ", in this order: " + NamesOf(operation.parameters));
  }
  return SoapFault("Client", "This service has no operation " + call->method + ".");
}

Response SoapService::Run(const Request& request, const SoapCall& call,
                          const SoapOperation& operation) {
  return m_sites.With([&](Site& site) {
    Web* web = site.FindWeb(WebPath(request));
    if (!web) return HtmlPage(404, "Not Found", "There is no web at this address.");
    try {
      const std::string name(operation.name);
      std::string content = "<" + name + "Response" + XmlAttribute("xmlns", m_namespace) + "><";
      content += name + "Result>" + operation.answer(SoapContext{site, *web, request, call});
      content += "</" + name + "Result></" + name + "Response>";
      return SoapAnswer(content);
    } catch (const SoapRefusal& refusal) {
      return ServiceFault(refusal.what(), refusal.ErrorCode());
    }
  });
}

std::string SoapService::WebPath(const Request& request) const {
  std::string_view path = request.path;
  path.remove_suffix(m_path.size());
  return UnescapeUrl(path);
}

}  // namespace velandoc::standin
