// What the tests of CClient share: an object, a scripted network that answers an open's seven
// requests, and what the object says, as lines of text.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "document/client.h"
#include "platform/atl/com_object.h"
#include "platform/owners.h"
#include "tests/support/answer_page.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc::testing {

inline constexpr LPCWSTR kDocumentUrl = OLESTR("http://docs.example.test/sites/a/Shared/b.xlsx");
inline constexpr char kDocId[] = "{5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E}";
inline constexpr char kListId[] = "{3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}";

/// The answers of one open in the order of the requests. As made, they are those of a server on
/// which all is well; a test replaces what it is about.
struct OpenAnswers {
  OpenAnswers();

  Answer openService;
  Answer userInfo;
  Answer webUrl;
  Answer document;
  Answer folder;
  Answer contentType;
  Answer row;

  std::vector<Answer> InOrder() const;
};

Answer Page(const std::string& lines);
Answer UserInfoAnswer(const std::string& attributes);
/// The columns of a content type, as Field elements.
Answer ContentTypeAnswer(const std::string& fields);
/// One row with these attributes.
Answer RowAnswer(const std::string& attributes);
/// The pairs of a document that is found: its etag, and `more`.
PagePairs DocumentPairs(PagePairs more = {});

class ClientTest : public ServiceTest {
 protected:
  ClientTest();

  /// Opens `url` with the answers as they stand; what InitFromURL said, which must return S_OK.
  bool Open(WideView url = kDocumentUrl);
  /// A new object for the next open.
  void Renew();

  /// A property's text; "S_OK" is left out, any other result stands in front.
  std::string Text(HRESULT (STDMETHODCALLTYPE IClient::*get)(BSTR*));
  /// "true", "false", or the failure and whether something was written.
  std::string Flag(HRESULT (STDMETHODCALLTYPE IClient::*ask)(VARIANT_BOOL*));
  std::string Number(HRESULT (STDMETHODCALLTYPE IClient::*get)(LONGLONG*));
  std::string Integer(HRESULT (STDMETHODCALLTYPE IClient::*get)(INT*));
  std::string MetaInfo(WideView key);
  /// The members that an open fills, a line each; empty ones are left out.
  std::string State();

  OpenAnswers m_site;
  ComPtr<CClient> m_client;
};

}  // namespace velandoc::testing
