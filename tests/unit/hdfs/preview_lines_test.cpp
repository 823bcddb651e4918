#include "hdfs/preview_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace velandoc {
namespace {

/// Gives a text in pieces of `size` bytes, and fails behind it if told.
class TextSource final : public PreviewSource {
 public:
  TextSource(std::string text, std::size_t size, bool breaks = false)
      : m_text(std::move(text)), m_size(size), m_breaks(breaks) {}

  bool ReadChunk(void* buffer, std::uint32_t* count) override {
    ++reads;
    const std::size_t size = std::min(m_size, m_text.size() - m_at);
    std::memcpy(buffer, m_text.data() + m_at, size);
    m_at += size;
    *count = static_cast<std::uint32_t>(size);
    return size != 0 || !m_breaks;
  }

  int reads = 0;

 private:
  const std::string m_text;
  const std::size_t m_size;
  const bool m_breaks;
  std::size_t m_at = 0;
};

std::string Preview(const std::string& text, std::int32_t lines,
                    std::size_t size = PreviewSource::kChunkSize) {
  TextSource source(text, size);
  CMemFile file;
  EXPECT_TRUE(CopyPreviewLines(source, lines, file));
  return file.GetContent();
}

std::string Wide(const std::string& text, bool bigEndian) {
  std::string wide = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : text) {
    wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return wide;
}

TEST(PreviewLines, LineEndsOfEachKindCountAndTheLastIsLeftOut) {
  const struct {
    const char* text;
    std::int32_t lines;
    const char* expected;
    const char* why;
  } rows[] = {
      {"a\nb\nc\n", 2, "a\nb", "LF"},
      {"a\rb\rc\r", 2, "a\rb", "CR"},
      {"a\r\nb\r\nc", 2, "a\r\nb", "CR LF counts once"},
      {"a\n\rb\n\rc", 2, "a\n\rb", "LF CR counts once"},
      {"a\n\nb\n", 2, "a\n", "LF LF counts twice"},
      {"a\r\rb\r", 2, "a\r", "CR CR counts twice"},
      {"a\r\n\r\nb\r\nc", 2, "a\r\n\r\nb", "an empty line between CR LFs is not counted"},
      {"\nabc", 1, "", "an end at the very start"},
      {"abc", 1, "abc", "a text without an end"},
      {"abc\n", 5, "abc\n", "fewer lines than asked for"},
      {"abc\n", 0, "", "none asked for"},
      {"abc\n", -7, "", "less than none"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Preview(row.text, row.lines), row.expected) << row.why;
    for (const bool bigEndian : {false, true}) {
      const bool isAsked = row.lines > 0;
      EXPECT_EQ(Preview(Wide(row.text, bigEndian), row.lines),
                isAsked ? Wide(row.expected, bigEndian) : "")
          << row.why << ", in 16-bit units";
    }
  }
}

TEST(PreviewLines, AShortFirstChunkIsCopiedWhole) {
  for (const char* text : {"", "a", "\n", "\r\n", "\xFF\xFE"}) {
    for (const std::int32_t lines : {0, 1, 1000}) EXPECT_EQ(Preview(text, lines), text);
  }
}

TEST(PreviewLines, ChunksOfAnySizeGiveTheSameLines) {
  const std::string text = "one\r\ntwo\n\nfour\rfive\n\rsix\r\n\r\neight\n";
  for (std::int32_t lines = 1; lines < 10; ++lines) {
    const std::string whole = Preview(text, lines);
    for (std::size_t size = 3; size < text.size(); ++size) {
      EXPECT_EQ(Preview(text, lines, size), whole) << lines << " lines by " << size;
    }
    for (const bool bigEndian : {false, true}) {
      const std::string wide = Wide(text, bigEndian);
      const std::string wholeWide = Preview(wide, lines);
      EXPECT_EQ(wholeWide, Wide(whole, bigEndian));
      for (std::size_t size = 4; size < wide.size(); size += 2) {
        EXPECT_EQ(Preview(wide, lines, size), wholeWide) << lines << " lines by " << size;
      }
    }
  }
}

TEST(PreviewLines, AnOddByteAtAChunksEndIsDropped) {
  // FF FE 61 | 00 62 00 | 63: the units are FFFE and 6200, and two bytes are lost.
  EXPECT_EQ(Preview(std::string("\xFF\xFE\x61\0\x62\0\x63", 7), 1, 3),
            std::string("\xFF\xFE\0\x62", 4));
}

TEST(PreviewLines, TheChunkBehindTheLastLineIsReadAndNoMore) {
  const std::string text = "a\n" + std::string(100, 'x');
  TextSource source(text, 10);
  CMemFile file;
  EXPECT_TRUE(CopyPreviewLines(source, 1, file));
  EXPECT_EQ(source.reads, 2);
  TextSource none(text, 10);
  EXPECT_TRUE(CopyPreviewLines(none, 0, file));
  EXPECT_EQ(none.reads, 1);
}

TEST(PreviewLines, AFailedReadFailsBehindTheLastLineToo) {
  for (const char* text : {"", "one\n", "one\ntwo", "\xFF\xFE\x0A\x01"}) {
    TextSource source(text, 100, true);
    CMemFile file;
    EXPECT_FALSE(std::strlen(text) < 3 && *text != 0) << "would not be read on";
    EXPECT_FALSE(CopyPreviewLines(source, 1, file)) << text;
  }
}

}  // namespace
}  // namespace velandoc
