// The environment's languages as Windows names them.
#include "platform/posix/preferred_languages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/module_services.h"
#include "platform/text.h"
#include "tests/support/posix/environment_scope.h"

namespace velandoc {
namespace {

using test::EnvironmentScope;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(LanguageName, IsThatOfWindows) {
  struct {
    const char* locale;
    const char* name;
    const char* why;
  } const rows[] = {
      {"de_DE.UTF-8", "de-DE", "language, country, codeset"},
      {"de_DE", "de-DE", "no codeset"},
      {"de", "de", "a language alone"},
      {"de.UTF-8", "de", "no country"},
      {"de_DE@euro", "de-DE", "a modifier that says nothing of the language"},
      {"de_DE.ISO-8859-15@euro", "de-DE", "codeset and modifier"},
      {"sr_RS@latin", "sr-Latn-RS", "a script"},
      {"sr_RS.UTF-8@cyrillic", "sr-Cyrl-RS", "the other one"},
      {"sd_IN@devanagari", "sd-Deva-IN", "a third"},
      {"ca_ES.UTF-8@valencia", "ca-ES-valencia", "a variant stands last"},
      {"nds_DE", "nds-DE", "three letters"},
      {"es_419", "es-419", "a part of the world"},
      {"C", "", "no translation"},
      {"C.UTF-8", "", "the same"},
      {"POSIX", "", "the same"},
      {"", "", "nothing"},
      {"d", "", "too short"},
      {"ninelette", "", "too long"},
      {"de_D", "", "no country"},
      {"de_DEU", "", "no country"},
      {"de_41", "", "no part of the world"},
      {"de_DE_AT", "", "two countries"},
      {"de-DE", "", "not a locale's name"},
      {"../../tmp", "", "a path"},
      {"de/../x", "", "a path"},
      {"de_../", "", "a path"},
      {"d\xC3\xA9", "", "beyond ASCII"},
      {".UTF-8", "", "no language"},
      {"@latin", "", "no language"},
  };
  for (const auto& row : rows) EXPECT_EQ(LanguageName(row.locale), row.name) << row.why;
}

TEST(LanguageNames, GoFromTheSpecificToTheGeneral) {
  EXPECT_THAT(LanguageNames("", "de_DE.UTF-8"), ElementsAre("de-DE", "de"));
  EXPECT_THAT(LanguageNames("", "sr_RS@latin"), ElementsAre("sr-Latn-RS", "sr-Latn", "sr"));
  EXPECT_THAT(LanguageNames("", "de"), ElementsAre("de"));
  EXPECT_THAT(LanguageNames("", "ca_ES@valencia"), ElementsAre("ca-ES-valencia", "ca-ES", "ca"));
}

TEST(LanguageNames, TheListComesBeforeTheLocale) {
  EXPECT_THAT(LanguageNames("fr_CA:de_AT", "it_IT"), ElementsAre("fr-CA", "fr", "de-AT", "de"));
  EXPECT_THAT(LanguageNames("de_AT:de_DE:de", "it_IT"), ElementsAre("de-AT", "de", "de-DE"));
  EXPECT_THAT(LanguageNames(":de::fr:", "it_IT"), ElementsAre("de", "fr"));
  EXPECT_THAT(LanguageNames("en_GB:de", "de_DE"), ElementsAre("en-GB", "en", "de"));
}

TEST(LanguageNames, WithoutALocaleNothingIsTranslated) {
  EXPECT_THAT(LanguageNames("de_DE", ""), IsEmpty());
  EXPECT_THAT(LanguageNames("de_DE", "C"), IsEmpty());
  EXPECT_THAT(LanguageNames("de_DE", "C.UTF-8"), IsEmpty());
  EXPECT_THAT(LanguageNames("de_DE", "POSIX"), IsEmpty());
}

TEST(LanguageNames, UntranslatedEndsTheList) {
  EXPECT_THAT(LanguageNames("fr:C:de", "it_IT"), ElementsAre("fr"));
  EXPECT_THAT(LanguageNames("C", "it_IT"), IsEmpty());
}

TEST(LanguageNames, WhatIsNoLocaleIsPassedOver) {
  EXPECT_THAT(LanguageNames("../x:de", "it_IT"), ElementsAre("de"));
  EXPECT_THAT(LanguageNames("..:/", "it_IT"), IsEmpty());
}

class PreferredLanguagesTest : public ::testing::Test {
 protected:
  EnvironmentScope language{"LANGUAGE", nullptr};
  EnvironmentScope all{"LC_ALL", nullptr};
  EnvironmentScope messages{"LC_MESSAGES", nullptr};
  EnvironmentScope lang{"LANG", nullptr};
};

TEST_F(PreferredLanguagesTest, TheFirstVariableThatIsNotEmptyIsTheLocale) {
  EXPECT_THAT(PreferredLanguages(), IsEmpty());
  const EnvironmentScope lowest("LANG", "it_IT");
  EXPECT_THAT(PreferredLanguages(), ElementsAre("it-IT", "it"));
  const EnvironmentScope middle("LC_MESSAGES", "fr_FR");
  EXPECT_THAT(PreferredLanguages(), ElementsAre("fr-FR", "fr"));
  {
    const EnvironmentScope empty("LC_ALL", "");
    EXPECT_THAT(PreferredLanguages(), ElementsAre("fr-FR", "fr"));
  }
  const EnvironmentScope highest("LC_ALL", "de_DE");
  EXPECT_THAT(PreferredLanguages(), ElementsAre("de-DE", "de"));
  const EnvironmentScope list("LANGUAGE", "sv");
  EXPECT_THAT(PreferredLanguages(), ElementsAre("sv"));
  const EnvironmentScope none("LC_ALL", "C");
  EXPECT_THAT(PreferredLanguages(), IsEmpty()) << "with the list too";
}

TEST_F(PreferredLanguagesTest, ThePortGivesThemAsAList) {
  ModuleServices& port = SystemPort<ModuleServices>();
  const EnvironmentScope locale("LANG", "de_DE.UTF-8");
  OLECHAR names[10] = {};
  ULONG count = 7;
  ULONG size = 10;
  EXPECT_TRUE(port.GetThreadPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names, &size));
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(size, 10U);
  EXPECT_EQ(WideView(names, size), WideView(u"de-DE\0de\0", 10));
  size = 9;
  EXPECT_FALSE(port.GetThreadPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names, &size));
  EXPECT_EQ(size, 10U);
  const EnvironmentScope none("LANG", "C");
  size = 10;
  EXPECT_TRUE(port.GetThreadPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names, &size));
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(size, 2U);
}

}  // namespace
}  // namespace velandoc
