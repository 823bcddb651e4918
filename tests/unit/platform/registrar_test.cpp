// The registrar: scripts in, registry calls out.
#include "platform/atl/registrar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/resources.h"
#include "tests/support/memory_registry.h"

namespace velandoc {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

struct ScriptCase {
  const char* why;
  LPCOLESTR script;
  Lines registered;    // changes of registration
  Lines unregistered;  // changes of unregistration behind it
};

class RegistrarTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(registry.OpenKeys(), 0); }

  MemoryRegistry registry;
  PortScope<Registry> scope{registry};
};

TEST_F(RegistrarTest, DoesWhatScriptsSay) {
  const ScriptCase cases[] = {
      {"plain keys go again",
       OLESTR("HKCR { A = s 'a' { B } }"),
       {"create HKCR\\A", "set HKCR\\A\\[]=a", "create HKCR\\A\\B"},
       {"delete HKCR\\A\\B", "delete HKCR\\A"}},
      {"NoRemove stays, with what it had of its own",
       OLESTR("HKLM { NoRemove A { B = s 'b' } }"),
       {"create HKLM\\A", "create HKLM\\A\\B", "set HKLM\\A\\B\\[]=b"},
       {"delete HKLM\\A\\B"}},
      {"ForceRemove goes with all below it",
       OLESTR("HKCR { ForceRemove A { B { C } } }"),
       {"create HKCR\\A", "create HKCR\\A\\B", "create HKCR\\A\\B\\C"},
       {"deltree HKCR\\A"}},
      {"Delete deletes on registration alone",
       OLESTR("HKCU { A Delete A }"),
       {"create HKCU\\A", "deltree HKCU\\A"},
       {}},
      {"named values of a kept key go",
       OLESTR("HKCR { NoRemove A { val X = s 'x' val Y = d '7' } }"),
       {"create HKCR\\A", "set HKCR\\A\\[X]=x", "set HKCR\\A\\[Y]=dword:7"},
       {"unset HKCR\\A\\[X]", "unset HKCR\\A\\[Y]"}},
      {"an unnamed val is the default value",
       OLESTR("HKCR { A { val '' = s 'x' } }"),
       {"create HKCR\\A", "set HKCR\\A\\[]=x"},
       {"unset HKCR\\A\\[]", "delete HKCR\\A"}},
      {"values before subkeys, whatever the script's order",
       OLESTR("HKCR { A { B val X = s 'x' } }"),
       {"create HKCR\\A", "set HKCR\\A\\[X]=x", "create HKCR\\A\\B"},
       {"unset HKCR\\A\\[X]", "delete HKCR\\A\\B", "delete HKCR\\A"}},
      {"a bare GUID is a name, its braces too",
       OLESTR("HKCR { {AB-CD} = s '{EF}' }"),
       {"create HKCR\\{AB-CD}", "set HKCR\\{AB-CD}\\[]={EF}"},
       {"delete HKCR\\{AB-CD}"}},
      {"quotes keep blanks, braces and signs; two are one",
       OLESTR("HKCR { 'a b' = s 'it''s {x} = y' }"),
       {"create HKCR\\a b", "set HKCR\\a b\\[]=it's {x} = y"},
       {"delete HKCR\\a b"}},
      {"quoted words are names",
       OLESTR("HKCR { 'NoRemove' { 'val' } '}' }"),
       {"create HKCR\\NoRemove", "create HKCR\\NoRemove\\val", "create HKCR\\}"},
       {"delete HKCR\\NoRemove\\val", "delete HKCR\\NoRemove", "delete HKCR\\}"}},
      {"hexadecimal numbers",
       OLESTR("HKCR { NoRemove A = d '&Hff' { val x = d 0x10 val m = d 4294967295 } }"),
       {"create HKCR\\A", "set HKCR\\A\\[]=dword:255", "set HKCR\\A\\[x]=dword:16",
        "set HKCR\\A\\[m]=dword:4294967295"},
       {"unset HKCR\\A\\[x]", "unset HKCR\\A\\[m]"}},
      {"words in any case, long root names, several roots",
       OLESTR("hkey_classes_root { noremove A } HKEY_CURRENT_USER { B }\nHkey_Local_Machine { C }"),
       {"create HKCR\\A", "create HKCU\\B", "create HKLM\\C"},
       {"delete HKCU\\B", "delete HKLM\\C"}},
      {"blanks of every kind",
       OLESTR("\r\n\tHKCR\r\n{\r\n\tA\t=\ts\t''\r\n}\r\n"),
       {"create HKCR\\A", "set HKCR\\A\\[]="},
       {"delete HKCR\\A"}},
      {"an empty root is a script", OLESTR("HKCR { }"), {}, {}},
  };
  for (const ScriptCase& test : cases) {
    SCOPED_TRACE(test.why);
    MemoryRegistry fresh;
    const PortScope<Registry> here(fresh);
    CRegObject registrar;
    EXPECT_EQ(registrar.StringRegister(test.script), S_OK);
    EXPECT_THAT(fresh.changes, ElementsAreArray(test.registered));
    fresh.changes.clear();
    EXPECT_EQ(registrar.StringUnregister(test.script), S_OK);
    EXPECT_THAT(fresh.changes, ElementsAreArray(test.unregistered));
    EXPECT_EQ(fresh.OpenKeys(), 0);
  }
}

