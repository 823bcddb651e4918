// The beginning of a text file: its first lines, copied as they stand.
#pragma once

#include <cstdint>

#include "platform/mfc/file.h"

namespace velandoc {

/// Where a preview's bytes come from.
class PreviewSource {
 public:
  static constexpr std::uint32_t kChunkSize = 32768;

  virtual ~PreviewSource() = default;
  /// At most kChunkSize bytes into `buffer`; `*count` 0 with true is the end. False if the read
  /// failed.
  virtual bool ReadChunk(void* buffer, std::uint32_t* count) = 0;
};

/// Copies `source` to `file` up to the end of line `lines`, which is left out itself. CR, LF, CR LF
/// and LF CR end a line each. Text that begins with a UTF-16 mark is scanned by units of that
/// order, mark included; an odd byte at a chunk's end is then dropped. A first chunk of less than
/// three bytes is copied whole, whatever `lines` is; otherwise nothing is copied for `lines` of 0
/// or less. False if a read failed; raises what `file` raises.
bool CopyPreviewLines(PreviewSource& source, std::int32_t lines, CFile& file);

}  // namespace velandoc
