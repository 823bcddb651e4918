#include "hosts/command/known_columns.h"

#include <gtest/gtest.h>

#include "hosts/com_apartment.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

std::string Names(std::string_view answer) {
  const ComApartment apartment;
  std::string names;
  for (const KnownColumn& column : ReadContentTypeColumns(answer)) {
    names += Utf8FromWide(column.name) + "/" + Utf8FromWide(column.displayName) + " ";
  }
  return names;
}

TEST(KnownColumns, AreThoseOfTheContentType) {
  EXPECT_EQ(Names("<?xml version='1.0'?><r xmlns='urn:x'><ContentType><Fields>"
                  "<Field Name='Title' DisplayName='Title'><DisplayPattern><Field Name='Inner'/>"
                  "</DisplayPattern></Field><Field Name='Project_x0020_Code' DisplayName='Project "
                  "Code'/><Field DisplayName='No name'/><Field Name='Bare'/></Fields>"
                  "<XmlDocuments><Field Name='Other'/></XmlDocuments></ContentType></r>"),
            "Title/Title Project_x0020_Code/Project Code Bare/ ");
}

TEST(KnownColumns, AreNoneInAnyOtherAnswer) {
  for (const char* answer : {"", "text", "<?xml version='1.0'?><a/>", "<?xml version='1.0'?><a>"}) {
    EXPECT_EQ(Names(answer), "") << answer;
  }
}

}  // namespace
}  // namespace velandoc