TEST_F(RegistrarTest, ForceRemoveStartsAfresh) {
  CRegObject registrar;
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { A { Old val X = s 'x' } }")), S_OK);
  registry.changes.clear();
  EXPECT_EQ(registrar.StringRegister(OLESTR("HKCR { ForceRemove A { New } }")), S_OK);
  EXPECT_THAT(registry.changes,
              ElementsAre("deltree HKCR\\A", "create HKCR\\A", "create HKCR\\A\\New"));
}

TEST_F(RegistrarTest, UnregisteringKeepsKeysThatOthersUse) {
  CRegObject registrar;
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCU { A { Ours Others } }")), S_OK);
  registry.changes.clear();
  EXPECT_EQ(registrar.StringUnregister(OLESTR("HKCU { A { Ours } }")), S_OK);
  EXPECT_THAT(registry.changes, ElementsAre("delete HKCU\\A\\Ours"));
}

TEST_F(RegistrarTest, UnregisteringWhatIsNotThereIsNoFailure) {
  CRegObject registrar;
  EXPECT_EQ(registrar.StringUnregister(
                OLESTR("HKCR { A { B } ForceRemove C NoRemove D { val X = s 'x' } }")),
            S_OK);
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { NoRemove D }")), S_OK);
  EXPECT_EQ(registrar.StringUnregister(OLESTR("HKCR { NoRemove D { val X = s 'x' } }")), S_OK);
}

TEST_F(RegistrarTest, BrokenScriptsChangeNothing) {
  struct {
    const char* why;
    LPCOLESTR script;
  } const cases[] = {
      {"empty", OLESTR("")},
      {"blank", OLESTR(" \r\n\t")},
      {"no root", OLESTR("{ A }")},
      {"unknown root", OLESTR("HKXX { A }")},
      {"quoted root", OLESTR("'HKCR' { A }")},
      {"root without block", OLESTR("HKCR")},
      {"root with a key instead of a block", OLESTR("HKCR A { }")},
      {"block not closed", OLESTR("HKCR { A { }")},
      {"one brace too many", OLESTR("HKCR { A } }")},
      {"glued brace is part of a name", OLESTR("HKCR{ A }")},
      {"quote not closed", OLESTR("HKCR { 'A }")},
      {"quote not closed behind a whole tree", OLESTR("HKCR { A } 'B")},
      {"rule without a name", OLESTR("HKCR { NoRemove }")},
      {"rule at the end", OLESTR("HKCR { ForceRemove")},
      {"empty name, which would be the parent", OLESTR("HKCR { ForceRemove '' }")},
      {"several levels in a name", OLESTR("HKCR { A\\B }")},
      {"equals without a name", OLESTR("HKCR { = s 'x' }")},
      {"no data", OLESTR("HKCR { A = s }")},
      {"no type", OLESTR("HKCR { A = 'x' }")},
      {"unknown type", OLESTR("HKCR { A = q 'x' }")},
      {"quoted type", OLESTR("HKCR { A = 's' 'x' }")},
      {"number that is none", OLESTR("HKCR { A = d '12x' }")},
      {"no digits", OLESTR("HKCR { A = d '' }")},
      {"no digits behind the prefix", OLESTR("HKCR { A = d '&H' }")},
      {"number of 33 bits", OLESTR("HKCR { A = d '4294967296' }")},
      {"number of 33 bits in hexadecimal", OLESTR("HKCR { A = d '0x100000000' }")},
      {"val of a root", OLESTR("HKCR { val A = s 'x' }")},
      {"val without data", OLESTR("HKCR { A { val X } }")},
      {"val without a name", OLESTR("HKCR { A { val = s 'x' } }")},
      {"Delete with a value", OLESTR("HKCR { Delete A = s 'x' }")},
      {"Delete with a block", OLESTR("HKCR { Delete A { B } }")},
      {"second tree broken", OLESTR("HKCR { A } HKCU { B")},
      {"unknown replacement", OLESTR("HKCR { A = s '%NOBODY%' }")},
      {"replacement not closed", OLESTR("HKCR { A = s '50%' }")},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.why);
    CRegObject registrar;
    EXPECT_EQ(registrar.StringRegister(test.script), DISP_E_EXCEPTION);
    EXPECT_EQ(registrar.StringUnregister(test.script), DISP_E_EXCEPTION);
    EXPECT_EQ(registry.Calls(), 0);
  }
}

