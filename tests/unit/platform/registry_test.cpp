// The Registry port below HKEY_CURRENT_USER, in both homes the same.
#include "platform/registry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/support/registry_scope.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using testing::RegistryScope;

constexpr LPCOLESTR kTestKey = OLESTR("Software\\VelandocTest");

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_registry.RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey);
    ASSERT_EQ(m_registry.RegCreateKeyExW(HKEY_CURRENT_USER, kTestKey, 0, nullptr, 0, KEY_ALL_ACCESS,
                                         nullptr, &m_key, nullptr),
              0);
  }
  void TearDown() override {
    EXPECT_EQ(m_registry.RegCloseKey(m_key), 0);
    m_registry.RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey);
  }

  LONG Create(LPCOLESTR path, DWORD* disposition = nullptr) {
    HKEY made = nullptr;
    const LONG error = m_registry.RegCreateKeyExW(m_key, path, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                  nullptr, &made, disposition);
    if (error == 0) {
      EXPECT_EQ(m_registry.RegCloseKey(made), 0);
    }
    return error;
  }
  LONG Open(LPCOLESTR path) {
    HKEY opened = nullptr;
    const LONG error = m_registry.RegOpenKeyExW(m_key, path, 0, KEY_READ, &opened);
    if (error == 0) {
      EXPECT_EQ(m_registry.RegCloseKey(opened), 0);
    }
    return error;
  }
  LONG SetText(LPCOLESTR name, const WideString& text) {
    return m_registry.RegSetValueExW(m_key, name, 0, REG_SZ,
                                     reinterpret_cast<const BYTE*>(text.c_str()),
                                     static_cast<DWORD>((text.size() + 1) * sizeof(OLECHAR)));
  }
  /// The text, or "error N".
  std::string Text(LPCOLESTR name) {
    OLECHAR buffer[200] = {};
    DWORD size = sizeof buffer;
    DWORD type = 0;
    const LONG error = m_registry.RegQueryValueExW(m_key, name, nullptr, &type,
                                                   reinterpret_cast<BYTE*>(buffer), &size);
    if (error != 0) return "error " + std::to_string(error);
    if (type != REG_SZ) return "type " + std::to_string(type);
    return DescribeText(WideView(buffer, size / sizeof(OLECHAR) - 1));
  }

  RegistryScope m_scope;  // before any use of the port
  Registry& m_registry = CurrentPort<Registry>();
  HKEY m_key = nullptr;
};

TEST_F(RegistryTest, KeepsTextsAndNumbers) {
  EXPECT_EQ(SetText(nullptr, OLESTR("the default")), 0);
  EXPECT_EQ(SetText(OLESTR("Quoted \"name\""), OLESTR("C:\\a\\\"b\"")), 0);
  EXPECT_EQ(SetText(OLESTR("Empty"), WideString()), 0);
  EXPECT_EQ(SetText(OLESTR("Lines"), OLESTR("one\ntwo")), 0);
  EXPECT_EQ(SetText(OLESTR("Other"), OLESTR("\u00e9\u4e2d\U0001F600")), 0);
  EXPECT_EQ(Text(nullptr), "the default");
  EXPECT_EQ(Text(OLESTR("")), "the default");
  EXPECT_EQ(Text(OLESTR("QUOTED \"NAME\"")), "C:\\a\\\"b\"");
  EXPECT_EQ(Text(OLESTR("Empty")), "");
  EXPECT_EQ(Text(OLESTR("Lines")), "one\\u000Atwo");
  EXPECT_EQ(Text(OLESTR("Other")), "\\u00E9\\u4E2D\\uD83D\\uDE00");
  EXPECT_EQ(Text(OLESTR("None")), "error 2");

  const DWORD number = 0x1234ABCD;
  EXPECT_EQ(m_registry.RegSetValueExW(m_key, OLESTR("Number"), 0, REG_DWORD,
                                      reinterpret_cast<const BYTE*>(&number), sizeof number),
            0);
  DWORD read = 0;
  DWORD size = sizeof read;
  DWORD type = 0;
  EXPECT_EQ(m_registry.RegQueryValueExW(m_key, OLESTR("number"), nullptr, &type,
                                        reinterpret_cast<BYTE*>(&read), &size),
            0);
  EXPECT_EQ(type, DWORD{REG_DWORD});
  EXPECT_EQ(read, number);
}

TEST_F(RegistryTest, KeepsBytesOfAnyLength) {
  for (const DWORD count : {DWORD{0}, DWORD{1}, DWORD{3}, DWORD{300}}) {
    std::string bytes(count, '\xA5');
    EXPECT_EQ(m_registry.RegSetValueExW(m_key, OLESTR("Bytes"), 0, REG_BINARY,
                                        reinterpret_cast<const BYTE*>(bytes.data()), count),
              0);
    std::string read(400, '\0');
    auto size = static_cast<DWORD>(read.size());
    EXPECT_EQ(m_registry.RegQueryValueExW(m_key, OLESTR("Bytes"), nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(read.data()), &size),
              0);
    read.resize(size);
    EXPECT_EQ(read, bytes);
  }
}

