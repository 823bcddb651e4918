// Loads the component's library, uses an object of each class and unloads the library again, many
// times in one process, and looks whether anything stays behind.
//
//   load_cycles LIBRARY CYCLES
//
// Prints how long the first cycle took, and the process's state after half of them and at the end;
// exit code 0 if they are alike, 1 if not, 2 if the library can't be used or does not go.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/com.h"
#include "resources/prog_ids.h"

#ifdef _WIN32
#include <psapi.h>
#else
#include <dlfcn.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#endif

namespace {

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

/// What a leak would make larger.
struct State {
  long long memory = 0;   // bytes in use
  long long handles = 0;  // handles, or descriptors
  long long mappings = 0;
};

#ifdef _WIN32
// Counted in pages, of which the system's own libraries take some now and then.
constexpr long long kMemorySlack = 64 * 1024;
HMODULE Load(const char* path) { return LoadLibraryA(path); }
template <class Function>
Function Find(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}
/// False if it is still there.
bool Unload(HMODULE library, const char* path) {
  FreeLibrary(library);
  return GetModuleHandleA(path) == nullptr;
}
State Now() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                       sizeof counters);
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  return {static_cast<long long>(counters.PrivateUsage), static_cast<long long>(handles), 0};
}
#else
constexpr long long kMemorySlack = 4096;
void* Load(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
template <class Function>
Function Find(void* library, const char* name) {
  return reinterpret_cast<Function>(dlsym(library, name));
}
bool Unload(void* library, const char* path) {
  dlclose(library);
  void* const still = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  if (still != nullptr) dlclose(still);
  return still == nullptr;
}
State Now() {
  malloc_trim(0);
  std::ifstream maps("/proc/self/maps");
  const std::string text{std::istreambuf_iterator<char>(maps), {}};
  long long descriptors = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    ++descriptors;
  }
  long long mappings = 0;
  for (const char c : text) mappings += c == '\n';
  return {static_cast<long long>(mallinfo2().uordblks), descriptors, mappings};
}
#endif

/// One object of the class, called by name as a script does.
bool Use(GetClassObject getClassObject, const CLSID& clsid) {
  IClassFactory* factory = nullptr;
  if (FAILED(getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)))) {
    return false;
  }
  IDispatch* object = nullptr;
  const HRESULT made =
      factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object));
  factory->Release();
  if (FAILED(made)) return false;
  OLECHAR unknown[] = {'N', 'o', 'n', 'e', 0};
  LPOLESTR name = unknown;
  DISPID id = 0;
  const HRESULT asked = object->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id);
  object->Release();
  return asked == DISP_E_UNKNOWNNAME;
}

bool Cycle(const char* path) {
  auto* const library = Load(path);
  if (library == nullptr) return false;
  const auto getClassObject = Find<GetClassObject>(library, "DllGetClassObject");
  const auto canUnload = Find<CanUnloadNow>(library, "DllCanUnloadNow");
  bool used = getClassObject != nullptr && canUnload != nullptr;
  for (const velandoc::ComponentProgId& entry : velandoc::kComponentProgIds) {
    used = used && Use(getClassObject, entry.clsid);
  }
  used = used && canUnload() == S_OK;
  return Unload(library, path) && used;
}

void Print(const char* when, const State& state) {
  std::printf("%s: %lld bytes, %lld handles, %lld mappings\n", when, state.memory, state.handles,
              state.mappings);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int cycles = std::atoi(argv[2]);
  CoInitialize(nullptr);
  State early;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 1; i <= cycles; ++i) {
    if (!Cycle(argv[1])) {
      std::printf("cycle %d failed\n", i);
      return 2;
    }
    if (i == 1) {
      const std::chrono::duration<double, std::milli> first =
          std::chrono::steady_clock::now() - start;
      std::printf("first cycle: %.2f ms\n", first.count());
    }
    if (i == cycles / 2) early = Now();
  }
  const State late = Now();
  CoUninitialize();
  Print("early", early);
  Print("late", late);
  const bool flat = late.memory <= early.memory + kMemorySlack && late.handles <= early.handles &&
                    late.mappings <= early.mappings + 2;
  std::printf("%s\n", flat ? "flat" : "growing");
  return flat ? 0 : 1;
}
