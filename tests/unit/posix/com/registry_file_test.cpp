// The registry's text files: their form, what is not read, who may write at the same time.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "platform/posix/com/registry.h"
#include "platform/posix/com/registry_file.h"
#include "platform/posix/com/registry_text.h"
#include "tests/support/registry_scope.h"

namespace velandoc {
namespace {

using testing::RegistryScope;

constexpr char kHead[] = "Windows Registry Editor Version 5.00\n";
constexpr LPCOLESTR kHive = OLESTR("HKEY_LOCAL_MACHINE");

struct TextRow {
  const char* body;
  bool isRead;
  const char* why;
};

TEST(RegistryText, ReadsWhatIsWellFormedOnly) {
  const TextRow rows[] = {
      {"", true, "an empty registry"},
      {"\n; comment\n\n[HKEY_LOCAL_MACHINE\\Software]\n", true, "comments and blank lines"},
      {"[hkey_local_machine\\a]\n@=\"x\"\n", true, "the hive's name in any case"},
      {"[HKEY_LOCAL_MACHINE]\r\n\"a\"=dword:0000001f\r\n", true, "line ends of Windows"},
      {"[HKEY_LOCAL_MACHINE\\a]\n  \"a\" = \"b\"  \n", true, "blanks"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex(7):61,00,\\\n  00,00\n", true, "a continued line"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex:\n", true, "no bytes"},
      {"[HKEY_LOCAL_MACHINE\\a[b]c]\n", true, "brackets in a name"},
      {"[HKEY_CURRENT_USER\\a]\n", false, "another hive"},
      {"[-HKEY_LOCAL_MACHINE\\a]\n", false, "a deletion"},
      {"[HKEY_LOCAL_MACHINE\\a\n", false, "an open bracket"},
      {"@=\"x\"\n", false, "a value outside of a key"},
      {"[HKEY_LOCAL_MACHINE\\a]\n@=-\n", false, "a deletion of a value"},
      {"[HKEY_LOCAL_MACHINE\\a]\n@=\"x\n", false, "an open quote"},
      {"[HKEY_LOCAL_MACHINE\\a]\n@=\"x\" y\n", false, "something behind the text"},
      {"[HKEY_LOCAL_MACHINE\\a]\n@=\"\\x\"\n", false, "an unknown escape"},
      {"[HKEY_LOCAL_MACHINE\\a]\n@=\"x\\\n", false, "an escape at the end"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=dword:\n", false, "no number"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=dword:123456789\n", false, "a long number"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=dword:xy\n", false, "no digits"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex:1g\n", false, "no hexadecimal digit"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex:01,\n", false, "a comma and nothing"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex:01,\\", false, "cut off in a continued line"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=hex(:01\n", false, "an open parenthesis"},
      {"[HKEY_LOCAL_MACHINE\\a]\n\"a\"=\"1\"\n\"A\"=\"2\"\n", false, "a name twice"},
      {"[HKEY_LOCAL_MACHINE\\a]\nname\n", false, "a line that is nothing"},
      {"[HKEY_LOCAL_MACHINE\\\xC3\x28]\n", false, "ill-formed UTF-8"},
      {"[HKEY_LOCAL_MACHINE\\\xED\xA0\x80]\n", false, "a surrogate in UTF-8"},
      {"[HKEY_LOCAL_MACHINE\\\xC0\xAF]\n", false, "an overlong form"},
  };
  for (const TextRow& row : rows) {
    RegistryKey hive;
    EXPECT_EQ(ReadRegistryText(std::string(kHead) + row.body, kHive, hive), row.isRead) << row.why;
  }
  RegistryKey hive;
  EXPECT_FALSE(ReadRegistryText("", kHive, hive));
  EXPECT_FALSE(ReadRegistryText("REGEDIT4\n", kHive, hive));
  EXPECT_TRUE(ReadRegistryText("\xEF\xBB\xBFWindows Registry Editor Version 5.00", kHive, hive));
}

TEST(RegistryText, KeepsItsLimits) {
  RegistryKey hive;
  const std::string key = "[HKEY_LOCAL_MACHINE\\";
  EXPECT_TRUE(ReadRegistryText(kHead + key + std::string(255, 'a') + "]\n", kHive, hive));
  EXPECT_FALSE(ReadRegistryText(kHead + key + std::string(256, 'a') + "]\n", kHive, hive));
  std::string deep = key + "a";
  for (int level = 1; level < 512; ++level) deep += "\\a";
  EXPECT_TRUE(ReadRegistryText(kHead + deep + "]\n", kHive, hive));
  EXPECT_FALSE(ReadRegistryText(kHead + deep + "\\a]\n", kHive, hive));
  EXPECT_FALSE(ReadRegistryText(kHead + std::string(kMaxRegistryFile, '\n'), kHive, hive));
}

TEST(RegistryText, WritesWhatItReads) {
  const std::string text = std::string(kHead) +
                           "\n[HKEY_LOCAL_MACHINE]\n"
                           "\n[HKEY_LOCAL_MACHINE\\Software]\n"
                           "@=\"default \\\"x\\\" C:\\\\y\"\n"
                           "\"a\"=dword:0000001f\n"
                           "\"B\\\\b\"=hex:01,a0\n"
                           "\"c\"=hex(2):61,00,00,00\n"
                           "\"d\"=hex(1):61,00,0a,00,00,00\n"
                           "\n[HKEY_LOCAL_MACHINE\\Software\\\xC3\xA9]\n";
  RegistryKey hive;
  ASSERT_TRUE(ReadRegistryText(text, kHive, hive));
  EXPECT_EQ(WriteRegistryText(hive, kHive), text);
}

class RegistryFileTest : public ::testing::Test {
 protected:
  static std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void WriteFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  static LONG Create(HKEY root, LPCWSTR path) {
    HKEY key = nullptr;
    const LONG error =
        RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (error == 0) RegCloseKey(key);
    return error;
  }
  static LONG Open(HKEY root, LPCWSTR path) {
    HKEY key = nullptr;
    const LONG error = RegOpenKeyExW(root, path, 0, KEY_READ, &key);
    if (error == 0) RegCloseKey(key);
    return error;
  }
  static void SetDefault(HKEY root, LPCWSTR path, const std::u16string& text) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              0);
    EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>(2 * text.size() + 2)),
              0);
    RegCloseKey(key);
  }
  static std::u16string Default(HKEY root, LPCWSTR path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path, 0, KEY_READ, &key) != 0) return u"no key";
    char16_t text[100] = {};
    DWORD size = sizeof text;
    const LONG error =
        RegQueryValueExW(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(key);
    return error == 0 ? text : u"no value";
  }

  RegistryScope m_scope;
};

