// The SharePoint site that the server plays: plain values, and how to find things in them.
//
// Paths are UTF-8 without escapes; case does not matter when they are compared, in ASCII only.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc::standin {

using std::chrono::sys_seconds;

using Texts = std::map<std::string, std::string, std::less<>>;

struct User {
  std::uint32_t id = 0;
  std::string login;  // DOMAIN\name
  std::string name;   // shown to people
  std::string email;
};

struct Version {
  std::uint32_t major = 1;
  std::uint32_t minor = 0;

  std::string Text() const { return std::to_string(major) + "." + std::to_string(minor); }
  // The same as one number, as list rows have it.
  std::uint32_t Number() const { return major * 512 + minor; }
  bool IsUnborn() const { return major == 0 && minor == 0; }
};

struct Column {
  std::string name;
  std::string displayName;
  std::string type;
  std::string format;
  bool isRequired = false;
  // Nothing: the schema does not say.
  std::optional<bool> isInFileDialog;
  // Empty: made for the library itself.
  std::string sourceId;
  std::optional<std::string> defaultValue;
  std::vector<std::string> choices;
};

struct ContentType {
  std::string id;
  std::string name;
  std::vector<std::string> columns;  // names
};

// What an update writes and letting go of a check-out brings back.
struct Content {
  Texts values;  // by column name; a column without a value is not among them
  sys_seconds modified{};
  std::string editor;  // a login
};

struct CheckOut {
  std::string login;
  sys_seconds time{};
  Content before;
};

// How a document's times look in its meta-info.
enum class TimeForm {
  kLetters,  // TR|04 Jul 2009 10:11:12 -0000
  kWeekday,  // Tue, 07 Jul 2009 10:11:12
};

struct Document {
  std::string path;  // below the library's folder, or below the web
  std::string uniqueId;
  std::uint32_t itemId = 0;  // 0 outside of libraries
  std::string contentType;   // an id
  Version version;           // the last one checked in; 0.0 if there was none yet
  std::uint32_t revision = 1;
  std::uint64_t size = 0;
  sys_seconds created{};
  std::string author;  // a login
  Content content;
  std::string comment;  // of the last check-in
  TimeForm timeForm = TimeForm::kLetters;
  std::optional<CheckOut> checkOut;
  // Raw meta-info that stands in place of what the server would say; nothing takes a key away.
  std::map<std::string, std::optional<std::string>, std::less<>> meta;
};

struct Library {
  std::string id;
  std::string title;
  std::string folder;                // below the web
  std::vector<std::string> folders;  // below that
  bool hasMinorVersions = true;
  // Columns can be changed only by who has checked the document out.
  bool needsCheckOut = false;
  std::vector<Column> columns;
  std::vector<ContentType> contentTypes;
  std::vector<Document> documents;

  const Column* FindColumn(std::string_view name) const;
  const ContentType* FindContentType(std::string_view id) const;
  Document* FindItem(std::uint32_t itemId);
  // The version that a document shows: with a check-out, the one it is going to be.
  Version ShownVersion(const Document& document) const;
};

struct Web {
  std::string path;  // from the server's root, "/" for the root web; no other ends in a slash
  std::string title;
  std::vector<Library> libraries;
  std::vector<Document> documents;

  Library* FindLibrary(std::string_view idOrTitle);
};

// A document with what it lies in. `library` is null outside of libraries. All null: not found.
struct DocumentPlace {
  Web* web = nullptr;
  Library* library = nullptr;
  Document* document = nullptr;

  // Below the web.
  std::string Path() const;
};

// `library` is null for folders that belong to none; `path` is the folder as the site writes it.
struct FolderPlace {
  Library* library = nullptr;
  std::string path;
};

struct Site {
  // Nothing: the machine's time.
  std::optional<sys_seconds> clock;
  std::string caller;  // the login of who comes without credentials
  std::vector<User> users;
  std::vector<Web> webs;

  sys_seconds Now() const;
  // By login, by the name in the login behind "\" too. Null when there is none.
  const User* FindUser(std::string_view login) const;
  // The web at exactly this path; slashes at its end do not count.
  Web* FindWeb(std::string_view path);
  // The innermost web that holds the path; null if there is no root web.
  Web* FindWebOf(std::string_view path);
  // By a path from the server's root.
  DocumentPlace FindDocument(std::string_view path);
};

DocumentPlace FindDocument(Web& web, std::string_view path);
std::optional<FolderPlace> FindFolder(Web& web, std::string_view path);

// What lies below `web`, for a path from the server's root that is in it.
std::string_view PathInWeb(const Web& web, std::string_view path);

}  // namespace velandoc::standin
