// A ServerRuntime for tests that records the calls in order and answers as told.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/server_runtime.h"

namespace velandoc {

class RecordingRuntime : public ServerRuntime {
 public:
  /// "operation" or "operation detail", in order.
  std::vector<std::string> calls;
  /// What an operation returns, by its name; S_OK for those that are not here.
  std::map<std::string, HRESULT> results = {{"NdrDllGetClassObject", CLASS_E_CLASSNOTAVAILABLE}};
  bool offersForUser = true;
  LCID locale = 0x407;
  /// The library that the last type library operation was given.
  TypeLibrary library{};
  HINSTANCE proxyModule = nullptr;
  /// "machine: CALL, CALL, unlocked" once a registration has ended: the calls under its lock.
  std::string locked;

  LCID GetThreadLocale() override {
    calls.push_back("GetThreadLocale");
    return locale;
  }
  BOOL SetThreadLocale(LCID lcid) override {
    calls.push_back("SetThreadLocale " + std::to_string(lcid));
    locale = lcid;
    return TRUE;
  }
  HANDLE LockRegistration(bool forUser) override {
    locked = forUser ? "user:" : "machine:";
    m_lockedAt = calls.size();
    return this;
  }
  HRESULT UnlockRegistration(HANDLE lock) override {
    EXPECT_EQ(lock, this);
    for (std::size_t i = m_lockedAt; i < calls.size(); ++i) locked += " " + calls[i] + ",";
    locked += " unlocked";
    return ResultOf("UnlockRegistration");
  }
  HRESULT RegisterTypeLib(const TypeLibrary& given) override {
    library = given;
    return Answer("RegisterTypeLib");
  }
  HRESULT UnRegisterTypeLib(const TypeLibrary& given) override {
    library = given;
    return Answer("UnRegisterTypeLib");
  }
  bool OffersTypeLibForUser() override { return offersForUser; }
  HRESULT RegisterTypeLibForUser(const TypeLibrary& given) override {
    library = given;
    return Answer("RegisterTypeLibForUser");
  }
  HRESULT UnRegisterTypeLibForUser(const TypeLibrary& given) override {
    library = given;
    return Answer("UnRegisterTypeLibForUser");
  }
  void SetProxyModule(HINSTANCE module) override {
    calls.push_back("SetProxyModule");
    proxyModule = module;
  }
  HRESULT NdrDllCanUnloadNow() override { return Answer("NdrDllCanUnloadNow"); }
  HRESULT NdrDllGetClassObject(REFCLSID, REFIID, void**) override {
    return Answer("NdrDllGetClassObject");
  }
  HRESULT NdrDllRegisterProxy() override { return Answer("NdrDllRegisterProxy"); }
  HRESULT NdrDllUnregisterProxy() override { return Answer("NdrDllUnregisterProxy"); }

 private:
  HRESULT Answer(const std::string& operation) {
    calls.push_back(operation);
    return ResultOf(operation);
  }
  HRESULT ResultOf(const std::string& operation) const {
    const auto found = results.find(operation);
    return found != results.end() ? found->second : S_OK;
  }

  std::size_t m_lockedAt = 0;
};

}  // namespace velandoc