TEST_F(RegistryFileTest, ClassesOfTheUserComeBeforeThoseOfTheMachine) {
  SetDefault(HKEY_LOCAL_MACHINE, u"Software\\Classes\\Both", u"machine");
  SetDefault(HKEY_CURRENT_USER, u"Software\\Classes\\both", u"user");
  SetDefault(HKEY_LOCAL_MACHINE, u"Software\\Classes\\Machine", u"machine");
  SetDefault(HKEY_CURRENT_USER, u"Software\\Classes\\User", u"user");
  EXPECT_EQ(Default(HKEY_CLASSES_ROOT, u"Both"), u"user");
  EXPECT_EQ(Default(HKEY_CLASSES_ROOT, u"Machine"), u"machine");
  EXPECT_EQ(Default(HKEY_CLASSES_ROOT, u"User"), u"user");
  EXPECT_EQ(Default(HKEY_CLASSES_ROOT, u"Neither"), u"no key");
  std::u16string names;
  char16_t name[50];
  DWORD length = 50;
  for (DWORD i = 0;
       RegEnumKeyExW(HKEY_CLASSES_ROOT, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
       ++i, length = 50) {
    names += std::u16string(name) + u";";
  }
  EXPECT_EQ(names, u"both;Machine;User;");
}

TEST_F(RegistryFileTest, ClassesAreWrittenForTheMachine) {
  SetDefault(HKEY_CLASSES_ROOT, u"Made", u"here");
  EXPECT_EQ(Default(HKEY_LOCAL_MACHINE, u"Software\\Classes\\Made"), u"here");
  EXPECT_EQ(Default(HKEY_CURRENT_USER, u"Software\\Classes\\Made"), u"no key");
  EXPECT_EQ(RegDeleteTreeW(HKEY_CLASSES_ROOT, u"made"), 0);
  EXPECT_EQ(Default(HKEY_LOCAL_MACHINE, u"Software\\Classes\\Made"), u"no key");
}

TEST_F(RegistryFileTest, ABrokenFileIsReportedAndLeftAlone) {
  const std::filesystem::path file = m_scope.Folder() / "machine.reg";
  for (const std::string& text :
       {std::string("broken"), std::string(), std::string(kHead) + "[x"}) {
    WriteFile(file, text);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, u"Software"), LONG{ERROR_BADDB});
    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, u"Software"), LONG{ERROR_BADDB});
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, u"Software"), LONG{ERROR_BADDB});
    EXPECT_EQ(ReadFile(file), text);
  }
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"Software"), 0) << "the other file serves";
}

