#include "hdfs/preview_lines.h"

#include <cstring>
#include <memory>

namespace velandoc {
namespace {

/// Counts line ends over units of one or two bytes, across chunks. A line end behind a different
/// one belongs to that: CR LF is one end, CR CR are two. So is CR LF CR LF one: an empty line of
/// such a file is not counted, and the preview is a line longer for each.
template <class Unit>
class LineCounter {
 public:
  LineCounter(std::int32_t lines, Unit carriageReturn, Unit lineFeed)
      : m_lines(lines), m_carriageReturn(carriageReturn), m_lineFeed(lineFeed) {}

  bool IsDone() const { return m_count >= m_lines; }

  /// The bytes of the chunk that stand before the last wanted line's end; all whole units if that
  /// is not among them.
  std::size_t Scan(const char* bytes, std::size_t size) {
    const std::size_t units = size / sizeof(Unit);
    for (std::size_t i = 0; i < units; ++i) {
      Unit unit;
      std::memcpy(&unit, bytes + i * sizeof(Unit), sizeof(Unit));
      if (IsEnd(unit) && (!IsEnd(m_previous) || m_previous == unit)) ++m_count;
      m_previous = unit;
      if (IsDone()) return i * sizeof(Unit);
    }
    return units * sizeof(Unit);
  }

 private:
  bool IsEnd(Unit unit) const { return unit == m_carriageReturn || unit == m_lineFeed; }

  const std::int32_t m_lines;
  const Unit m_carriageReturn;
  const Unit m_lineFeed;
  std::int32_t m_count = 0;
  Unit m_previous = 0;
};

template <class Unit>
bool CopyLines(PreviewSource& source, LineCounter<Unit> lines, CFile& file, char* chunk,
               std::uint32_t size) {
  if (lines.IsDone()) return true;
  while (true) {
    file.Write(chunk, static_cast<UINT>(lines.Scan(chunk, size)));
    // Read on even behind the last line: only then does a broken transfer show.
    if (!source.ReadChunk(chunk, &size)) return false;
    if (size == 0 || lines.IsDone()) return true;
  }
}

std::uint16_t FirstUnit(const char* chunk) {
  const auto low = static_cast<unsigned char>(chunk[0]);
  const auto high = static_cast<unsigned char>(chunk[1]);
  return static_cast<std::uint16_t>(low | high << 8);
}

}  // namespace

bool CopyPreviewLines(PreviewSource& source, std::int32_t lines, CFile& file) {
  const auto chunk = std::make_unique<char[]>(PreviewSource::kChunkSize);
  std::uint32_t size = 0;
  if (!source.ReadChunk(chunk.get(), &size)) return false;
  if (size < 3) {
    file.Write(chunk.get(), size);
    return true;
  }
  switch (FirstUnit(chunk.get())) {
    case 0xFEFF:
      return CopyLines(source, LineCounter<std::uint16_t>(lines, 0x000D, 0x000A), file, chunk.get(),
                       size);
    case 0xFFFE:
      return CopyLines(source, LineCounter<std::uint16_t>(lines, 0x0D00, 0x0A00), file, chunk.get(),
                       size);
    default:
      return CopyLines(source, LineCounter<unsigned char>(lines, '\r', '\n'), file, chunk.get(),
                       size);
  }
}

}  // namespace velandoc
