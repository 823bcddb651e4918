#include "standin/site.h"

#include <algorithm>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

std::string_view WithoutSlashes(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return path;
}

// True if `path` is `folder` or lies below it; everything lies below the empty one.
bool IsWithin(std::string_view path, std::string_view folder) {
  if (folder.empty()) return true;
  if (!EqualNoCase(path.substr(0, folder.size()), folder)) return false;
  return path.size() == folder.size() || path[folder.size()] == '/';
}

// `name` as a path below `folder`, of which either may be empty.
std::string Join(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!folder.empty() && !name.empty()) path += '/';
  return path += name;
}

template <typename Item, typename Fits>
Item* Find(std::vector<Item>& items, const Fits& fits) {
  const auto found = std::find_if(items.begin(), items.end(), fits);
  return found == items.end() ? nullptr : &*found;
}

template <typename Item, typename Fits>
const Item* Find(const std::vector<Item>& items, const Fits& fits) {
  const auto found = std::find_if(items.begin(), items.end(), fits);
  return found == items.end() ? nullptr : &*found;
}

// A GUID may come with its braces or without.
bool IsSameId(std::string_view left, std::string_view right) {
  if (left.starts_with('{') && left.ends_with('}')) left = left.substr(1, left.size() - 2);
  if (right.starts_with('{') && right.ends_with('}')) right = right.substr(1, right.size() - 2);
  return EqualNoCase(left, right);
}

}  // namespace

const Column* Library::FindColumn(std::string_view name) const {
  return Find(columns, [name](const Column& column) { return column.name == name; });
}

const ContentType* Library::FindContentType(std::string_view wanted) const {
  return Find(contentTypes,
              [wanted](const ContentType& type) { return EqualNoCase(type.id, wanted); });
}

Document* Library::FindItem(std::uint32_t itemId) {
  return Find(documents, [itemId](const Document& document) { return document.itemId == itemId; });
}

Version Library::ShownVersion(const Document& document) const {
  Version version = document.version;
  if (!document.checkOut) return version;
  if (hasMinorVersions) {
    ++version.minor;
  } else {
    version = {version.major + 1, 0};
  }
  return version;
}

Library* Web::FindLibrary(std::string_view idOrTitle) {
  Library* library =
      Find(libraries, [idOrTitle](const Library& other) { return IsSameId(other.id, idOrTitle); });
  if (library) return library;
  return Find(libraries, [idOrTitle](const Library& other) { return other.title == idOrTitle; });
}

std::string DocumentPlace::Path() const {
  return Join(library ? std::string_view(library->folder) : std::string_view(), document->path);
}

sys_seconds Site::Now() const {
  if (clock) return *clock;
  return std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
}

const User* Site::FindUser(std::string_view login) const {
  return Find(users, [login](const User& user) {
    if (EqualNoCase(user.login, login)) return true;
    const std::size_t backslash = user.login.find('\\');
    return backslash != std::string::npos &&
           EqualNoCase(std::string_view(user.login).substr(backslash + 1), login);
  });
}

Web* Site::FindWeb(std::string_view path) {
  return Find(webs, [path](const Web& web) {
    return EqualNoCase(WithoutSlashes(web.path), WithoutSlashes(path));
  });
}

Web* Site::FindWebOf(std::string_view path) {
  Web* innermost = nullptr;
  for (Web& web : webs) {
    const bool isInner = !innermost || web.path.size() > innermost->path.size();
    if (isInner && IsWithin(path, WithoutSlashes(web.path))) innermost = &web;
  }
  return innermost;
}

DocumentPlace Site::FindDocument(std::string_view path) {
  Web* web = FindWebOf(path);
  return web ? standin::FindDocument(*web, PathInWeb(*web, path)) : DocumentPlace();
}

DocumentPlace FindDocument(Web& web, std::string_view path) {
  const auto isIt = [path](std::string_view folder) {
    return [path, folder](const Document& document) {
      return EqualNoCase(Join(folder, document.path), path);
    };
  };
  for (Library& library : web.libraries)
    if (Document* document = Find(library.documents, isIt(library.folder)))
      return {&web, &library, document};
  if (Document* document = Find(web.documents, isIt({}))) return {&web, nullptr, document};
  return {};
}

std::optional<FolderPlace> FindFolder(Web& web, std::string_view path) {
  if (path.empty()) return FolderPlace{};
  for (Library& library : web.libraries) {
    if (EqualNoCase(library.folder, path)) return FolderPlace{&library, library.folder};
    for (const std::string& folder : library.folders)
      if (EqualNoCase(Join(library.folder, folder), path))
        return FolderPlace{&library, Join(library.folder, folder)};
  }
  return std::nullopt;
}

std::string_view PathInWeb(const Web& web, std::string_view path) {
  path.remove_prefix(std::min(path.size(), WithoutSlashes(web.path).size()));
  while (path.starts_with('/')) path.remove_prefix(1);
  return path;
}

}  // namespace velandoc::standin