TEST_F(RegistryFileTest, AFileOfAnotherKindIsNotRead) {
  ASSERT_EQ(mkfifo((m_scope.Folder() / "machine.reg").c_str(), 0600), 0);
  EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, u"Software"), LONG{ERROR_CANTREAD});
}

TEST_F(RegistryFileTest, SeesWhatAnotherProcessWrote) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Before"), 0);
  usleep(150'000);  // long enough for the reading to be kept
  ASSERT_EQ(Open(HKEY_CURRENT_USER, u"Before"), 0);
  WriteFile(m_scope.Folder() / "user.reg", std::string(kHead) + "[HKEY_CURRENT_USER\\After1]\n");
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Before"), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"After1"), 0);
}

TEST_F(RegistryFileTest, WritersOfTwoProcessesLoseNothing) {
  constexpr int kKeys = 25;
  const auto writeKeys = [](char16_t prefix) {
    for (int i = 0; i < kKeys; ++i) {
      const std::u16string name{u'P', prefix, static_cast<char16_t>(u'A' + i)};
      if (Create(HKEY_CURRENT_USER, name.c_str()) != 0) return 1;
    }
    return 0;
  };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(writeKeys(u'c'));
  EXPECT_EQ(writeKeys(u'p'), 0);
  int status = 1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const char16_t prefix : {u'c', u'p'}) {
    for (int i = 0; i < kKeys; ++i) {
      const std::u16string name{u'P', prefix, static_cast<char16_t>(u'A' + i)};
      EXPECT_EQ(Open(HKEY_CURRENT_USER, name.c_str()), 0);
    }
  }
}

TEST_F(RegistryFileTest, GatheredChangesShowAtOnce) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Old"), 0);
  const std::filesystem::path file = m_scope.Folder() / "user.reg";
  const std::string before = ReadFile(file);
  ASSERT_EQ(BeginHiveChanges(Hive::kUser), ERROR_SUCCESS);
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"New"), 0);
  EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, u"Old"), 0);
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"not\nvalid"), LONG{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, u"Other"), 0) << "the other file is written as ever";
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"New"), 0);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Old"), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(ReadFile(file), before);
  LONG others = 0;
  std::thread([&others] { others = Open(HKEY_CURRENT_USER, u"New"); }).join();
  EXPECT_EQ(others, LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(EndHiveChanges(), ERROR_SUCCESS);
  EXPECT_EQ(ReadFile(file),
            std::string(kHead) + "\n[HKEY_CURRENT_USER]\n\n[HKEY_CURRENT_USER\\New]\n");
}

TEST_F(RegistryFileTest, OthersWaitForGatheredChanges) {
  ASSERT_EQ(BeginHiveChanges(Hive::kUser), ERROR_SUCCESS);
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Mine"), 0);
  std::atomic<bool> done{false};
  LONG error = 1;
  std::thread other([&] {
    error = Create(HKEY_CURRENT_USER, u"Theirs");
    done = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(done);
  EXPECT_EQ(EndHiveChanges(), ERROR_SUCCESS);
  other.join();
  EXPECT_EQ(error, 0);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Mine"), 0);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Theirs"), 0);
}

