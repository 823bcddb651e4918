// What a server says of a refusal, taken from the answer that it came with.
#pragma once

#include <string>
#include <string_view>

#include "platform/msxml.h"
#include "platform/owners.h"

namespace velandoc {

/// The server's words in one visible line of at most 300 characters, empty if there are none: of a
/// SOAP fault its errorstring or else its faultstring; of the status page of an RPC its msg; of a
/// page its title; of plain text its first line. `answer` may be cut off anywhere. Raises nothing
/// but what allocation raises.
std::string FindServerWord(std::string_view answer);

/// The document of an answer of XML; null if it is none. Raises `_com_error` for a failing DOM.
ComPtr<IXMLDOMDocument2> LoadAnswer(std::string_view answer);

/// Whether `answer` is a SOAP fault, and so the service's own word.
bool IsFault(std::string_view answer);

/// The server's verdict on an update of a list row.
struct UpdateVerdict {
  bool refused = false;
  std::string code;  // "0x81020014", visible
  std::string text;  // the server's words, visible; may be empty
};
/// Reads the Result of an UpdateListItems answer; an answer without one is no refusal.
UpdateVerdict FindUpdateVerdict(std::string_view answer);

/// The text of the first element of this name, of whatever namespace, in an answer of XML; empty if
/// the answer is none or has no such element. Leading and trailing blanks are cut.
std::string FindElementText(std::string_view answer, std::string_view name);

}  // namespace velandoc