TEST_F(RegistrarTest, PutsReplacementsIn) {
  CRegObject registrar;
  EXPECT_EQ(registrar.AddReplacement(OLESTR("Module"), OLESTR("C:\\it''s\\v.dll")), S_OK);
  EXPECT_EQ(registrar.AddReplacement(OLESTR("KEY"), OLESTR("{1-2}")), S_OK);
  EXPECT_EQ(registrar.AddReplacement(OLESTR("key"), OLESTR("second text for the same name")), S_OK);
  EXPECT_EQ(registrar.AddReplacement(nullptr, OLESTR("x")), E_INVALIDARG);
  EXPECT_EQ(registrar.AddReplacement(OLESTR("x"), nullptr), E_INVALIDARG);
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { %kEy% = s '%MODULE% 100%%' }")), S_OK);
  EXPECT_THAT(registry.changes,
              ElementsAre("create HKCR\\{1-2}", "set HKCR\\{1-2}\\[]=C:\\it's\\v.dll 100%"));
}

TEST_F(RegistrarTest, TextPutInIsNotLookedThroughAgain) {
  CRegObject registrar;
  ASSERT_EQ(registrar.AddReplacement(OLESTR("A"), OLESTR("%B%")), S_OK);
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { K = s '%A%' }")), S_OK);
  EXPECT_THAT(registry.Dump(), ElementsAre("HKCR\\K", "HKCR\\K\\[]=%B%"));
}

TEST_F(RegistrarTest, NestingIsBounded) {
  const auto nested = [](std::size_t depth) {
    WideString script = OLESTR("HKCR ");
    for (std::size_t i = 0; i < depth; ++i) script += OLESTR("{ A ");
    for (std::size_t i = 0; i < depth; ++i) script += OLESTR("} ");
    return script;
  };
  CRegObject registrar;
  EXPECT_EQ(registrar.StringRegister(nested(kMaxScriptDepth).c_str()), S_OK);
  EXPECT_EQ(registrar.StringRegister(nested(kMaxScriptDepth + 1).c_str()), DISP_E_EXCEPTION);
  EXPECT_EQ(registrar.StringRegister(nested(20000).c_str()), DISP_E_EXCEPTION);
}

TEST_F(RegistrarTest, LengthIsBounded) {
  WideString script = OLESTR("HKCR { A }");
  script.resize(kMaxScriptLength, OLECHAR(' '));
  CRegObject registrar;
  EXPECT_EQ(registrar.StringRegister(script.c_str()), S_OK);
  script += OLECHAR(' ');
  EXPECT_EQ(registrar.StringRegister(script.c_str()), DISP_E_EXCEPTION);
}

TEST_F(RegistrarTest, ReplacementsDoNotPassTheBound) {
  CRegObject registrar;
  const WideString text(kMaxScriptLength / 2, OLECHAR('x'));
  ASSERT_EQ(registrar.AddReplacement(OLESTR("X"), text.c_str()), S_OK);
  EXPECT_EQ(registrar.StringRegister(OLESTR("HKCR { A = s '%X%' }")), S_OK);
  EXPECT_EQ(registrar.StringRegister(OLESTR("HKCR { A = s '%X%%X%' }")), DISP_E_EXCEPTION);
}

