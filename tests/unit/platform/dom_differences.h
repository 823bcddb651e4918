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
/// Unpaired surrogates are taken.
inline constexpr bool kTakesUnpairedSurrogates = kIsWine;
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

}  // namespace velandoc
