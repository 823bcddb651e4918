// The cutter of previews beside a model of it that sees the whole text at once: texts of bytes and
// of 16-bit units in both orders, chunks of any sizes, sources that break.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "hdfs/preview_lines.h"

namespace velandoc {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

using Chunks = std::vector<std::string_view>;

/// Gives one chunk a read, then the end or a failure.
class ChunkSource final : public PreviewSource {
 public:
  ChunkSource(const Chunks& chunks, bool breaks) : m_chunks(chunks), m_breaks(breaks) {}

  bool ReadChunk(void* buffer, std::uint32_t* count) override {
    Require(reads <= m_chunks.size());
    *count = 0;
    if (reads++ == m_chunks.size()) return !m_breaks;
    const std::string_view chunk = m_chunks[reads - 1];
    std::memcpy(buffer, chunk.data(), chunk.size());
    *count = static_cast<std::uint32_t>(chunk.size());
    return true;
  }

  std::size_t reads = 0;

 private:
  const Chunks& m_chunks;
  const bool m_breaks;
};

struct Expected {
  std::string text;
  std::size_t reads = 1;
};

/// `carriageReturn` and `lineFeed` are one unit each, as the text stores it.
Expected ModelOfLines(const Chunks& chunks, std::int32_t lines, std::string_view carriageReturn,
                      std::string_view lineFeed) {
  const std::size_t unitSize = lineFeed.size();
  std::vector<std::string_view> units;
  std::vector<std::size_t> chunkOf;
  for (std::size_t i = 0; i < chunks.size(); ++i) {
    for (std::size_t at = 0; at + unitSize <= chunks[i].size(); at += unitSize) {
      units.push_back(chunks[i].substr(at, unitSize));
      chunkOf.push_back(i);
    }
  }
  const auto isEnd = [&](std::size_t i) {
    return units[i] == carriageReturn || units[i] == lineFeed;
  };
  Expected expected;
  std::int32_t count = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    // The second half of a pair of two different ends is not an end of its own.
    const bool isSecond = i > 0 && isEnd(i - 1) && units[i - 1] != units[i];
    if (isEnd(i) && !isSecond) ++count;
    if (count == lines) {
      expected.reads = chunkOf[i] + 2;
      return expected;
    }
    expected.text += units[i];
  }
  expected.reads = chunks.size() + 1;
  return expected;
}

Expected ModelOf(const Chunks& chunks, std::int32_t lines) {
  const std::string_view first = chunks.empty() ? std::string_view() : chunks.front();
  if (first.size() < 3) return {std::string(first)};
  if (lines <= 0) return {};
  if (first.starts_with("\xFF\xFE")) {
    return ModelOfLines(chunks, lines, {"\r\0", 2}, {"\n\0", 2});
  }
  if (first.starts_with("\xFE\xFF")) {
    return ModelOfLines(chunks, lines, {"\0\r", 2}, {"\0\n", 2});
  }
  return ModelOfLines(chunks, lines, "\r", "\n");
}

/// Sizes from 1 to `largest`, as `seed` throws them.
Chunks Cut(std::string_view text, std::uint32_t seed, std::size_t largest) {
  Chunks chunks;
  while (!text.empty()) {
    seed = seed * 1664525U + 1013904223U;
    const std::size_t size = std::min(text.size(), 1 + (seed >> 16) % largest);
    chunks.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return chunks;
}

void Check(const Chunks& chunks, std::int32_t lines, bool breaks) {
  const Expected expected = ModelOf(chunks, lines);
  ChunkSource source(chunks, breaks);
  CMemFile file;
  const bool isCopied = CopyPreviewLines(source, lines, file);
  Require(file.GetContent() == expected.text);
  Require(source.reads == expected.reads);
  Require(isCopied == !(breaks && source.reads > chunks.size()));
}

}  // namespace
}  // namespace velandoc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // How many lines, how the text is cut, then the text.
  constexpr std::size_t kHead = 3;
  if (size < kHead) return 0;
  const auto lines = static_cast<std::int8_t>(data[0]);
  const std::uint32_t seed = data[1];
  const std::size_t largest = 1 + data[2] / 2U;
  const bool breaks = data[2] % 2 != 0;
  const std::string text(reinterpret_cast<const char*>(data) + kHead, size - kHead);
  std::string lowFirst = "\xFF\xFE";
  std::string highFirst = "\xFE\xFF";
  for (const char byte : text) {
    // Mostly the units that count, and others whose halves look like them.
    const char other = byte == '%' ? '\n' : '\0';
    lowFirst.append({byte, other});
    highFirst.append({other, byte});
  }
  for (const std::string_view kind :
       {std::string_view(text), std::string_view(lowFirst), std::string_view(highFirst)}) {
    velandoc::Check(velandoc::Cut(kind, seed, largest), lines, breaks);
    velandoc::Check(velandoc::Cut(kind, seed, velandoc::PreviewSource::kChunkSize), lines, breaks);
  }
  return 0;
}
