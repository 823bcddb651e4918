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
/// Unpaired surrogates are taken.
inline constexpr bool kTakesUnpairedSurrogates = kIsWine;

}  // namespace velandoc
