#include "platform/posix/http/handles.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "platform/posix/last_error.h"

namespace velandoc::http {
namespace {

struct Table {
  std::mutex mutex;
  std::unordered_map<HINTERNET, std::shared_ptr<HandleObject>> objects;
  // Numbers rise and are not used again, so a stale handle never means a newer object.
  std::uintptr_t next = 0x00CC0004;
};

// Never destroyed: other threads may still close handles while the program ends.
Table& TheTable() {
  static Table& table = *new Table;
  return table;
}

}  // namespace

HINTERNET HandleTable::Open(std::shared_ptr<HandleObject> object, HINTERNET parent) {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  // A number, not an address: nothing lies behind it.
  const auto handle = reinterpret_cast<HINTERNET>(table.next);
  table.next += 4;
  object->m_parent = parent;
  if (const auto found = table.objects.find(parent); found != table.objects.end()) {
    found->second->m_children.push_back(handle);
  }
  table.objects.emplace(handle, std::move(object));
  return handle;
}

std::shared_ptr<HandleObject> HandleTable::Find(HINTERNET handle) {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.objects.find(handle);
  return found != table.objects.end() ? found->second : nullptr;
}

bool HandleTable::Close(HINTERNET handle) {
  // Objects die behind the lock: a request that closes drains its connection first.
  std::shared_ptr<HandleObject> lone;
  std::vector<std::shared_ptr<HandleObject>> dying;
  Table& table = TheTable();
  {
    const std::lock_guard lock(table.mutex);
    const auto found = table.objects.find(handle);
    if (found == table.objects.end()) return false;
    if (const auto parent = table.objects.find(found->second->m_parent);
        parent != table.objects.end()) {
      std::erase(parent->second->m_children, handle);
    }
    if (found->second->m_children.empty()) {
      lone = std::move(found->second);
      table.objects.erase(found);
      return true;
    }
    std::vector<HINTERNET> closing = {handle};
    while (!closing.empty()) {
      const auto next = table.objects.find(closing.back());
      closing.pop_back();
      if (next == table.objects.end()) continue;
      closing.insert(closing.end(), next->second->m_children.begin(),
                     next->second->m_children.end());
      dying.push_back(std::move(next->second));
      table.objects.erase(next);
    }
  }
  std::reverse(dying.begin(), dying.end());
  dying.clear();
  return true;
}

std::size_t HandleTable::OpenCount() {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  return table.objects.size();
}

void HandleTable::ReportWrong(bool isOpen) {
  FailWith(isOpen ? ERROR_INTERNET_INCORRECT_HANDLE_TYPE : ERROR_INVALID_HANDLE);
}

}  // namespace velandoc::http
