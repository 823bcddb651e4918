// The compiled type library against what the module says of it, and the resources beside it.
#include <gtest/gtest.h>

#include <map>
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

/// "kind flags 'help' {guid} name" of every type in the library, by its name.
std::map<std::wstring, std::wstring> Types(ITypeLib& library) {
  std::map<std::wstring, std::wstring> types;
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    Bstr name;
    Bstr help;
    EXPECT_EQ(library.GetTypeInfo(i, info.Receive()), S_OK);
    EXPECT_EQ(
        info->GetDocumentation(MEMBERID_NIL, name.Receive(), help.Receive(), nullptr, nullptr),
        S_OK);
    EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
    const wchar_t* const kinds[] = {L"enum",     L"record",  L"module", L"interface",
                                    L"dispatch", L"coclass", L"alias",  L"union"};
    std::wstring text = kinds[attributes->typekind];
    if ((attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0) text += L" dual";
    if ((attributes->wTypeFlags & TYPEFLAG_FNONEXTENSIBLE) != 0) text += L" nonextensible";
    if ((attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0) text += L" creatable";
    wchar_t guid[40] = L"";
    StringFromGUID2(attributes->guid, guid, 40);
    if (attributes->typekind != TKIND_ENUM) text.append(L" ").append(guid);
    types[name.Text()] = text + L" '" + help.Text() + L"'";
    info->ReleaseTypeAttr(attributes);
  }
  return types;
}

TEST(TypeLibraryTest, ItDeclaresTheseTypesAndNoOthers) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive()), S_OK);
  const std::map<std::wstring, std::wstring> expected = {
      {L"HDFSOptions", L"enum ''"},
      {L"IServerCheck",
       L"dispatch dual nonextensible {9989FD0D-43C5-4FA7-B6D7-020A323FEF2D} 'IServerCheck "
       L"Interface'"},
      {L"IClient",
       L"dispatch dual nonextensible {3BA03214-9530-4099-99D4-5FD7962D2088} 'IClient Interface'"},
      {L"IHdfsClient",
       L"dispatch dual nonextensible {0A21C224-5BA3-4FA0-B699-42A0CABD6FFA} 'IHdfsClient "
       L"Interface'"},
      {L"IConnectionError",
       L"dispatch dual nonextensible {18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1} 'IConnectionError "
       L"Interface'"},
      {L"IRawRequest", L"interface {54809172-7A4E-4F66-A8A4-9650EDAF5CFA} 'IRawRequest Interface'"},
      {L"Client", L"coclass creatable {6884BC45-2A7D-4747-AF48-A5EECC5BF9A9} 'Client Class'"},
      {L"ServerCheck",
       L"coclass creatable {1D477FCE-048A-4657-BFDF-6DD165043E36} 'ServerCheck Class'"},
      {L"HdfsClient",
       L"coclass creatable {5EBD1685-DEAC-437B-A090-846F578C2F99} 'HdfsClient Class'"},
      {L"HdfsClientWinHttp",
       L"coclass creatable {4A45908C-EF4C-4D12-951B-9595D9CC208B} 'HdfsClientWinHttp Class'"},
  };
  // The system's structures that the members name are copied into the library.
  std::map<std::wstring, std::wstring> found = Types(*library);
  std::erase_if(found, [&](const auto& type) {
    return expected.count(type.first) == 0 && type.first != L"Unknown" &&
           type.second.find(L"coclass") != 0 && type.second.find(L"dispatch") != 0;
  });
  EXPECT_EQ(found, expected);
}

TEST(TypeLibraryTest, TheOptionsAreAnEnumeration) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive()), S_OK);
  ComPtr<ITypeInfo> info;
  MEMBERID member = 0;
  USHORT found = 1;
  wchar_t name[] = L"HDFSOptions";
  ASSERT_EQ(library->FindName(name, 0, info.Receive(), &member, &found), S_OK);
  ASSERT_EQ(found, 1);
  std::map<std::wstring, LONG> values;
  for (UINT i = 0; i < 2; ++i) {
    VARDESC* variable = nullptr;
    ASSERT_EQ(info->GetVarDesc(i, &variable), S_OK);
    Bstr text;
    EXPECT_EQ(info->GetDocumentation(variable->memid, text.Receive(), nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_EQ(variable->varkind, VAR_CONST);
    values[text.Text()] = variable->lpvarValue->lVal;
    info->ReleaseVarDesc(variable);
  }
  VARDESC* third = nullptr;
  EXPECT_TRUE(FAILED(info->GetVarDesc(2, &third)));
  EXPECT_EQ(values, (std::map<std::wstring, LONG>{{L"scHdfsIntegratedWindowsAuthentication", 1},
                                                  {L"scHdfsReportSSLCertificateErrors", 2}}));
}

TEST(TypeLibraryTest, TheCoclassesOfferTheirInterfaces) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive()), S_OK);
  struct {
    const CLSID& clsid;
    std::vector<std::wstring> interfaces;
  } const rows[] = {
      {CLSID_Client, {L"IClient default"}},
      {CLSID_ServerCheck, {L"IServerCheck default"}},
      {CLSID_HdfsClient, {L"IHdfsClient default", L"IRawRequest"}},
      {CLSID_HdfsClientWinHttp, {L"IHdfsClient default"}},
  };
  for (const auto& row : rows) {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(library->GetTypeInfoOfGuid(row.clsid, info.Receive()), S_OK);
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    std::vector<std::wstring> interfaces;
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
      HREFTYPE reference = 0;
      ComPtr<ITypeInfo> implemented;
      Bstr name;
      INT flags = 0;
      EXPECT_EQ(info->GetRefTypeOfImplType(i, &reference), S_OK);
      EXPECT_EQ(info->GetRefTypeInfo(reference, implemented.Receive()), S_OK);
      EXPECT_EQ(
          implemented->GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr),
          S_OK);
      EXPECT_EQ(info->GetImplTypeFlags(i, &flags), S_OK);
      interfaces.push_back(name.Text() + (flags == IMPLTYPEFLAG_FDEFAULT ? L" default" : L""));
    }
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(interfaces, row.interfaces);
  }
}

TEST(TypeLibraryTest, RawRequestsAreNoAutomation) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(GetModulePath().c_str(), REGKIND_NONE, library.Receive()), S_OK);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(library->GetTypeInfoOfGuid(IID_IRawRequest, info.Receive()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_INTERFACE);
  EXPECT_EQ(attributes->cFuncs, 1);
  info->ReleaseTypeAttr(attributes);
  FUNCDESC* function = nullptr;
  ASSERT_EQ(info->GetFuncDesc(0, &function), S_OK);
  BSTR names[3] = {};
  UINT count = 0;
  EXPECT_EQ(info->GetNames(function->memid, names, 3, &count), S_OK);
  EXPECT_EQ(count, 3U);
  EXPECT_STREQ(names[0], L"Request");
  EXPECT_STREQ(names[1], L"URL");
  EXPECT_STREQ(names[2], L"Data");
  for (const BSTR name : names) SysFreeString(name);
  EXPECT_EQ(function->oVft, 3 * 8) << "behind the three of IUnknown";
  EXPECT_EQ(function->cParams, 2);
  EXPECT_EQ(function->lprgelemdescParam[1].paramdesc.wParamFlags,
            PARAMFLAG_FOUT | PARAMFLAG_FRETVAL);
  info->ReleaseFuncDesc(function);
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
