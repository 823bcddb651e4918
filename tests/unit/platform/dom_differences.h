// Where the system's DOM under Wine 8 is known to differ from MSXML 6, which the tests otherwise
// describe.
#pragma once

namespace velandoc {

#ifdef _WIN32
inline constexpr bool kIsWine = true;
#else
inline constexpr bool kIsWine = false;
#endif

/// Nesting is not limited.
inline constexpr bool kHasNoDepthLimit = kIsWine;
/// The serializer leaves out xmlns="", so that an element without a namespace is read into its
/// parent's.
inline constexpr bool kLosesEmptyNamespace = kIsWine;
/// An XPath comparison passes over a carriage return at the end of a text.
inline constexpr bool kMatchesAcrossCarriageReturn = kIsWine;
/// appendChild takes a node of another document away from it.
inline constexpr bool kMovesNodesBetweenDocuments = kIsWine;
/// Each request for a node makes another object.
inline constexpr bool kMakesObjectsAnew = kIsWine;
/// An element's attribute map counts the declaration of a default namespace and cannot hand it out,
/// so that a fragment which has one is not copied.
inline constexpr bool kHidesDefaultDeclarations = kIsWine;

/// getNamedItem does not find a namespace declaration, which the map counts all the same.
inline constexpr bool kFindsNoDeclarationByName = kIsWine;
/// Nodes that are replaced are freed, and objects for them read what then lies there.
inline constexpr bool kFreesHeldNodes = kIsWine;
/// An attribute of nothing but a line feed reads as empty.
inline constexpr bool kTrimsLineFeedAttribute = kIsWine;
/// put_text escapes what it puts into a text, CDATA section, comment or instruction, and get_text
/// then returns the escapes.
inline constexpr bool kEscapesPutText = kIsWine;
/// A parse error has no line.
inline constexpr bool kTellsNoLine = kIsWine;
/// createNode takes names that XML does not have.
inline constexpr bool kTakesAnyName = kIsWine;
/// An element is taken into its own subtree, and an attribute away from its element.
inline constexpr bool kTakesImpossibleChildren = kIsWine;

}  // namespace velandoc
