// The dialog's resources as they lie in the built library, which is in the tests' own folder.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

#include "platform/module_path.h"

namespace velandoc::test {
namespace {

class LibraryResources : public ::testing::Test {
 protected:
  LibraryResources() {
    const WideString program = GetModulePath();
    const WideString path = program.substr(0, program.rfind(L'\\')) + L"\\velandoc.dll";
    m_library = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  }
  ~LibraryResources() override {
    if (m_library != nullptr) FreeLibrary(m_library);
  }
  LibraryResources(const LibraryResources&) = delete;
  LibraryResources& operator=(const LibraryResources&) = delete;

  void SetUp() override { ASSERT_NE(m_library, nullptr) << "velandoc.dll has not been built"; }

  std::string_view Find(WORD id, LPCWSTR type) {
    const HRSRC found = FindResourceW(m_library, MAKEINTRESOURCEW(id), type);
    if (found == nullptr) return {};
    const void* bytes = LockResource(LoadResource(m_library, found));
    return {static_cast<const char*>(bytes), SizeofResource(m_library, found)};
  }

  HMODULE m_library = nullptr;
};

/// Reads numbers and texts one after the other.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : m_bytes(bytes) {}

  template <class Number>
  Number Take() {
    Number number{};
    if (m_at + sizeof(number) > m_bytes.size()) return number;
    std::memcpy(&number, m_bytes.data() + m_at, sizeof(number));
    m_at += sizeof(number);
    return number;
  }
  std::wstring TakeText() {
    std::wstring text;
    while (m_at < m_bytes.size()) {
      const auto unit = Take<wchar_t>();
      if (unit == 0) break;
      text += unit;
    }
    return text;
  }
  void Align() { m_at = (m_at + 3) & ~std::size_t{3}; }
  /// But for what fills up the last four bytes.
  bool AtEnd() const { return m_at <= m_bytes.size() && m_bytes.size() - m_at < 4; }

 private:
  const std::string_view m_bytes;
  std::size_t m_at = 0;
};

void ExpectButton(Bytes& bytes, DWORD id, const std::wstring& text, int x, DWORD style) {
  bytes.Align();
  EXPECT_EQ(bytes.Take<DWORD>(), 0U) << "help";
  EXPECT_EQ(bytes.Take<DWORD>(), 0U) << "extended style";
  EXPECT_EQ(bytes.Take<DWORD>(), style);
  EXPECT_EQ(bytes.Take<short>(), x);
  EXPECT_EQ(bytes.Take<short>(), 197);
  EXPECT_EQ(bytes.Take<short>(), 50);
  EXPECT_EQ(bytes.Take<short>(), 14);
  EXPECT_EQ(bytes.Take<DWORD>(), id);
  EXPECT_EQ(bytes.TakeText(), L"BUTTON") << "a class's name has no case";
  EXPECT_EQ(bytes.TakeText(), text);
  EXPECT_EQ(bytes.Take<WORD>(), 0) << "creation data";
}

TEST_F(LibraryResources, TheTemplateFieldByField) {
  const std::string_view found = Find(201, RT_DIALOG);
  ASSERT_FALSE(found.empty());
  Bytes bytes(found);
  EXPECT_EQ(bytes.Take<WORD>(), 1) << "version";
  EXPECT_EQ(bytes.Take<WORD>(), 0xFFFF) << "an extended template";
  EXPECT_EQ(bytes.Take<DWORD>(), 0U) << "help";
  EXPECT_EQ(bytes.Take<DWORD>(), 0U) << "extended style";
  EXPECT_EQ(bytes.Take<DWORD>(),
            DWORD{DS_SETFONT} | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME);
  EXPECT_EQ(bytes.Take<WORD>(), 2) << "controls";
  EXPECT_EQ(bytes.Take<short>(), 0);
  EXPECT_EQ(bytes.Take<short>(), 0);
  EXPECT_EQ(bytes.Take<short>(), 399);
  EXPECT_EQ(bytes.Take<short>(), 218);
  EXPECT_EQ(bytes.Take<WORD>(), 0) << "no menu";
  EXPECT_EQ(bytes.Take<WORD>(), 0) << "no class of its own";
  EXPECT_EQ(bytes.TakeText(), L"Edit SharePoint Fields");
  EXPECT_EQ(bytes.Take<WORD>(), 8) << "points";
  EXPECT_EQ(bytes.Take<WORD>(), 400) << "weight";
  EXPECT_EQ(bytes.Take<BYTE>(), 0) << "not italic";
  EXPECT_EQ(bytes.Take<BYTE>(), 1) << "character set";
  EXPECT_EQ(bytes.TakeText(), L"MS Shell Dlg");
  constexpr DWORD kButton = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
  ExpectButton(bytes, 1, L"OK", 289, kButton | BS_DEFPUSHBUTTON);
  ExpectButton(bytes, 2, L"Cancel", 342, kButton);
  EXPECT_TRUE(bytes.AtEnd());
}

TEST_F(LibraryResources, TheScriptIsPlainTextOfItsSize) {
  const std::string_view script = Find(1, L"JAVASCRIPT");
  EXPECT_EQ(script.size(), 1006U);
  std::size_t functions = 0;
  for (const char* name :
       {"function GetFieldValue(NameIn, Required)", "function AlertRequired(NameIn, DisplayName)",
        "function NoArguments()"}) {
    const std::size_t at = script.find(name);
    ASSERT_NE(at, std::string_view::npos) << name;
    EXPECT_GE(at, functions) << "in this order";
    functions = at;
  }
  EXPECT_NE(script.find("//alert(\"scheis\")"), std::string_view::npos);
  for (std::size_t at = 0; at < script.size(); ++at) {
    const auto byte = static_cast<unsigned char>(script[at]);
    EXPECT_LT(byte, 0x80);
    if (byte == '\n') {
      EXPECT_TRUE(at > 0 && script[at - 1] == '\r') << at;
    }
    if (byte == '\r') {
      EXPECT_TRUE(at + 1 < script.size() && script[at + 1] == '\n') << at;
    }
  }
}

TEST_F(LibraryResources, TheSkeletonPageIsThere) {
  const std::string_view page = Find(104, RT_HTML);
  for (const char* part :
       {"BODY ID=CEditFieldsDlg", "ButtonOK", "ButtonCancel", "TODO: Place controls here."}) {
    EXPECT_NE(page.find(part), std::string_view::npos) << part;
  }
}

}  // namespace
}  // namespace velandoc::test
