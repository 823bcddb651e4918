#include "standin/answer_stream.h"

#include <algorithm>
#include <array>

namespace velandoc::standin {

bool AnswerStream::Send(std::string_view head, std::string_view body) {
  if (m_isCut) return false;
  if (m_cut) {
    if (!head.empty()) head = UpToCut(head, Cut::At::kHead, m_headSent);
    body = m_isCut ? std::string_view() : UpToCut(body, Cut::At::kBody, m_bodySent);
  }
  bool isSent = true;
  if (m_drip) {
    isSent = SendSlices(head) && SendSlices(body);
  } else {
    const std::array<std::string_view, 2> pieces = {head, body};
    isSent = m_channel.Write(pieces);
  }
  return isSent && !m_isCut;
}

bool AnswerStream::SendSlices(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!m_isFirstSlice && !m_stop.Sleep(m_drip->interval)) return false;
    m_isFirstSlice = false;
    const std::string_view slice = bytes.substr(0, m_drip->bytes);
    bytes.remove_prefix(slice.size());
    if (!m_channel.Write(slice)) return false;
  }
  return true;
}

std::string_view AnswerStream::UpToCut(std::string_view bytes, Cut::At part, std::uint64_t& sent) {
  if (m_cut->at != part) return bytes;
  // The whole head, or no byte of the body, is what a cut without a number means.
  const std::uint64_t limit = m_cut->afterBytes.value_or(part == Cut::At::kHead ? bytes.size() : 0);
  if (sent + bytes.size() >= limit) {
    m_isCut = true;
    bytes = bytes.substr(0, limit - sent);
  }
  sent += bytes.size();
  return bytes;
}

}  // namespace velandoc::standin
