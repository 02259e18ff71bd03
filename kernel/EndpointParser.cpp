#include "kernel/EndpointParser.h"

#include <algorithm>
#include <array>
#include <bit>

namespace kernel {
namespace {

constexpr unsigned kPacketSizeBits = 0x07ff;
constexpr unsigned kTransactionBits = 0x1800;
constexpr unsigned kTransactionShift = 11;
constexpr std::uint8_t kAddressBits = 0x8f;
constexpr std::uint8_t kDirectionIn = 0x80;

/// The fields of the descriptor that corrections apply to.
struct Fields {
  std::uint8_t attributes;
  unsigned maxPacketSize;
  unsigned interval;

  TransferType Type() const { return TransferTypeOf(attributes); }
};

struct IntervalRange {
  unsigned least;
  unsigned most;
  unsigned otherwise;
};

/// The exponents of interrupt endpoints from high speed on. Most impossible values are milliseconds.
IntervalRange InterruptExponents(unsigned interval, std::uint32_t quirks) {
  constexpr unsigned kMost = 16;
  constexpr unsigned kEightMilliseconds = 7;
  const auto width = static_cast<unsigned>(std::bit_width(interval));
  if ((quirks & kQuirkIntervalInMicroframes) != 0) {
    const unsigned exponent = std::clamp(width, 1U, kMost);
    return {exponent, exponent, exponent};
  }
  if ((quirks & kQuirkIntervalInFrames) != 0) {
    const unsigned exponent = std::clamp(width + 3, 1U, kMost);
    return {exponent, exponent, exponent};
  }
  return {1, kMost, interval == 0 ? kEightMilliseconds : width + 3};
}

IntervalRange PossibleIntervals(const Fields& fields, const ParsingRules& rules) {
  if (fields.Type() == TransferType::kInterrupt) {
    return rules.speed >= Speed::kHigh ? InterruptExponents(fields.interval, rules.quirks)
                                       : IntervalRange{1, 255, 10};
  }
  if (fields.Type() == TransferType::kIsochronous) {
    return {1, 16, rules.speed == Speed::kHigh ? 7U : 4U};
  }
  return {0, 255, 0};
}

void CorrectInterval(Fields& fields, const ParsingRules& rules) {
  const IntervalRange range = PossibleIntervals(fields, rules);
  if (fields.interval < range.least || fields.interval > range.most) fields.interval = range.otherwise;
}

/// Low speed has no bulk transfers, so the kernel treats such endpoints as interrupt endpoints.
void CorrectBulkAtLowSpeed(Fields& fields, Speed speed) {
  constexpr unsigned kMost = 8;
  if (speed != Speed::kLow || fields.Type() != TransferType::kBulk) return;
  fields.attributes = static_cast<std::uint8_t>(TransferType::kInterrupt);
  fields.interval = 1;
  if ((fields.maxPacketSize & kPacketSizeBits) > kMost) fields.maxPacketSize = kMost;
}

/// The largest packets by transfer type.
std::array<unsigned, 4> MostBytes(Speed speed) {
  switch (speed) {
    case Speed::kLow:
      return {8, 0, 0, 8};
    case Speed::kFull:
      return {64, 1023, 64, 64};
    case Speed::kSuper:
    case Speed::kSuperPlus:
      return {512, 1024, 1024, 1024};
    default:
      return {64, 1024, 1024, 1024};
  }
}

void CorrectPacketSize(Fields& fields, Speed speed) {
  const bool isPeriodic =
      fields.Type() == TransferType::kInterrupt || fields.Type() == TransferType::kIsochronous;
  const unsigned transactions =
      speed == Speed::kHigh && isPeriodic ? fields.maxPacketSize & kTransactionBits : 0;
  const unsigned most = MostBytes(speed)[static_cast<std::size_t>(fields.Type())];
  fields.maxPacketSize = transactions | std::min(fields.maxPacketSize & ~transactions, most);
}

unsigned BytesOf(const Fields& fields, Speed speed) {
  const unsigned bytes = fields.maxPacketSize & kPacketSizeBits;
  if (speed != Speed::kHigh) return bytes;
  return bytes * (((fields.maxPacketSize & kTransactionBits) >> kTransactionShift) + 1);
}

/// In frames at low and full speed, in microframes from high speed on.
unsigned FramesOf(const Fields& fields, Speed speed, bool isIn) {
  switch (fields.Type()) {
    case TransferType::kControl:
      return speed == Speed::kHigh ? fields.interval : 0;
    case TransferType::kBulk:
      return speed == Speed::kHigh && !isIn ? fields.interval : 0;
    case TransferType::kInterrupt:
      return speed >= Speed::kHigh ? 1U << (fields.interval - 1) : fields.interval;
    default:
      return 1U << (fields.interval - 1);
  }
}

}  // namespace

Endpoint ParseEndpoint(Bytes descriptor, const ParsingRules& rules) {
  constexpr std::uint32_t kFrame = 1000;
  constexpr std::uint32_t kMicroframe = 125;
  Fields fields{descriptor[3], descriptor[4] | static_cast<unsigned>(descriptor[5]) << 8, descriptor[6]};
  CorrectInterval(fields, rules);
  CorrectBulkAtLowSpeed(fields, rules.speed);
  CorrectPacketSize(fields, rules.speed);

  Endpoint endpoint;
  endpoint.address = descriptor[2] & kAddressBits;
  endpoint.attributes = fields.attributes;
  endpoint.maxPacketSize = static_cast<std::uint16_t>(BytesOf(fields, rules.speed));
  endpoint.interval = FramesOf(fields, rules.speed, (endpoint.address & kDirectionIn) != 0) *
                      (rules.speed >= Speed::kHigh ? kMicroframe : kFrame);
  return endpoint;
}

}  // namespace kernel
