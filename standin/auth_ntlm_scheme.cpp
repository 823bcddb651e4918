#include "standin/auth_ntlm_scheme.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "standin/auth_digests.h"
#include "standin/base64.h"
#include "standin/md4.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kSignature{"NTLMSSP\0", 8};

constexpr std::uint32_t kUnicode = 0x00000001;
constexpr std::uint32_t kOem = 0x00000002;
constexpr std::uint32_t kRequestTarget = 0x00000004;
constexpr std::uint32_t kNtlm = 0x00000200;
constexpr std::uint32_t kAlwaysSign = 0x00008000;
constexpr std::uint32_t kTargetIsServer = 0x00020000;
constexpr std::uint32_t kExtendedSecurity = 0x00080000;
constexpr std::uint32_t kTargetInfo = 0x00800000;

std::uint32_t ReadNumber(std::string_view message, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size && at + i < message.size(); ++i)
    value |= std::uint32_t{static_cast<unsigned char>(message[at + i])} << (8 * i);
  return value;
}

void AddNumber(std::string& message, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) message += static_cast<char>(value >> (8 * i) & 0xff);
}

// A field: 2 bytes of length, 2 of space, 4 of offset from the start of the message.
std::optional<std::string_view> ReadField(std::string_view message, std::size_t at) {
  const std::size_t length = ReadNumber(message, at, 2);
  const std::size_t offset = ReadNumber(message, at + 4, 4);
  if (offset > message.size() || length > message.size() - offset) return std::nullopt;
  return message.substr(offset, length);
}

void AddField(std::string& message, std::size_t length, std::size_t offset) {
  AddNumber(message, static_cast<std::uint32_t>(length), 2);
  AddNumber(message, static_cast<std::uint32_t>(length), 2);
  AddNumber(message, static_cast<std::uint32_t>(offset), 4);
}

// UTF-16LE of UTF-8 text; surrogates for what lies beyond 16 bits.
std::string Utf16(std::string_view utf8) {
  std::string units;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i++]);
    std::uint32_t point = lead;
    int tails = 0;
    if (lead >= 0xf0) {
      point = lead & 7;
      tails = 3;
    } else if (lead >= 0xe0) {
      point = lead & 15;
      tails = 2;
    } else if (lead >= 0xc0) {
      point = lead & 31;
      tails = 1;
    }
    for (; tails > 0 && i < utf8.size(); --tails)
      point = point << 6 | (static_cast<unsigned char>(utf8[i++]) & 0x3f);
    if (point >= 0x10000) {
      AddNumber(units, 0xd7c0 + (point >> 10), 2);
      point = 0xdc00 + (point & 0x3ff);
    }
    AddNumber(units, point, 2);
  }
  return units;
}

// Names in the message are UTF-16 or, for clients without it, bytes, here taken as ASCII.
std::string NameUnits(std::string_view bytes, bool isUnicode) {
  return isUnicode ? std::string(bytes) : Utf16(bytes);
}

std::string UpperUnits(std::string units) {
  for (std::size_t i = 0; i + 1 < units.size(); i += 2)
    if (units[i + 1] == 0 && units[i] >= 'a' && units[i] <= 'z')
      units[i] = static_cast<char>(units[i] - 32);
  return units;
}

// Names of the server, each with its number in the target information.
std::string TargetInformation() {
  static constexpr std::pair<std::uint32_t, std::string_view> kNames[] = {
      {2, "EXAMPLE"}, {1, "DOCS"}, {4, "example.test"}, {3, "docs.example.test"}};
  std::string information;
  for (const auto& [number, name] : kNames) {
    const std::string units = Utf16(name);
    AddNumber(information, number, 2);
    AddNumber(information, static_cast<std::uint32_t>(units.size()), 2);
    information += units;
  }
  AddNumber(information, 0, 4);
  return information;
}

std::string ChallengeMessage(std::uint32_t offered, std::string_view challenge) {
  const bool isUnicode = (offered & kUnicode) != 0;
  const std::string target = isUnicode ? Utf16("DOCS") : "DOCS";
  const std::string information = TargetInformation();
  constexpr std::size_t kPayload = 56;
  std::string message(kSignature);
  AddNumber(message, 2, 4);
  AddField(message, target.size(), kPayload);
  AddNumber(message,
            (isUnicode ? kUnicode : kOem) | kRequestTarget | kNtlm | kAlwaysSign | kTargetIsServer |
                kExtendedSecurity | kTargetInfo,
            4);
  message += challenge;
  message.append(8, '\0');
  AddField(message, information.size(), kPayload + target.size());
  // A version: 10.0, build 17763, NTLM revision 15.
  message += std::string_view("\x0a\x00\x63\x45\x00\x00\x00\x0f", 8);
  return message + target + information;
}

bool IsRightProof(const AuthDemand& demand, std::string_view message, std::string_view challenge) {
  const auto response = ReadField(message, 20);
  const auto domain = ReadField(message, 28);
  const auto user = ReadField(message, 36);
  // NTLMv2 answers are longer than the 24 bytes of the older kinds, which no server should accept.
  if (!response || !domain || !user || response->size() <= 24) return false;
  const bool isUnicode = (ReadNumber(message, 60, 4) & kUnicode) != 0;
  const std::string upperUser = UpperUnits(NameUnits(*user, isUnicode));
  if (upperUser != UpperUnits(Utf16(demand.user))) return false;
  const std::string key =
      HmacMd5(Md4(Utf16(demand.password)), upperUser + NameUnits(*domain, isUnicode));
  const std::string_view proof = response->substr(0, 16);
  const std::string_view rest = response->substr(16);
  return proof == HmacMd5(key, std::string(challenge) + std::string(rest));
}

}  // namespace

bool CheckNtlm(const AuthDemand& demand, std::string_view message, NtlmState& state,
               std::string& challenge) {
  const auto bytes = DecodeBase64(message);
  const std::string open = std::exchange(state.challenge, {});
  state.user.clear();
  if (!bytes || !bytes->starts_with(kSignature)) return false;
  const std::uint32_t type = ReadNumber(*bytes, 8, 4);
  if (type == 1) {
    state.challenge = RandomBytes(8);
    challenge = EncodeBase64(ChallengeMessage(ReadNumber(*bytes, 12, 4), state.challenge));
    return false;
  }
  if (type != 3 || open.empty() || !IsRightProof(demand, *bytes, open)) return false;
  state.user = demand.user;
  return true;
}

}  // namespace velandoc::standin
