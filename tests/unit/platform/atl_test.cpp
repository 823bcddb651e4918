// Objects, aggregates, class factories, the object map, lock counts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "platform/atl/atl_module.h"
#include "platform/owners.h"
#include "tests/support/memory_registry.h"
#include "tests/support/recording_runtime.h"

namespace velandoc {
namespace {

constexpr CLSID kClass = {0x11111111, 0x1111, 0x1111, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr CLSID kHiddenClass = {0x22222222, 0x1111, 0x1111, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr CLSID kUnknownClass = {0x33333333, 0x1111, 0x1111, {1, 2, 3, 4, 5, 6, 7, 8}};

/// An object with two interfaces of the system's that are easy to fill.
class CProbe : public ISupportErrorInfo,
               public CComObjectRootEx<CComSingleThreadModel>,
               public CComCoClass<CProbe, &kClass> {
 public:
  BEGIN_COM_MAP(CProbe)
  COM_INTERFACE_ENTRY(ISupportErrorInfo)
  END_COM_MAP()

  CProbe() { ++alive; }
  HRESULT FinalConstruct() {
    if (held) {
      // An object may hand itself out while it is set up.
      IUnknown* self = _GetRawUnknown();
      self->AddRef();
      self->Release();
    }
    return constructed;
  }
  void FinalRelease() { ++released; }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID) override { return S_FALSE; }

  static inline int alive = 0;
  static inline int released = 0;
  static inline HRESULT constructed = S_OK;
  static inline bool held = false;

 protected:
  ~CProbe() { --alive; }
};

class TestModule final : public CAtlDllModuleT<TestModule> {
 public:
  HRESULT AddCommonRGSReplacements(IRegistrarBase*) override { return S_OK; }
  static std::span<_ATL_OBJMAP_ENTRY> GetObjectMap() {
    static std::array<_ATL_OBJMAP_ENTRY, 2> map = {
        {{&kHiddenClass, 108, nullptr}, AtlObjectEntry<CProbe>(108)}};
    return map;
  }
  static WORD GetAppIdScript() { return 101; }
  static TypeLibrary GetTypeLibrary() { return {{}, &GUID_NULL, 1, 0, 0, OLESTR(""), {}}; }
};

class AtlTest : public testing::Test {
 protected:
  AtlTest() {
    CProbe::alive = 0;
    CProbe::released = 0;
    CProbe::constructed = S_OK;
    CProbe::held = false;
  }
  void TearDown() override {
    EXPECT_EQ(CProbe::alive, 0);
    EXPECT_EQ(module.GetLockCount(), 0);
  }

  ComPtr<IClassFactory> Factory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(module.GetClassObject(kClass, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    return factory;
  }

  TestModule module;
};

TEST_F(AtlTest, AnObjectLocksTheModuleAndDiesWithItsLastReference) {
  CComObject<CProbe>* object = nullptr;
  ASSERT_EQ(CComObject<CProbe>::CreateInstance(&object), S_OK);
  EXPECT_EQ(module.GetLockCount(), 1);
  EXPECT_EQ(module.DllCanUnloadNow(), S_FALSE);
  EXPECT_EQ(object->AddRef(), 1U);
  EXPECT_EQ(object->AddRef(), 2U);
  EXPECT_EQ(object->Release(), 1U);
  EXPECT_EQ(object->Release(), 0U);
  EXPECT_EQ(CProbe::alive, 0);
  EXPECT_EQ(CProbe::released, 1);
  EXPECT_EQ(module.DllCanUnloadNow(), S_OK);
}

TEST_F(AtlTest, QueryInterfaceAnswersForTheMapAndForIUnknown) {
  CComObject<CProbe>* object = nullptr;
  ASSERT_EQ(CComObject<CProbe>::CreateInstance(&object), S_OK);
  const ComPtr<ISupportErrorInfo> owner(object);
  ComPtr<IUnknown> identity;
  ComPtr<ISupportErrorInfo> interfacePointer;
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, identity.ReceiveVoid()), S_OK);
  EXPECT_EQ(object->QueryInterface(IID_ISupportErrorInfo, interfacePointer.ReceiveVoid()), S_OK);
  EXPECT_EQ(identity.Get(), interfacePointer.Get());
  void* other = &other;
  EXPECT_EQ(object->QueryInterface(IID_IDispatch, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(AtlTest, AFailedFinalConstructFailsTheCreation) {
  CProbe::constructed = E_ACCESSDENIED;
  CComObject<CProbe>* object = nullptr;
  EXPECT_EQ(CComObject<CProbe>::CreateInstance(&object), E_ACCESSDENIED);
  EXPECT_EQ(object, nullptr);
  IUnknown* made = reinterpret_cast<IUnknown*>(this);
  EXPECT_EQ(CProbe::CreateObject(nullptr, IID_IUnknown, reinterpret_cast<void**>(&made)),
            E_ACCESSDENIED);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(CComObject<CProbe>::CreateInstance(nullptr), E_POINTER);
}

TEST_F(AtlTest, AnObjectMayHandItselfOutWhileItIsSetUp) {
  CProbe::held = true;
  ComPtr<IUnknown> object;
  EXPECT_EQ(CProbe::CreateObject(nullptr, IID_IUnknown, object.ReceiveVoid()), S_OK);
  EXPECT_EQ(CProbe::alive, 1);
}

TEST_F(AtlTest, CreationThatLacksTheInterfaceLeavesNothing) {
  void* object = &object;
  EXPECT_EQ(CProbe::CreateObject(nullptr, IID_IDispatch, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

/// An outer object that aggregates a probe and shows the probe's interface as its own.
class Outer final : public IUnknown {
 public:
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP QueryInterface(REFIID riid, void** object) override {
    if (IsEqualIID(riid, IID_IUnknown)) {
      AddRef();
      *object = this;
      return S_OK;
    }
    return inner->QueryInterface(riid, object);
  }
  ComPtr<IUnknown> inner;
  ULONG references = 1;
};

TEST_F(AtlTest, AnAggregatedObjectShowsItsOuterObject) {
  Outer outer;
  ASSERT_EQ(Factory()->CreateInstance(&outer, IID_IUnknown, outer.inner.ReceiveVoid()), S_OK);
  EXPECT_EQ(outer.references, 1U) << "the inner object must not hold its outer object";
  ComPtr<ISupportErrorInfo> inside;
  ASSERT_EQ(outer.QueryInterface(IID_ISupportErrorInfo, inside.ReceiveVoid()), S_OK);
  EXPECT_EQ(outer.references, 2U) << "an interface inside counts on the outer object";
  ComPtr<IUnknown> identity;
  ASSERT_EQ(inside->QueryInterface(IID_IUnknown, identity.ReceiveVoid()), S_OK);
  EXPECT_EQ(identity.Get(), &outer);
  ComPtr<IUnknown> own;
  ASSERT_EQ(outer.inner->QueryInterface(IID_IUnknown, own.ReceiveVoid()), S_OK);
  EXPECT_EQ(own.Get(), outer.inner.Get()) << "the inner object's own identity stays its own";
  void* none = &none;
  EXPECT_EQ(outer.inner->QueryInterface(IID_IDispatch, &none), E_NOINTERFACE);
  EXPECT_EQ(outer.inner->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  own.Reset();
  identity.Reset();
  inside.Reset();
  EXPECT_EQ(outer.references, 1U);
  outer.inner.Reset();
  EXPECT_EQ(CProbe::released, 1);
}

TEST_F(AtlTest, AnAggregateIsAskedForIUnknownAlone) {
  Outer outer;
  void* object = &object;
  EXPECT_EQ(Factory()->CreateInstance(&outer, IID_ISupportErrorInfo, &object),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_F(AtlTest, APolyObjectServesAloneAndInside) {
  using Creator = CComCreator<CComPolyObject<CProbe>>;
  ComPtr<ISupportErrorInfo> alone;
  ASSERT_EQ(Creator::CreateInstance(nullptr, IID_ISupportErrorInfo, alone.ReceiveVoid()), S_OK);
  EXPECT_EQ(alone->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
  EXPECT_EQ(module.GetLockCount(), 1);
  alone.Reset();
  Outer outer;
  ASSERT_EQ(Creator::CreateInstance(&outer, IID_IUnknown, outer.inner.ReceiveVoid()), S_OK);
  ComPtr<ISupportErrorInfo> inside;
  ASSERT_EQ(outer.QueryInterface(IID_ISupportErrorInfo, inside.ReceiveVoid()), S_OK);
  EXPECT_EQ(outer.references, 2U);
}

TEST_F(AtlTest, TheFactoryIsMadeOnceAndKept) {
  const ComPtr<IClassFactory> first = Factory();
  EXPECT_EQ(Factory().Get(), first.Get());
}

TEST_F(AtlTest, AKeptFactoryIsNoLockAHeldOneIs) {
  ComPtr<IClassFactory> factory = Factory();
  EXPECT_EQ(module.GetLockCount(), 1);
  {
    const ComPtr<IClassFactory> second = Factory();
    EXPECT_EQ(module.GetLockCount(), 1) << "one lock, however many references";
  }
  EXPECT_EQ(module.GetLockCount(), 1);
  factory.Reset();
  EXPECT_EQ(module.DllCanUnloadNow(), S_OK);
}

TEST_F(AtlTest, LockServerLocksTheModule) {
  ComPtr<IClassFactory> factory = Factory();
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory.Reset();
  EXPECT_EQ(module.GetLockCount(), 1);
  EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
  EXPECT_EQ(module.GetLockCount(), 0);
}

TEST_F(AtlTest, FactoriesOfManyThreadsAreOne) {
  std::array<ComPtr<IClassFactory>, 8> factories;
  std::vector<std::thread> threads;
  for (ComPtr<IClassFactory>& factory : factories) {
    threads.emplace_back([this, &factory] {
      for (int i = 0; i < 200; ++i) {
        module.GetClassObject(kClass, IID_IClassFactory, factory.ReceiveVoid());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const ComPtr<IClassFactory>& factory : factories) {
    EXPECT_EQ(factory.Get(), factories[0].Get());
  }
  EXPECT_EQ(module.GetLockCount(), 1);
}

TEST_F(AtlTest, GetClassObjectFailuresLeaveNull) {
  void* object = &object;
  EXPECT_EQ(module.GetClassObject(kUnknownClass, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  object = &object;
  EXPECT_EQ(module.GetClassObject(kHiddenClass, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE)
      << "a class without a creator is registered, and not served";
  EXPECT_EQ(object, nullptr);
  object = &object;
  EXPECT_EQ(module.GetClassObject(kClass, IID_IDispatch, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module.GetClassObject(kClass, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(AtlTest, ATerminatedModuleServesNothing) {
  ComPtr<IClassFactory> held = Factory();
  module.Term();
  void* object = &object;
  EXPECT_EQ(module.GetClassObject(kClass, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(module.GetClassObject(kClass, IID_IUnknown, &object), E_UNEXPECTED);
  EXPECT_EQ(object, nullptr);
  held.Reset();
}

TEST_F(AtlTest, CreateInstanceWantsARoomForTheResult) {
  EXPECT_EQ(Factory()->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(AtlTest, TheModulePathMayHoldQuotes) {
  // Only the registrar sees the doubled quotes; what is written has the path as it is. The path of
  // this program has none, so the text of the rule is tested by way of a replacement.
  MemoryRegistry registry;
  const PortScope<Registry> scope(registry);
  CRegObject registrar;
  ASSERT_EQ(registrar.AddReplacement(OLESTR("MODULE"), AtlEscapeQuotes(OLESTR("/it's/a")).c_str()),
            S_OK);
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { A = s '%MODULE%' }")), S_OK);
  EXPECT_THAT(registry.Dump(), testing::Contains("HKCR\\A\\[]=/it's/a"));
}

}  // namespace
}  // namespace velandoc
