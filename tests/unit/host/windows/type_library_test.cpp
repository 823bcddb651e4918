// The compiled type library against what the module says of it, and the resources beside it.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/velandoc_module.h"
#include "platform/module_path.h"
#include "platform/owners.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

TEST(TypeLibraryTest, TheModuleDescribesItAsItIsCompiled) {
  const TypeLibrary described = CVelandocModule::GetTypeLibrary();
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive()), S_OK);
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
  EXPECT_TRUE(IsEqualGUID(attributes->guid, *described.id));
  EXPECT_EQ(attributes->wMajorVerNum, described.major);
  EXPECT_EQ(attributes->wMinorVerNum, described.minor);
  EXPECT_EQ(attributes->lcid, described.lcid);
  library->ReleaseTLibAttr(attributes);

  Bstr name;
  Bstr help;
  ASSERT_EQ(library->GetDocumentation(-1, name.Receive(), help.Receive(), nullptr, nullptr), S_OK);
  EXPECT_EQ(name.Text(), L"VelandocLib");
  EXPECT_EQ(help.Text(), described.helpString);

  // What RegisterTypeLib registers: the interfaces with a dispatch interface or for automation.
  std::set<std::wstring> compiled;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    TYPEKIND kind{};
    ASSERT_EQ(library->GetTypeInfoType(i, &kind), S_OK);
    if (kind != TKIND_DISPATCH) continue;
    Bstr declared;
    ASSERT_EQ(library->GetDocumentation(static_cast<INT>(i), declared.Receive(), nullptr, nullptr,
                                        nullptr),
              S_OK);
    compiled.insert(declared.Text());
    for (const TypeLibraryInterface& entry : described.interfaces) {
      if (declared.Text() != entry.name) continue;
      ComPtr<ITypeInfo> info;
      ASSERT_EQ(library->GetTypeInfo(i, info.Receive()), S_OK);
      TYPEATTR* type = nullptr;
      ASSERT_EQ(info->GetTypeAttr(&type), S_OK);
      EXPECT_TRUE(IsEqualGUID(type->guid, *entry.id));
      info->ReleaseTypeAttr(type);
    }
  }
  std::set<std::wstring> named;
  for (const TypeLibraryInterface& entry : described.interfaces) named.insert(entry.name);
  EXPECT_EQ(compiled, named);
}

TEST(ResourcesTest, TheStringTableHoldsTheErrorTexts) {
  struct {
    UINT id;
    const wchar_t* text;
  } const rows[] = {
      {100, L"Velandoc"},
      {101, L"Unknown connection error with server."},
      {102, L"HDFS Client Connect"},
      {103, L"Error reading HDFS file from network."},
      {104, L"HDFS Client Upload"},
      {105, L"HDFS CreateFolder"},
  };
  for (const auto& row : rows) {
    wchar_t text[100] = L"";
    LoadStringW(GetModuleInstance(), row.id, text, 100);
    EXPECT_STREQ(text, row.text);
  }
  wchar_t none[10];
  EXPECT_EQ(LoadStringW(GetModuleInstance(), 106, none, 10), 0);
}

}  // namespace
}  // namespace velandoc
