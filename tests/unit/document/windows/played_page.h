// A page for the system's browser control where that has no engine to show one: the file that the
// dialog wrote is read, its script runs in the system's JScript with a document made of the file's
// controls, and the control hands that document out.
//
// The control itself is the real one; two of its operations, Navigate2 and get_Document, are
// replaced for the scope, and the one that is offered keys.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/text.h"

namespace velandoc::testing {

class PlayedPage {
 public:
  PlayedPage();
  ~PlayedPage();
  PlayedPage(const PlayedPage&) = delete;
  PlayedPage& operator=(const PlayedPage&) = delete;

  /// False: a page is begun and never complete.
  void SetCompletes(bool completes);
  /// How many Tab keys the page uses for itself before it lets one go.
  void SetFields(int fields);

  /// The URLs that the control was sent to.
  std::vector<std::wstring> Urls() const;
  /// The keys that the page was offered.
  std::vector<WPARAM> Keys() const;

  // In the page that was loaded last.

  /// The user types or chooses.
  void Enter(const std::string& name, const std::string& value);
  void Tick(const std::string& name, int index, bool ticked);
  /// An expression as text: "elements.Title[0].value".
  std::string Evaluate(const std::string& expression);
  /// The alert boxes so far, with "|" between them.
  std::string Alerts();

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

}  // namespace velandoc::testing
