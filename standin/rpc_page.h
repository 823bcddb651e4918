// An answer page of FrontPage RPC: HTML of an old kind, whose items are opened on a line of their
// own and never closed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velandoc::standin {

// Keys and raw values, in the order of the page.
using MetaInfo = std::vector<std::pair<std::string, std::string>>;

class RpcPage {
 public:
  // The head, and the method that is answered.
  explicit RpcPage(std::string_view method);

  // "<p>name=value" and "<li>name=value", the value escaped.
  void Paragraph(std::string_view name, std::string_view value = {});
  void Item(std::string_view name, std::string_view value = {});
  // "<li>text".
  void Line(std::string_view text);
  void OpenList() { m_text += "<ul>\n"; }
  void CloseList() { m_text += "</ul>\n"; }
  // The item "meta_info=" with its list.
  void Meta(const MetaInfo& meta);
  // The block that tells of a failure.
  void Status(std::uint32_t status, std::string_view message);

  // The whole page.
  std::string Finish() const { return m_text + "</body>\n</html>\n"; }

 private:
  void Text(std::string_view text);

  std::string m_text;
};

// The letters " & ' ; < = > \ { } and all bytes above 126 as decimal references, byte by byte:
// what is two bytes of UTF-8 becomes two references.
std::string EscapeRpcText(std::string_view text);

}  // namespace velandoc::standin
