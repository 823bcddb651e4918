// What holds of threads on Linux, where no apartment brings a call home: references and creation
// are any thread's. Also run with ThreadSanitizer (preset tsan), which sees a race that was lucky.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "host/exports.h"
#include "host/velandoc_module.h"
#include "platform/owners.h"
#include "resources/prog_ids.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

constexpr std::size_t kThreads = 8;
constexpr std::array kClasses = {kClientClass, kServerCheckClass, kHdfsClientClass,
                                 kHdfsClientWinHttpClass};

/// Runs `work` on all threads; each waits for the others to be there.
void RunAtOnce(const std::function<void(std::size_t thread)>& work) {
  std::atomic<std::size_t> ready{0};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&ready, &work, i] {
      ++ready;
      while (ready < kThreads) std::this_thread::yield();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

ComPtr<IUnknown> Make(REFCLSID clsid) {
  ComPtr<IClassFactory> factory;
  ComPtr<IUnknown> object;
  if (DllGetClassObject(clsid, IID_IClassFactory, factory.ReceiveVoid()) == S_OK) {
    factory->CreateInstance(nullptr, IID_IUnknown, object.ReceiveVoid());
  }
  EXPECT_TRUE(object);
  return object;
}

TEST(ThreadsTest, ReferencesAreCountedByAnyThread) {
  for (const CLSID& clsid : kClasses) {
    const ComPtr<IUnknown> object = Make(clsid);
    ASSERT_TRUE(object);
    RunAtOnce([&object](std::size_t) {
      for (int i = 0; i < 3000; ++i) {
        object->AddRef();
        ComPtr<IDispatch> dispatch;
        EXPECT_EQ(object->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()), S_OK);
        object->Release();
      }
    });
    EXPECT_EQ(object->AddRef(), 2U) << "a reference was lost or is left";
    EXPECT_EQ(object->Release(), 1U);
  }
  EXPECT_EQ(Module().GetLockCount(), 0);
}

TEST(ThreadsTest, TheLastReleaseIsAnyThreads) {
  for (const CLSID& clsid : kClasses) {
    for (int round = 0; round < 100; ++round) {
      ComPtr<IUnknown> object = Make(clsid);
      ASSERT_TRUE(object);
      std::array<IUnknown*, kThreads> shares;
      for (IUnknown*& share : shares) {
        share = object.Get();
        share->AddRef();
      }
      object.Reset();
      std::atomic<int> last{0};
      RunAtOnce([&](std::size_t thread) { last += shares[thread]->Release() == 0 ? 1 : 0; });
      ASSERT_EQ(last, 1);
      ASSERT_EQ(Module().GetLockCount(), 0);
    }
  }
}

TEST(ThreadsTest, ObjectsAreMadeByAnyThread) {
  RunAtOnce([](std::size_t thread) {
    for (std::size_t i = 0; i < 200; ++i) {
      const ComPtr<IUnknown> object = Make(kClasses[(thread + i) % kClasses.size()]);
      EXPECT_TRUE(object);
      EXPECT_EQ(DllCanUnloadNow(), S_FALSE) << "this thread's object is there";
    }
  });
  EXPECT_EQ(Module().GetLockCount(), 0);
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

// An error object is what the calling thread's last failure left; the others' objects work on.
TEST(ThreadsTest, FailedRequestsLeaveTheirErrorToTheirThread) {
  RunAtOnce([](std::size_t thread) {
    ComPtr<IHdfsClient> client;
    ASSERT_EQ(Make(kHdfsClientClass)->QueryInterface(IID_IHdfsClient, client.ReceiveVoid()), S_OK);
    EXPECT_EQ(client->put_ServerName(Bstr(u"127.0.0.1").Get()), S_OK);
    // Nothing listens there.
    EXPECT_EQ(client->put_Port(1), S_OK);
    const bool fails = thread % 2 == 0;
    for (int i = 0; i < 20; ++i) {
      Bstr text;
      ComPtr<IErrorInfo> error;
      EXPECT_EQ(fails ? client->GetText(text.Receive()) : client->get_BaseUrl(text.Receive()),
                fails ? E_FAIL : S_OK);
      EXPECT_EQ(GetErrorInfo(0, error.Receive()), fails ? S_OK : S_FALSE);
    }
  });
  EXPECT_EQ(Module().GetLockCount(), 0);
}

}  // namespace
}  // namespace velandoc
