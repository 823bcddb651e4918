#include "hosts/command/transfer_progress.h"

#include <algorithm>
#include <cstdio>

#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr std::chrono::milliseconds kFirst{300};  // what is done sooner needs no line
constexpr std::chrono::milliseconds kInterval{200};
// A rate that was measured for less says nothing.
constexpr double kShortest = 0.2;
constexpr std::uint64_t kLongestLeft = 100 * 3600;

std::string TimeText(std::uint64_t seconds) {
  char text[32] = {};
  const auto hours = static_cast<unsigned>(seconds / 3600);
  const auto minutes = static_cast<unsigned>(seconds / 60 % 60);
  const auto rest = static_cast<unsigned>(seconds % 60);
  if (hours != 0) {
    std::snprintf(text, sizeof text, "%u:%02u:%02u", hours, minutes, rest);
  } else {
    std::snprintf(text, sizeof text, "%u:%02u", minutes, rest);
  }
  return text;
}

}  // namespace

std::string SizeText(std::uint64_t bytes) {
  constexpr const char* kUnits[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
  constexpr double kStep = 1000;
  if (bytes < 1000) return std::to_string(bytes) + " B";
  double number = static_cast<double>(bytes) / kStep;
  std::size_t unit = 0;
  // What would be shown as 1000 is the next unit's.
  while (number >= 999.5 && unit + 1 < std::size(kUnits)) {
    number /= kStep;
    ++unit;
  }
  char text[32] = {};
  std::snprintf(text, sizeof text, number < 9.95 ? "%.1f %s" : "%.0f %s", number, kUnits[unit]);
  return text;
}

std::string ProgressText(std::uint64_t bytes, std::uint64_t total, double seconds,
                         std::string_view subject, std::size_t columns) {
  std::string text;
  if (total != 0) {
    char share[16] = {};
    std::snprintf(share, sizeof share, "%3u%%  ",
                  static_cast<unsigned>(std::min<std::uint64_t>(
                      static_cast<std::uint64_t>(100.0 * static_cast<double>(bytes) /
                                                 static_cast<double>(total)),
                      100)));
    text += share + SizeText(bytes) + " of " + SizeText(total);
  } else {
    text += SizeText(bytes);
  }
  if (seconds >= kShortest && bytes != 0) {
    const double rate = static_cast<double>(bytes) / seconds;
    text += "  " + SizeText(static_cast<std::uint64_t>(rate)) + "/s";
    if (total > bytes) {
      const double left = static_cast<double>(total - bytes) / rate;
      if (left < static_cast<double>(kLongestLeft)) {
        text += "  " + TimeText(static_cast<std::uint64_t>(left + 0.5)) + " left";
      }
    }
  }
  if (text.size() > columns) text.resize(columns);
  // The subject takes what is left, if that is worth it.
  const std::string shown = VisibleText(subject);
  if (text.size() + 2 + DisplayWidth(shown) <= columns) text += "  " + shown;
  return text;
}

TransferProgress::TransferProgress(bool shown) : m_shown(shown) {}

TransferProgress::~TransferProgress() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard lock(m_mutex);
    m_ends = true;
  }
  m_ended.notify_one();
  m_thread.join();
  Erase();
}

void TransferProgress::Begin(std::uint64_t total, std::string subject) {
  const std::lock_guard lock(m_mutex);
  m_total = total;
  m_subject = std::move(subject);
  m_begun = std::chrono::steady_clock::now();
  if (m_shown && !m_thread.joinable()) m_thread = std::thread([this] { Run(); });
}

void TransferProgress::Print(std::string_view line) {
  const std::lock_guard lock(m_mutex);
  Erase();
  WriteOutput(std::string(line) + "\n");
}

void TransferProgress::Say(std::string_view line) {
  const std::lock_guard lock(m_mutex);
  Erase();
  Talk(line);
}

void TransferProgress::Run() {
  std::unique_lock lock(m_mutex);
  for (auto wait = kFirst; !m_ended.wait_for(lock, wait, [this] { return m_ends; });
       wait = kInterval) {
    Draw();
  }
}

void TransferProgress::Draw() {
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - m_begun;
  // The last column stays empty: some terminals go on to the next line behind it.
  const std::string line =
      ProgressText(m_count.bytes, m_total, passed.count(), m_subject, TalkColumns() - 1);
  WriteTalk("\r" + line + "\x1B[K");
  m_drawn = true;
}

void TransferProgress::Erase() {
  if (!m_drawn) return;
  WriteTalk("\r\x1B[K");
  m_drawn = false;
}

}  // namespace velandoc
