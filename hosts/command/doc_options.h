// What the user typed behind `velandoc doc`, understood.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc {

enum class DocAction { kShow, kMeta, kStatus, kFields, kSet, kEdit, kCheckOut, kCheckIn, kUndo };

/// A column and the value that it is to have.
struct Assignment {
  std::string name;
  std::string value;
};

struct DocOptions {
  DocAction action = DocAction::kShow;
  std::string target;
  std::vector<std::string> words;       // keys of meta, NAME=VALUE of set, as typed
  std::vector<Assignment> assignments;  // the words of set, taken apart
  bool escape = false;                  // set and edit: write & and < as references
  bool terminal = false;                // edit: ask here and show no dialog
  std::string comment;                  // of checkin
  std::string typeWord = "major";       // of checkin, as typed
  int type = 1;                         // the same as the server's number
};

/// Takes apart and checks what the parser cannot. The mistake, as one line without a full stop;
/// nothing if there is none.
std::optional<std::string> FinishDocOptions(DocOptions& options);

/// Why `text` cannot be carried by a request of XML: a control character or a half of a surrogate
/// pair, which XML has no form for, or a carriage return, which arrives as a line feed. As the end
/// of a sentence; nothing if all of it can.
std::optional<std::string> FindUncarried(std::string_view text);

/// Why a value cannot be carried by an update of a list row, whose text goes into XML as it stands:
/// FindUncarried; blanks alone; and, unless it is to be escaped, "&", "<" and "]]>", with which the
/// whole update would be lost without a word.
std::optional<std::string> FindUncarriedByUpdate(std::string_view value, bool escape);

/// "&", "<" and ">" as references.
std::string EscapedForUpdate(std::string_view value);

}  // namespace velandoc
