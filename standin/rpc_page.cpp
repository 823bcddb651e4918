#include "standin/rpc_page.h"

namespace velandoc::standin {

std::string EscapeRpcText(std::string_view text) {
  constexpr std::string_view kEscaped = "\"&';<=>\\{}";
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 126 || kEscaped.find(c) != std::string_view::npos) {
      result += "&#" + std::to_string(byte) + ";";
    } else {
      result += c;
    }
  }
  return result;
}

RpcPage::RpcPage(std::string_view method)
    : m_text("<html><head><title>vermeer RPC packet</title></head>\n<body>\n") {
  Paragraph("method", method);
}

void RpcPage::Paragraph(std::string_view name, std::string_view value) {
  m_text += "<p>";
  m_text += name;
  m_text += '=';
  Text(value);
}

void RpcPage::Item(std::string_view name, std::string_view value) {
  m_text += "<li>";
  m_text += name;
  m_text += '=';
  Text(value);
}

void RpcPage::Line(std::string_view text) {
  m_text += "<li>";
  Text(text);
}

void RpcPage::Meta(const MetaInfo& meta) {
  Item("meta_info");
  OpenList();
  for (const auto& [key, value] : meta) {
    Line(key);
    Line(value);
  }
  CloseList();
}

void RpcPage::Status(std::uint32_t status, std::string_view message) {
  Paragraph("status");
  OpenList();
  Item("status", std::to_string(status));
  Item("osstatus", "0");
  Item("msg", message);
  Item("osmsg");
  CloseList();
}

void RpcPage::Text(std::string_view text) {
  m_text += EscapeRpcText(text);
  m_text += '\n';
}

}  // namespace velandoc::standin
