#include "standin/md4.h"

#include <array>
#include <bit>
#include <cstdint>

namespace velandoc::standin {
namespace {

using State = std::array<std::uint32_t, 4>;

struct Round {
  std::uint32_t constant;
  std::array<std::uint8_t, 16> order;
  std::array<int, 4> rotations;
};

constexpr std::array<Round, 3> kRounds = {{
    {0x00000000, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, {3, 7, 11, 19}},
    {0x5a827999, {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15}, {3, 5, 9, 13}},
    {0x6ed9eba1, {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15}, {3, 9, 11, 15}},
}};

std::uint32_t Mix(std::size_t round, std::uint32_t x, std::uint32_t y, std::uint32_t z) {
  switch (round) {
    case 0:
      return (x & y) | (~x & z);
    case 1:
      return (x & y) | (x & z) | (y & z);
    default:
      return x ^ y ^ z;
  }
}

void AddBlock(State& state, std::string_view block) {
  std::array<std::uint32_t, 16> words{};
  for (std::size_t i = 0; i < 64; ++i)
    words[i / 4] |= std::uint32_t{static_cast<unsigned char>(block[i])} << (i % 4 * 8);
  State work = state;
  for (std::size_t round = 0; round < kRounds.size(); ++round) {
    for (std::size_t step = 0; step < 16; ++step) {
      const std::uint32_t sum = work[0] + Mix(round, work[1], work[2], work[3]) +
                                words[kRounds[round].order[step]] + kRounds[round].constant;
      work = {work[3], std::rotl(sum, kRounds[round].rotations[step % 4]), work[1], work[2]};
    }
  }
  for (std::size_t i = 0; i < 4; ++i) state[i] += work[i];
}

}  // namespace

std::string Md4(std::string_view bytes) {
  std::string padded(bytes);
  padded += '\x80';
  while (padded.size() % 64 != 56) padded += '\0';
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (int shift = 0; shift < 64; shift += 8) padded += static_cast<char>(bits >> shift & 0xff);

  State state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  for (std::size_t at = 0; at < padded.size(); at += 64)
    AddBlock(state, std::string_view(padded).substr(at, 64));

  std::string digest;
  for (const std::uint32_t word : state)
    for (int shift = 0; shift < 32; shift += 8) digest += static_cast<char>(word >> shift & 0xff);
  return digest;
}

}  // namespace velandoc::standin
