// Linux: the members out of the dispatch tables.
#include <gtest/gtest.h>

#include <span>

#include "resources/dispatch_tables.h"
#include "tests/unit/host/interface_members.h"

namespace velandoc::testing {
namespace {

std::string Narrow(LPCOLESTR text) {
  std::string narrow;
  for (; *text != 0; ++text) narrow += static_cast<char>(*text);
  return narrow;
}

std::string TypeText(const DispatchType& type) {
  if (type.iid != nullptr) {
    if (*type.iid == IID_IStream) return "IStream*";
    if (*type.iid == IID_IConnectionError) return "IConnectionError*";
  }
  EXPECT_FALSE(type.isByRef);
  switch (type.type) {
    case VT_EMPTY:
      return "";
    case VT_BOOL:
      return "BOOL";
    case VT_BSTR:
      return "BSTR";
    case VT_UI2:
      return "UI2";
    case VT_I4:
      return "I4";
    case VT_I8:
      return "I8";
    case VT_R8:
      return "R8";
    case VT_VARIANT:
      return "VARIANT";
    default:
      return "type " + std::to_string(type.type);
  }
}

std::string ArgumentText(const DispatchMember& member, std::size_t at) {
  std::string text = TypeText(member.types[at]);
  const DispatchArgument& argument = member.arguments[at];
  if (argument.name != nullptr) text += " " + Narrow(argument.name);
  switch (argument.absence) {
    case DispatchArgument::Absence::kRequired:
      return text;
    case DispatchArgument::Absence::kMissing:
      return text + "?";
    case DispatchArgument::Absence::kNumber:
      return text + " = " + std::to_string(argument.number);
    default:
      return text + " = '" + Narrow(argument.text) + "'";
  }
}

MemberText Describe(const DispatchMember& member) {
  const char* const kind = member.kind == DISPATCH_METHOD        ? " method "
                           : member.kind == DISPATCH_PROPERTYGET ? " get "
                                                                 : " put ";
  std::string text = std::to_string(member.id) + kind + Narrow(member.name) + "(";
  for (std::size_t at = 0; at < member.count; ++at) {
    text += (at != 0 ? ", " : "") + ArgumentText(member, at);
  }
  return {text + ")", TypeText(member.result), ""};
}

std::span<const DispatchMember> TableOf(REFIID iid) {
  if (iid == IID_IServerCheck) return DispatchTable<IServerCheck>::kMembers;
  if (iid == IID_IClient) return DispatchTable<IClient>::kMembers;
  if (iid == IID_IHdfsClient) return DispatchTable<IHdfsClient>::kMembers;
  if (iid == IID_IConnectionError) return DispatchTable<IConnectionError>::kMembers;
  ADD_FAILURE() << "no table";
  return {};
}

}  // namespace

std::vector<MemberText> DescribeMembers(REFIID iid) {
  std::vector<MemberText> members;
  for (const DispatchMember& member : TableOf(iid)) members.push_back(Describe(member));
  return members;
}

bool KeepsHelpAndResultNames() { return false; }

}  // namespace velandoc::testing
