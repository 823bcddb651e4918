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
struct DispatchTable<IHdfsClient> {
  static constexpr DispatchMember kMembers[] = {
      Get<&IHdfsClient::get_Port>(OLESTR("Port"), 1),
      Put<&IHdfsClient::put_Port>(OLESTR("Port"), 1),
      Get<&IHdfsClient::get_ServerName>(OLESTR("ServerName"), 2),
      Put<&IHdfsClient::put_ServerName>(OLESTR("ServerName"), 2),
      Get<&IHdfsClient::get_HdfsPath>(OLESTR("HdfsPath"), 3),
      Put<&IHdfsClient::put_HdfsPath>(OLESTR("HdfsPath"), 3),
      Function<&IHdfsClient::Download>(
          OLESTR("Download"), 4,
          {Default(OLESTR("RandomName"), VARIANT_FALSE), Default(OLESTR("LocalPath"), OLESTR(""))}),
      Put<&IHdfsClient::put_BaseUrl>(OLESTR("BaseUrl"), 5),
      Get<&IHdfsClient::get_BaseUrl>(OLESTR("BaseUrl"), 5),
      Function<&IHdfsClient::Stream>(OLESTR("Stream"), 6),
      Function<&IHdfsClient::DownloadPreview>(OLESTR("DownloadPreview"), 7,
                                              {Default(OLESTR("NumberOfLines"), 1000)}),
      Put<&IHdfsClient::put_UserName>(OLESTR("UserName"), 8),
      Get<&IHdfsClient::get_UserName>(OLESTR("UserName"), 8),
      Function<&IHdfsClient::VerifyServer>(OLESTR("VerifyServer"), 10,
                                           {OLESTR("URL"), Optional(OLESTR("UserName"))}),
      Get<&IHdfsClient::get_Secure>(OLESTR("Secure"), 11),
      Put<&IHdfsClient::put_Secure>(OLESTR("Secure"), 11),
      Get<&IHdfsClient::get_URL>(OLESTR("URL"), 12),
      Get<&IHdfsClient::get_ConnectionError>(OLESTR("ConnectionError"), 14),
      Get<&IHdfsClient::get_Op>(OLESTR("Op"), 15),
      Put<&IHdfsClient::put_Op>(OLESTR("Op"), 15),
      Function<&IHdfsClient::GetText>(OLESTR("GetText"), 16),
      Get<&IHdfsClient::get_Options>(OLESTR("Options"), 17),
      Put<&IHdfsClient::put_Options>(OLESTR("Options"), 17),
      Method<&IHdfsClient::Upload>(
          OLESTR("Upload"), 18,
          {OLESTR("FileNameOrStream"), Default(OLESTR("OverwriteFlag"), VARIANT_TRUE),
           Default(OLESTR("OctalPermissions"), OLESTR(""))}),
      Function<&IHdfsClient::Delete>(OLESTR("Delete"), 19,
                                     {Default(OLESTR("Recursive"), VARIANT_FALSE)}),
      Function<&IHdfsClient::Rename>(OLESTR("Rename"), 20, {OLESTR("NewName")}),
      Function<&IHdfsClient::CreateFolder>(OLESTR("CreateFolder"), 21,
                                           {Default(OLESTR("OctalPermissions"), OLESTR(""))}),
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