TEST_F(RegistrarTest, KeyNamesAreBounded) {
  const auto named = [](std::size_t length) {
    return OLESTR("HKCR { ") + WideString(length, OLECHAR('k')) + OLESTR(" }");
  };
  CRegObject registrar;
  EXPECT_EQ(registrar.StringRegister(named(kMaxKeyName).c_str()), S_OK);
  EXPECT_EQ(registrar.StringRegister(named(kMaxKeyName + 1).c_str()), DISP_E_EXCEPTION);
}

TEST_F(RegistrarTest, EachFailingCallEndsTheScript) {
  const LPCOLESTR script =
      OLESTR("HKCR { NoRemove A { ForceRemove B = s 'b' { val X = s 'x' C } } D { val Y = d 1 } }");
  CRegObject registrar;
  for (const bool doRegister : {true, false}) {
    int failing = 0;
    HRESULT result = E_FAIL;
    while (FAILED(result)) {
      registry.FailCall(0, 0);
      ASSERT_EQ(registrar.StringRegister(script), S_OK);
      registry.FailCall(++failing, ERROR_DISK_FULL);
      result = doRegister ? registrar.StringRegister(script) : registrar.StringUnregister(script);
      if (FAILED(result)) {
        EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_DISK_FULL)) << failing;
        EXPECT_EQ(registry.Calls(), failing) << "a call behind the failed one";
      }
      EXPECT_EQ(registry.OpenKeys(), 0) << failing;
    }
    EXPECT_GT(failing, 5);
  }
}

// Of a key with subkeys the system says the same as of one that may not be deleted.
TEST_F(RegistrarTest, AKeyThatMayNotBeDeletedIsAFailureUnlessItHasSubkeys) {
  CRegObject registrar;
  bool refused = false;
  HRESULT result = E_FAIL;
  for (int failing = 1; FAILED(result); ++failing) {
    registry.FailCall(0, 0);
    ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { A }")), S_OK);
    registry.FailCall(failing, ERROR_ACCESS_DENIED);
    result = registrar.StringUnregister(OLESTR("HKCR { A }"));
    EXPECT_TRUE(result == E_ACCESSDENIED || result == S_OK) << failing;
    refused = refused || registry.Calls() > failing;
  }
  EXPECT_TRUE(refused) << "the deletion was not among the failed calls";

  registry.FailCall(0, 0);
  ASSERT_EQ(registrar.StringRegister(OLESTR("HKCR { A { Other } }")), S_OK);
  EXPECT_EQ(registrar.StringUnregister(OLESTR("HKCR { A }")), S_OK);
  EXPECT_THAT(registry.Dump(), ElementsAre("HKCR\\A", "HKCR\\A\\Other"));
}

TEST_F(RegistrarTest, UserScriptsGoBelowSoftwareClasses) {
  const LPCOLESTR script = OLESTR("HKCR\r\n{\r\n\tNoRemove A = s 'a' { B }\r\n}\r\n");
  EXPECT_EQ(ScriptForUser(script),
            WideString(OLESTR("HKCU\r\n{\tSoftware\r\n\t{\r\n\t\tClasses\r\n{\r\n\tNoRemove A = s "
                              "'a' { B }\r\n}\r\n\r\n\t}\r\n}")));
  CRegObject registrar(true);
  EXPECT_EQ(registrar.StringRegister(script), S_OK);
  EXPECT_THAT(registry.Dump(),
              ElementsAre("HKCU\\Software", "HKCU\\Software\\Classes", "HKCU\\Software\\Classes\\A",
                          "HKCU\\Software\\Classes\\A\\[]=a", "HKCU\\Software\\Classes\\A\\B"));
  EXPECT_EQ(registrar.StringUnregister(script), S_OK);
  EXPECT_THAT(registry.Dump(),
              ElementsAre("HKCU\\Software", "HKCU\\Software\\Classes", "HKCU\\Software\\Classes\\A",
                          "HKCU\\Software\\Classes\\A\\[]=a"));
}

TEST_F(RegistrarTest, OtherRootsStayForTheUserToo) {
  for (const LPCOLESTR script : {OLESTR("HKLM { A }"), OLESTR("HKCRX { A }"), OLESTR("HKCR")}) {
    EXPECT_EQ(ScriptForUser(script), WideString(script));
  }
}

TEST_F(RegistrarTest, UnknownResourceIsAFailure) {
  CRegObject registrar;
  EXPECT_EQ(registrar.ResourceRegister(999), HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
  EXPECT_THAT(registry.Dump(), IsEmpty());
}

}  // namespace
}  // namespace velandoc
