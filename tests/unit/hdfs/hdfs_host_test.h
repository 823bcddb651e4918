// What a host of either HDFS client sees, with files in memory and a debugger that is listened to.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/owners.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/scripted_error_services.h"
#include "velandoc_idl.h"

namespace velandoc::testing {

class HdfsHostTest : public ::testing::Test {
 protected:
  /// `clsid`: the class that the client's error objects speak for.
  HdfsHostTest(ComPtr<IHdfsClient> (*make)(), REFCLSID clsid);
  ~HdfsHostTest() override;
  void TearDown() override;

  /// "code message" of ConnectionError; "none".
  std::string Error();
  /// "source: description" of the thread's error object, which is taken; "none".
  std::string OnTheThread() const;
  std::string Op();
  const std::string* File(LPCOLESTR name) const;

  /// "VERB target flags" of the calls that open a request, of either port.
  static std::vector<std::string> RequestsOf(const std::vector<std::string>& calls);

  MemoryFileSystem m_files;
  ScriptedErrorServices m_services;
  PortScope<FileSystem> m_filesScope{m_files};
  PortScope<ErrorServices> m_servicesScope{m_services};
  ComPtr<IHdfsClient> m_client;
  const CLSID m_clsid;
};

}  // namespace velandoc::testing
