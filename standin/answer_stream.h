// The way of an answer's bytes to the client, with the disturbances that a rule may ask for.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "standin/channel.h"
#include "standin/stop_signal.h"

namespace velandoc::standin {

// Send in slices with pauses between them.
struct Drip {
  std::uint64_t bytes = 1;
  std::chrono::milliseconds interval{0};
};

// End the connection in the midst of an exchange.
struct Cut {
  enum class At {
    kAccept,   // As soon as the connection stands, before a byte is read.
    kRequest,  // The request is read (or afterBytes of its body), nothing is answered.
    kHead,     // The answer's head is sent (or afterBytes of it).
    kBody,     // The head and afterBytes of the body are sent.
  };
  At at = At::kRequest;
  std::optional<std::uint64_t> afterBytes;
  // With a reset; else with an ordinary end of the stream.
  bool isReset = true;
};

class AnswerStream {
 public:
  AnswerStream(Channel& channel, const StopSignal& stop) : m_channel(channel), m_stop(stop) {}

  void SetDrip(const Drip& drip) { m_drip = drip; }
  void SetCut(const Cut& cut) { m_cut = cut; }

  // Sends a piece of the head and a piece of the body behind it, in one write where nothing
  // disturbs. False once the connection cannot be used any more, because it broke or because it is
  // to be cut.
  bool Send(std::string_view head, std::string_view body);

  // The cut asked for has been reached: the connection is to be ended as it says.
  bool IsCut() const { return m_isCut; }

 private:
  bool SendSlices(std::string_view bytes);
  std::string_view UpToCut(std::string_view bytes, Cut::At part, std::uint64_t& sent);

  Channel& m_channel;
  const StopSignal& m_stop;
  std::optional<Drip> m_drip;
  std::optional<Cut> m_cut;
  std::uint64_t m_headSent = 0;
  std::uint64_t m_bodySent = 0;
  bool m_isFirstSlice = true;
  bool m_isCut = false;
};

}  // namespace velandoc::standin
