#include "standin/list_updates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "standin/list_fragments.h"
#include "standin/list_rows.h"
#include "standin/page_url.h"
#include "standin/site_changes.h"
#include "standin/site_time.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

// A refusal of one method, told in the answer.
struct Failure {
  std::string_view code;
  std::string_view text;
};

constexpr Failure kNoItem = {"0x81020016",
                             "Item does not exist. The page you selected contains an item that "
                             "does not exist. It may have been deleted by another user."};
constexpr Failure kNoColumn = {"0x81020014",
                               "One or more field types are not installed properly. Go to the "
                               "list settings page to delete these fields."};
constexpr Failure kBadValue = {"0x80020005",
                               "Invalid data has been used to update the list item. The field you "
                               "are trying to update may be read only."};
constexpr Failure kHeldByOther = {"0x80070021",
                                  "The file is checked out for editing by another user."};
constexpr Failure kNotCheckedOut = {"0x81020073",
                                    "The file is not checked out. You must first check out this "
                                    "document before making changes."};
constexpr Failure kNoAccess = {"0x80070005", "Access denied."};

struct Batch {
  std::string methodId;
  std::string itemId;
  std::string fileRef;
  std::vector<std::pair<std::string, std::string>> values;
};

bool HasAttributes(const XmlElement& element, std::initializer_list<std::string_view> names) {
  return element.attributes.size() == names.size() &&
         std::all_of(names.begin(), names.end(), [&element](std::string_view name) {
           return element.Attribute(name) != nullptr;
         });
}

[[noreturn]] void RefuseBatch() {
  throw SoapRefusal("The updates are no batch with one method that updates a document.",
                    "0x82000007");
}

// <Batch><Method ID Cmd='Update'><Field Name='ID'>, <FileRef Name='FileRef'>, <Field Name>...
Batch ReadBatch(const SoapContext& context) {
  const XmlElement* updates = context.Element("updates");
  const XmlElement* root = updates ? FragmentRoot(*updates, "Batch") : nullptr;
  if (!root || !root->attributes.empty() || root->children.size() != 1) RefuseBatch();
  const XmlElement& method = root->children.front();
  if (method.name != "Method" || !HasAttributes(method, {"ID", "Cmd"}) ||
      *method.Attribute("Cmd") != "Update" || method.children.size() < 2)
    RefuseBatch();
  Batch batch;
  batch.methodId = *method.Attribute("ID");
  for (const XmlElement& field : method.children) {
    const std::size_t index = static_cast<std::size_t>(&field - method.children.data());
    // The document's address comes in an element of its own name.
    if (field.name != (index == 1 ? "FileRef" : "Field") || !HasAttributes(field, {"Name"}) ||
        !field.children.empty())
      RefuseBatch();
    const std::string& name = *field.Attribute("Name");
    if ((index == 0 && name != "ID") || (index == 1 && name != "FileRef")) RefuseBatch();
    if (index > 1) batch.values.emplace_back(name, field.text);
  }
  batch.itemId = method.children[0].text;
  batch.fileRef = method.children[1].text;
  return batch;
}

// Fifteen digits, as rows have numbers.
std::string NumberText(double number) {
  int digits = 1;
  for (double rest = std::fabs(number); rest >= 10 && digits < 15; rest /= 10) ++digits;
  std::array<char, 512> text{};
  std::snprintf(text.data(), text.size(), "%.*f", 15 - digits, number);
  return text.data();
}

// The value as the row has it then; throws Failure for what the column does not take.
std::string ValueFor(const Column& column, const std::string& value) {
  if (value.empty()) return value;
  if (column.type == "Number" || column.type == "Currency") {
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (*end != 0 || !std::isfinite(number)) throw kBadValue;
    return NumberText(number);
  }
  if (column.type == "Boolean") {
    if (value == "1" || EqualNoCase(value, "true")) return "1";
    if (value == "0" || EqualNoCase(value, "false")) return "0";
    throw kBadValue;
  }
  if (column.type == "DateTime") {
    // Both "2009-07-04T10:11:12Z" and the row's own form.
    std::string text = value;
    if (text.size() == 19 && text[10] == ' ') {
      text[10] = 'T';
      text += 'Z';
    }
    const auto time = ParseTime(text);
    if (!time) throw kBadValue;
    return RowTime(*time);
  }
  return value;
}

DocumentPlace FindPlace(const SoapContext& context, Library& library, const Batch& batch) {
  const auto itemId = ParseNumber<std::uint32_t>(batch.itemId);
  Document* document = itemId ? library.FindItem(*itemId) : nullptr;
  // Number and address have to be of the same document.
  if (!document || context.site.FindDocument(ParsePageUrl(batch.fileRef).path).document != document)
    throw kNoItem;
  return {&context.web, &library, document};
}

void Apply(const SoapContext& context, const DocumentPlace& place, const Batch& batch) {
  const User* user = nullptr;
  try {
    user = &context.Caller();
  } catch (const SoapRefusal&) {
    throw kNoAccess;
  }
  if (IsHeldByOther(context.site, *place.document, *user)) throw kHeldByOther;
  if (place.library->needsCheckOut && !place.document->checkOut) throw kNotCheckedOut;
  Texts values;
  for (const auto& [name, value] : batch.values) {
    const Column* column = place.library->FindColumn(name);
    if (!column) throw kNoColumn;
    values[name] = ValueFor(*column, value);
  }
  WriteValues(context.site, place, *user, values);
}

}  // namespace

std::string UpdateListItems(const SoapContext& context, Library& library) {
  const Batch batch = ReadBatch(context);
  std::string xml =
      "<Results><Result" + XmlAttribute("ID", batch.methodId + ",Update") + "><ErrorCode>";
  try {
    const DocumentPlace place = FindPlace(context, library, batch);
    Apply(context, place, batch);
    xml += "0x00000000</ErrorCode>";
    xml += RowXml(RowAttributes(context.site, place), XmlAttribute("xmlns:z", "#RowsetSchema"));
  } catch (const Failure& failure) {
    xml += failure.code;
    xml += "</ErrorCode><ErrorText>" + EscapeMarkup(failure.text) + "</ErrorText>";
  }
  return xml + "</Result></Results>";
}

}  // namespace velandoc::standin
