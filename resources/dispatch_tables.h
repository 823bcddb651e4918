// The members of the dual interfaces for the home that has no type library; names, numbers, order
// and defaults as in velandoc.idl. A row is explained in platform/posix/dispatch_member.h.
#pragma once

#include "platform/posix/dispatch_member.h"
#include "velandoc_idl.h"

namespace velandoc {

template <>
struct DispatchTable<IServerCheck> {
  static constexpr DispatchMember kMembers[] = {
      Function<&IServerCheck::Check>(OLESTR("Check"), 1, {OLESTR("ServerName")}),
  };
};

template <>
struct DispatchTable<IClient> {
  static constexpr DispatchMember kMembers[] = {
      Function<&IClient::InitFromUNC>(OLESTR("InitFromUNC"), 1, {OLESTR("UNCPath")}),
      Function<&IClient::InitFromURL>(OLESTR("InitFromURL"), 2, {OLESTR("URLPath")}),
      Get<&IClient::get_URL>(OLESTR("URL"), 3),
      Get<&IClient::get_WebURL>(OLESTR("WebURL"), 4),
      Get<&IClient::get_ListID>(OLESTR("ListID"), 5),
      Get<&IClient::get_ContentTypeID>(OLESTR("ContentTypeID"), 6),
      Get<&IClient::get_DocID>(OLESTR("DocID"), 7),
      Function<&IClient::CheckOut>(OLESTR("CheckOut"), 8),
      Function<&IClient::CheckIn>(OLESTR("CheckIn"), 9, {OLESTR("Comment"), OLESTR("CheckInType")}),
      Function<&IClient::UndoCheckOut>(OLESTR("UndoCheckOut"), 10),
      Get<&IClient::get_CheckOutTime>(OLESTR("CheckOutTime"), 11),
      Function<&IClient::GetCheckOutStatus>(OLESTR("GetCheckOutStatus"), 12),
      Get<&IClient::get_SharePointCheckoutUser>(OLESTR("SharePointCheckoutUser"), 13),
      Get<&IClient::get_ModifiedSinceCheckOut>(OLESTR("ModifiedSinceCheckOut"), 14),
      Get<&IClient::get_FrontPageMetaInfo>(OLESTR("FrontPageMetaInfo"), 15, {OLESTR("MetaTag")}),
      Get<&IClient::get_TimeLastModified>(OLESTR("TimeLastModified"), 16),
      Function<&IClient::IsInitialCreation>(OLESTR("IsInitialCreation"), 17),
      Function<&IClient::ShouldAskForCheckIn>(OLESTR("ShouldAskForCheckIn"), 18),
      Get<&IClient::get_ModifiedTimeUTCOA>(OLESTR("ModifiedTimeUTCOA"), 19),
      Function<&IClient::HasUnfilledFields>(OLESTR("HasUnfilledFields"), 20),
      Function<&IClient::HasFields>(OLESTR("HasFields"), 21),
      Function<&IClient::HasUnfilledRequiredFields>(OLESTR("HasUnfilledRequiredFields"), 22),
      Function<&IClient::EditFields>(OLESTR("EditFields"), 23),
  };
};

template <>
struct DispatchTable<IConnectionError> {
  static constexpr DispatchMember kMembers[] = {
      Get<&IConnectionError::get_HttpCode>(OLESTR("HttpCode"), 1),
      Get<&IConnectionError::get_Message>(OLESTR("Message"), 2),
  };
};

}  // namespace velandoc