TEST_F(RegistryFileTest, ChangesAreGatheredOnceAtATime) {
  EXPECT_EQ(EndHiveChanges(), ERROR_SUCCESS) << "nothing was begun";
  ASSERT_EQ(BeginHiveChanges(Hive::kUser), ERROR_SUCCESS);
  EXPECT_EQ(BeginHiveChanges(Hive::kUser), ERROR_BUSY);
  EXPECT_EQ(BeginHiveChanges(Hive::kMachine), ERROR_BUSY);
  EXPECT_EQ(EndHiveChanges(), ERROR_SUCCESS);
  EXPECT_FALSE(std::filesystem::exists(m_scope.Folder() / "user.reg")) << "nothing was changed";
}

TEST_F(RegistryFileTest, GatheredChangesOfABrokenFileAreNotBegun) {
  WriteFile(m_scope.Folder() / "user.reg", "broken");
  EXPECT_EQ(BeginHiveChanges(Hive::kUser), ERROR_BADDB);
  EXPECT_EQ(EndHiveChanges(), ERROR_SUCCESS);
  EXPECT_EQ(ReadFile(m_scope.Folder() / "user.reg"), "broken");
}

TEST_F(RegistryFileTest, GatheredChangesThatCannotBeWrittenAreLostTogether) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Kept"), 0);
  const std::string before = ReadFile(m_scope.Folder() / "user.reg");
  ASSERT_EQ(BeginHiveChanges(Hive::kUser), ERROR_SUCCESS);
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"Lost"), 0);
  std::filesystem::create_directory(m_scope.Folder() / "user.reg.new");
  EXPECT_NE(EndHiveChanges(), ERROR_SUCCESS);
  EXPECT_EQ(ReadFile(m_scope.Folder() / "user.reg"), before);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Lost"), LONG{ERROR_FILE_NOT_FOUND});
}

TEST_F(RegistryFileTest, AWriterThatIsKilledLeavesTheFileAndNoLock) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Kept"), 0);
  const std::string before = ReadFile(m_scope.Folder() / "user.reg");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (BeginHiveChanges(Hive::kUser) != ERROR_SUCCESS) _exit(1);
    if (Create(HKEY_CURRENT_USER, u"Lost") != 0) _exit(2);
    // As if it were killed while it writes the new file.
    WriteFile(m_scope.Folder() / "user.reg.new", before.substr(0, 20));
    raise(SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status)) << status;
  EXPECT_EQ(ReadFile(m_scope.Folder() / "user.reg"), before);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"Next"), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Kept"), 0);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Lost"), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_FALSE(std::filesystem::exists(m_scope.Folder() / "user.reg.new"));
}

TEST_F(RegistryFileTest, AFailedWriteLeavesTheFileAsItWas) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Kept"), 0);
  const std::string before = ReadFile(m_scope.Folder() / "user.reg");
  // The name of the new file is taken by a folder.
  std::filesystem::create_directory(m_scope.Folder() / "user.reg.new");
  EXPECT_NE(Create(HKEY_CURRENT_USER, u"Lost"), 0);
  EXPECT_EQ(ReadFile(m_scope.Folder() / "user.reg"), before);
  EXPECT_EQ(Open(HKEY_CURRENT_USER, u"Lost"), LONG{ERROR_FILE_NOT_FOUND});
}

TEST_F(RegistryFileTest, RefusesWhatAFileCannotHold) {
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"line\nbreak"), LONG{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Create(HKEY_CURRENT_USER, u"half \xD800 pair"), LONG{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Create(HKEY_CURRENT_USER, std::u16string(256, u'a').c_str()),
            LONG{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(RegCloseKey(reinterpret_cast<HKEY>(std::uintptr_t{16})), LONG{ERROR_INVALID_HANDLE});
}

TEST_F(RegistryFileTest, TheUsersFileIsTheirOwn) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Key"), 0);
  struct stat state {};
  ASSERT_EQ(stat((m_scope.Folder() / "user.reg").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, mode_t{0600});
}

TEST_F(RegistryFileTest, AnUnchangedFileIsNotWritten) {
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"Key"), 0);
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(stat((m_scope.Folder() / "user.reg").c_str(), &before), 0);
  ASSERT_EQ(Create(HKEY_CURRENT_USER, u"KEY"), 0);
  ASSERT_EQ(stat((m_scope.Folder() / "user.reg").c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

}  // namespace
}  // namespace velandoc
