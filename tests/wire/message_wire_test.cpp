#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "wire/hex.h"
#include "wire/message_reader.h"
#include "wire/message_writer.h"

namespace linewatch {
namespace {

Bytes varint(std::uint64_t value) {
  MessageWriter writer;
  writer.writeVarint(value);
  return writer.bytes();
}

TEST(MessageWire, VarintsHoldSevenBitsPerByteAndAreReadBack) {
  for (int bit = 0; bit < 64; ++bit) {
    const std::uint64_t power = std::uint64_t{1} << bit;
    for (const std::uint64_t value : {power - 1, power, power + 1}) {
      SCOPED_TRACE(value);
      const Bytes bytes = varint(value);
      std::size_t sizeByHand = 1;
      for (std::uint64_t rest = value >> 7; rest != 0; rest >>= 7) ++sizeByHand;
      EXPECT_EQ(bytes.size(), sizeByHand);
      MessageReader whole(bytes);
      EXPECT_EQ(whole.readVarint(), value);
      EXPECT_FALSE(whole.hasError() || whole.hasMore());
      for (std::size_t length = 0; length < bytes.size(); ++length) {
        MessageReader cut(bytes.data(), length);
        EXPECT_EQ(cut.readVarint(), 0U);
        EXPECT_TRUE(cut.hasError());
      }
    }
  }
  EXPECT_EQ(varint(300), hex("AC 02"));
  EXPECT_EQ(varint(~std::uint64_t{0}), hex("FF FF FF FF FF FF FF FF FF 01"));
}

TEST(MessageWire, OverLongVarintsReadAsZeroAfterTenBytesWithoutAnError) {
  const Bytes overLong = hex("81 82 83 84 85 86 87 88 89 8A  2A");
  MessageReader reader(overLong);
  EXPECT_EQ(reader.readVarint(), 0U);
  EXPECT_EQ(reader.position(), 10U);
  EXPECT_FALSE(reader.hasError());
  EXPECT_EQ(reader.readVarint(), 42U);

  const Bytes padded = hex("81 80 80 80 80 80 80 80 80 00");
  MessageReader longForm(padded);
  EXPECT_EQ(longForm.readVarint(), 1U) << "ten bytes that end are a varint, however wasteful";

  const Bytes bitsBeyond64 = hex("FF FF FF FF FF FF FF FF FF 7F");
  MessageReader beyond(bitsBeyond64);
  EXPECT_EQ(beyond.readVarint(), ~std::uint64_t{0});
}

TEST(MessageWire, ADoubleWithFewerThanEightBytesDoesNotMoveThePosition) {
  MessageWriter writer;
  writer.writeDoubleField(4, -2.5);
  const Bytes bytes = writer.bytes();
  EXPECT_EQ(bytes, hex("21 | 00 00 00 00 00 00 04 C0"));
  MessageReader reader(bytes.data() + 1, 8);
  EXPECT_EQ(reader.readDouble(), -2.5);
  MessageReader cut(bytes.data() + 1, 7);
  EXPECT_EQ(cut.readDouble(), 0);
  EXPECT_TRUE(cut.hasError());
  EXPECT_EQ(cut.position(), 0U);
}

TEST(MessageWire, LengthsOfNestedMessagesTakeAsManyBytesAsTheyNeed) {
  for (const std::size_t length : {0UL, 1UL, 127UL, 128UL, 1000UL, 1100UL, 16383UL, 16384UL, 3000000UL}) {
    SCOPED_TRACE(length);
    MessageWriter writer;
    writer.writeVarintField(1, 7);
    const auto outer = writer.beginMessage(2), inner = writer.beginMessage(3);
    const std::string text(length, 'x');
    for (const char c : text) writer.writeVarint(static_cast<std::uint64_t>(c));
    writer.endMessage(inner);
    writer.endMessage(outer);
    writer.writeVarintField(4, 9);

    const Bytes innerBytes = varint(length);
    Bytes expected = hex("08 07 12");
    const Bytes outerLength = varint(1 + innerBytes.size() + length);
    expected.insert(expected.end(), outerLength.begin(), outerLength.end());
    expected.push_back(0x1A);
    expected.insert(expected.end(), innerBytes.begin(), innerBytes.end());
    expected.insert(expected.end(), text.begin(), text.end());
    expected.insert(expected.end(), {0x20, 0x09});
    EXPECT_TRUE(writer.bytes() == expected);
    EXPECT_EQ(writer.size(), expected.size());
  }
}

TEST(MessageWire, SkipsAValueOfEachWireType) {
  struct Row {
    const char* name;
    const char* bytes;  // the tag, then the value to skip
    std::size_t position;
    bool skips;
  };
  for (const Row& row : {
           Row{"varint", "08 | 96 01", 3, true},
           Row{"varint cut off", "08 | 96", 0, false},
           Row{"eight bytes", "09 | 01 02 03 04 05 06 07 08 09", 9, true},
           Row{"eight bytes cut off", "09 | 01 02 03 04 05 06 07", 0, false},
           Row{"length-delimited", "0A | 02 FF FF", 4, true},
           Row{"length beyond the end", "0A | 03 FF FF", 0, false},
           Row{"length beyond 2^63", "0A | FF FF FF FF FF FF FF FF FF 01 00", 0, false},
           Row{"four bytes", "0D | 01 02 03 04", 5, true},
           Row{"four bytes cut off", "0D | 01 02 03", 0, false},
           Row{"group", "0B | 10 01 1A 01 00 0C", 7, true},
           Row{"group in a group", "0B | 13 0B 0C 14 0C", 6, true},
           Row{"group that another ends", "0B | 10 01 14", 0, false},
           Row{"group without an end", "0B | 10 01", 0, false},
           Row{"end of no group", "0C", 0, false},
           Row{"wire type 6", "0E | 00", 0, false},
           Row{"wire type 7", "0F | 00", 0, false},
       }) {
    SCOPED_TRACE(row.name);
    const Bytes bytes = hex(row.bytes);
    MessageReader reader(bytes);
    EXPECT_EQ(reader.skipValue(reader.readVarint()), row.skips);
    EXPECT_EQ(reader.hasError(), !row.skips);
    if (row.skips) {
      EXPECT_EQ(reader.position(), row.position);
    }
  }
}

TEST(MessageWire, GroupsNestUpToTheLimit) {
  const auto nested = [](std::size_t depth) {
    Bytes bytes(depth, 0x0B);
    bytes.insert(bytes.end(), depth, 0x0C);
    MessageReader reader(bytes);
    return reader.skipValue(reader.readVarint());
  };
  EXPECT_TRUE(nested(MessageReader::kMaxNesting));
  EXPECT_FALSE(nested(MessageReader::kMaxNesting + 1));
  EXPECT_FALSE(nested(1000000));
}

TEST(MessageWire, ABoundEndsReadingAndIsLifted) {
  const Bytes bytes = hex("02 | 08 01 | 10 02");
  MessageReader reader(bytes);
  const auto bound = reader.boundToMessage();
  ASSERT_TRUE(bound);
  EXPECT_EQ(reader.end(), 3U);
  EXPECT_EQ(reader.readVarint(), 8U);
  reader.liftBound(*bound);
  EXPECT_EQ(reader.position(), 3U) << "what the message left unread is passed over";
  EXPECT_EQ(reader.end(), bytes.size());
  EXPECT_FALSE(reader.boundToMessage()) << "sixteen bytes are not left";
  EXPECT_TRUE(reader.hasError());
}

}  // namespace
}  // namespace linewatch
