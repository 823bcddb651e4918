// The methods of the FrontPage server. A handler is one method: it knows the path that the request
// goes to, carries the parameters, and knows what to take from the answer.
//
// Handlers are local objects of the flow that uses them, each for one request; the connection
// borrows them. Nobody deletes one through a base, and none has a virtual destructor.
#pragma once

#include <list>
#include <utility>

#include "connection/url_components.h"
#include "frontpage/front_page_result.h"
#include "platform/msxml.h"
#include "platform/text.h"

namespace velandoc {

class CFrontPageConnection;

/// Name and value, in the order in which they go out.
using FrontPageParams = std::list<std::pair<WideString, WideString>>;

class CFrontPageHandler {
 public:
  /// The object name of the request, up to the query of the connection's URL.
  virtual WideString GetPath();
  /// Reads the answer that `connection` has received and leaves a copy of m_result in it. The bytes
  /// are taken for text of the system's ANSI code page, although requests go out as UTF-8: servers
  /// write each byte of their UTF-8 as a character of its own, and what was read so is sent back
  /// unit by unit (see EncodeFormValue).
  ///
  /// A page that does not load leaves handler and connection as they were, and nobody is told.
  /// Raises `_com_error` for a DOM that fails later, and with E_OUTOFMEMORY.
  virtual void HandleResponse(CFrontPageConnection& connection);
  /// Takes what the method wants from a page that has loaded. Raises `_com_error` for a failing DOM
  /// call.
  virtual void ParseDocument(IXMLDOMDocument2* document);

  void AddParam(WideView name, WideView value);

  WideString m_path;
  FrontPageParams m_params;
  CFrontPageResult m_result;

 protected:
  explicit CFrontPageHandler(WideView path) : m_path(path) {}
  /// Status and meta-info, which every page may hold.
  void ParseCommon(IXMLDOMDocument2* document);
};

/// A method that is addressed below a web.
class CFrontPageDocUrlHandlerBase : public CFrontPageHandler {
 public:
  WideString GetPath() override;

  WideString m_webPathArg;  // relative to the server, "/" for its root
  WideString m_fileUrl;     // of a document or folder, relative to the web

 protected:
  CFrontPageDocUrlHandlerBase(WideView webPath, WideView fileUrl);
};

/// "getDocsMetaInfo": what the server knows of one document or folder.
class CMetaInfoHandler final : public CFrontPageDocUrlHandlerBase {
 public:
  CMetaInfoHandler(WideView webPath, WideView fileUrl);
  void ParseDocument(IXMLDOMDocument2* document) override;

  CDocumentMeta m_foundMeta;  // of a well-formed answer only; its flags tell of what
};

/// "open service": m_result.m_meta has the pairs of the service, the caller's login among them.
class COpenServiceHandler final : public CFrontPageHandler {
 public:
  COpenServiceHandler();
  void ParseDocument(IXMLDOMDocument2* document) override;
};

/// "url to web url": splits a document's URL into its web and the rest.
class CUrlToWebUrlHandler final : public CFrontPageHandler {
 public:
  /// `url` goes out as it is written: an escape in it is escaped once more. Null, or one that does
  /// not parse, goes out as an empty one.
  explicit CUrlToWebUrlHandler(LPCWSTR url);
  void ParseDocument(IXMLDOMDocument2* document) override;

  UrlComponents m_components;
  // Nothing writes or reads these two; they keep the results where they have always been.
  WideString m_unusedWebUrl;
  WideString m_unusedFileUrl;
  WideString m_webUrlResult;
  WideString m_fileUrlResult;
};

}  // namespace velandoc
