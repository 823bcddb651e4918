// What the web services of the site have in common.
#pragma once

#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standin/application.h"
#include "standin/site_store.h"
#include "standin/soap_message.h"

namespace velandoc::standin {

// Thrown by an operation that cannot do what it was asked.
class SoapRefusal : public std::exception {
 public:
  explicit SoapRefusal(std::string text, std::string errorCode = {})
      : m_text(std::move(text)), m_errorCode(std::move(errorCode)) {}

  const char* what() const noexcept override { return m_text.c_str(); }
  const std::string& ErrorCode() const { return m_errorCode; }

 private:
  std::string m_text;
  std::string m_errorCode;
};

struct SoapContext {
  Site& site;
  Web& web;
  const Request& request;
  const SoapCall& call;

  // The parameter's text; empty where an optional one was left out.
  const std::string& Text(std::string_view name) const;
  // Null where an optional one was left out.
  const XmlElement* Element(std::string_view name) const;
  // Throws SoapRefusal if the site does not know who calls.
  const User& Caller() const;
};

struct SoapParameterRule {
  std::string_view name;
  bool isXml = false;  // else there are no elements in it
  bool isOptional = false;
};

struct SoapOperation {
  std::string_view name;
  std::vector<SoapParameterRule> parameters;  // in the order in which they come
  // What stands inside the element NAMEResult. Throws SoapRefusal.
  std::string (*answer)(const SoapContext&);
};

// Serves WEB/_vti_bin/NAME on any host, any number of slashes between the web's path and
// _vti_bin; a path that is no web's is a 404. Strict about SOAPAction (no quotes), Content-Type,
// the envelope, and the parameters' names, order and namespace: what a lenient server forgives
// would otherwise never be found.
class SoapService : public Application {
 public:
  bool Serves(const Request& request) const override;
  Response Answer(const Request& request) override;

 protected:
  // Borrows everything. `path` is the part from /_vti_bin on, in small letters.
  SoapService(SiteStore& sites, std::string_view title, std::string_view path,
              std::string_view serviceNamespace, std::span<const SoapOperation> operations)
      : m_sites(sites),
        m_title(title),
        m_path(path),
        m_namespace(serviceNamespace),
        m_operations(operations) {}

 private:
  Response Page() const;
  Response Call(const Request& request);
  Response Run(const Request& request, const SoapCall& call, const SoapOperation& operation);
  std::string WebPath(const Request& request) const;

  SiteStore& m_sites;
  std::string_view m_title;
  std::string_view m_path;
  std::string_view m_namespace;
  std::span<const SoapOperation> m_operations;
};

}  // namespace velandoc::standin
