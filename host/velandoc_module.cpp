#include "host/velandoc_module.h"

#include <array>

#include "document/client.h"
#include "document/server_check.h"
#include "hdfs/hdfs_client.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

constexpr LPCOLESTR kAppId = OLESTR("{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}");
constexpr WORD kAppIdScript = 101;

}  // namespace

HRESULT CVelandocModule::AddCommonRGSReplacements(IRegistrarBase* registrar) {
  return FAILED(registrar->AddReplacement(OLESTR("APPID"), kAppId)) ? E_OUTOFMEMORY : S_OK;
}

std::span<_ATL_OBJMAP_ENTRY> CVelandocModule::GetObjectMap() {
  // Registration walks the classes in this order, which is fixed.
  static std::array map = {
      AtlObjectEntry<CClient>(103),
      AtlObjectEntry<CHdfsClient>(109),
      AtlObjectEntry<CHdfsClientWinHttp>(110),
      AtlObjectEntry<CServerCheck>(108),
  };
  return map;
}

WORD CVelandocModule::GetAppIdScript() { return kAppIdScript; }

TypeLibrary CVelandocModule::GetTypeLibrary() {
  // As velandoc.idl has it; a unit test compares the two.
  static constexpr TypeLibraryInterface kInterfaces[] = {
      {&IID_IServerCheck, OLESTR("IServerCheck")},
      {&IID_IClient, OLESTR("IClient")},
      {&IID_IHdfsClient, OLESTR("IHdfsClient")},
      {&IID_IConnectionError, OLESTR("IConnectionError")},
  };
  return {.path = {},
          .id = &LIBID_VelandocLib,
          .major = 1,
          .minor = 0,
          .lcid = 0x409,
          .helpString = OLESTR("Velandoc 1.0 Type Library"),
          .interfaces = kInterfaces};
}

CVelandocModule& Module() {
  static CVelandocModule module;
  return module;
}

}  // namespace velandoc
