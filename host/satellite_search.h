// The search for a satellite: a file with the resources of one language, in a folder of the
// language's name beside the module.
//
//   C:\A\X.dll    C:\A\de-DE\X.res.dll
//
// The separator is the home's own (kPathSeparator).
#pragma once

#include <vector>

#include "platform/text.h"

namespace velandoc {

class SatelliteSearch {
 public:
  /// Goes through the user's languages, best first, and stops at the first one that has a satellite
  /// beside `module`: true, with its name in `path`. An English name ends the search, whatever
  /// stands behind it: English is in the module itself, and who ranks it higher wants that. False,
  /// with an empty `path`, without a satellite and without languages. The buffers are fixed: a list
  /// of more than 120 characters counts as no languages, and of a path of more than 259 the rest is
  /// cut off, so the satellite of such a module is not found.
  ///
  /// The languages are asked for once; only a call that got none makes the next one ask again.
  /// Later changes of the thread's languages have no effect. Not for two threads at once: the
  /// loader, under which it is called, lets one through.
  bool FindSatelliteDll(HINSTANCE module, WideString& path);

 private:
  void FillLanguages();

  std::vector<WideString> m_languages;
};

/// The process's search. Made at its first use, once however many threads come.
SatelliteSearch& ProcessSatelliteSearch();

}  // namespace velandoc