TEST_F(RegistryTest, TellsTheSizeOfAValue) {
  ASSERT_EQ(SetText(OLESTR("Text"), OLESTR("abc")), 0);
  DWORD size = 0;
  EXPECT_EQ(m_registry.RegQueryValueExW(m_key, OLESTR("Text"), nullptr, nullptr, nullptr, &size),
            0);
  EXPECT_EQ(size, 4 * sizeof(OLECHAR));
  BYTE small[3] = {};
  size = sizeof small;
  EXPECT_EQ(m_registry.RegQueryValueExW(m_key, OLESTR("Text"), nullptr, nullptr, small, &size),
            LONG{ERROR_MORE_DATA});
  EXPECT_EQ(size, 4 * sizeof(OLECHAR));
}

TEST_F(RegistryTest, MakesAndFindsKeysWithoutRegardToCase) {
  DWORD disposition = 0;
  EXPECT_EQ(Create(OLESTR("One\\Two"), &disposition), 0);
  EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
  EXPECT_EQ(Create(OLESTR("ONE\\two"), &disposition), 0);
  EXPECT_EQ(disposition, DWORD{REG_OPENED_EXISTING_KEY});
  EXPECT_EQ(Open(OLESTR("one")), 0);
  EXPECT_EQ(Open(OLESTR("one\\TWO")), 0);
  EXPECT_EQ(Open(OLESTR("one\\three")), LONG{ERROR_FILE_NOT_FOUND});
}

TEST_F(RegistryTest, ListsKeysAndValuesWithTheirSpelling) {
  ASSERT_EQ(Create(OLESTR("Beta")), 0);
  ASSERT_EQ(Create(OLESTR("alpha")), 0);
  ASSERT_EQ(SetText(OLESTR("Name"), OLESTR("x")), 0);
  std::string names;
  for (DWORD index = 0; index < 10; ++index) {
    OLECHAR name[20];
    DWORD length = 20;
    const LONG error =
        m_registry.RegEnumKeyExW(m_key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (error != 0) {
      EXPECT_EQ(error, LONG{ERROR_NO_MORE_ITEMS});
      break;
    }
    names += DescribeText(WideView(name, length)) + ";";
  }
  EXPECT_EQ(names, "alpha;Beta;");
  OLECHAR small[5];
  DWORD length = 5;
  EXPECT_EQ(m_registry.RegEnumKeyExW(m_key, 0, small, &length, nullptr, nullptr, nullptr, nullptr),
            LONG{ERROR_MORE_DATA});

  OLECHAR name[20];
  length = 20;
  EXPECT_EQ(m_registry.RegEnumValueW(m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
            0);
  EXPECT_EQ(DescribeText(WideView(name, length)), "Name");
  length = 20;
  EXPECT_EQ(m_registry.RegEnumValueW(m_key, 1, name, &length, nullptr, nullptr, nullptr, nullptr),
            LONG{ERROR_NO_MORE_ITEMS});
}

TEST_F(RegistryTest, DeletesKeysAndValues) {
  ASSERT_EQ(Create(OLESTR("One\\Two\\Three")), 0);
  EXPECT_EQ(m_registry.RegDeleteKeyW(m_key, OLESTR("One")), LONG{ERROR_ACCESS_DENIED});
  EXPECT_EQ(m_registry.RegDeleteKeyW(m_key, OLESTR("One\\Two\\Three")), 0);
  EXPECT_EQ(m_registry.RegDeleteKeyW(m_key, OLESTR("One\\Two\\Three")), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(m_registry.RegDeleteTreeW(m_key, OLESTR("one")), 0);
  EXPECT_EQ(Open(OLESTR("One")), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(m_registry.RegDeleteTreeW(m_key, OLESTR("one")), LONG{ERROR_FILE_NOT_FOUND});

  ASSERT_EQ(SetText(OLESTR("Name"), OLESTR("x")), 0);
  EXPECT_EQ(m_registry.RegDeleteValueW(m_key, OLESTR("NAME")), 0);
  EXPECT_EQ(m_registry.RegDeleteValueW(m_key, OLESTR("NAME")), LONG{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Text(OLESTR("Name")), "error 2");
}

TEST_F(RegistryTest, ReportsAKeyThatWasDeletedUnderItsHandle) {
  HKEY opened = nullptr;
  ASSERT_EQ(m_registry.RegCreateKeyExW(m_key, OLESTR("Gone"), 0, nullptr, 0, KEY_ALL_ACCESS,
                                       nullptr, &opened, nullptr),
            0);
  ASSERT_EQ(m_registry.RegDeleteKeyW(m_key, OLESTR("Gone")), 0);
  const DWORD number = 1;
  EXPECT_EQ(m_registry.RegSetValueExW(opened, OLESTR("Name"), 0, REG_DWORD,
                                      reinterpret_cast<const BYTE*>(&number), sizeof number),
            LONG{ERROR_KEY_DELETED});
  EXPECT_EQ(m_registry.RegCloseKey(opened), 0);
}

}  // namespace
}  // namespace velandoc
