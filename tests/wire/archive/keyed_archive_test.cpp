#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "wire/archive/cbor_keyed_archiver.h"

namespace linewatch {
namespace {

/// An object of the given parts.
class Parcel final : public Archivable {
 public:
  explicit Parcel(ArchivedObject contents, Bytes bytes = {})
      : contents_(std::move(contents)), bytes_(std::move(bytes)) {}
  std::string_view archiveClassName() const override { return "Parcel"; }
  void encodeWithCoder(KeyedCoder& coder) const override {
    coder.encodeObject("contents", contents_);
    coder.encodeBytes("bytes", bytes_);
    coder.encodeBool("sealed", true);
  }

 private:
  ArchivedObject contents_;
  Bytes bytes_;
};

const AllowedClasses kAll = {"value", "array", "error", "Parcel"};

ArchivedObject sampleRoot() {
  const Error error{"D", -7, {{"k", 1.5}}};
  const ArchivedList list = {{Value(std::uint64_t{1})}, {error}};
  return {std::make_shared<const Parcel>(ArchivedObject{list}, Bytes{0xAB})};
}

TEST(CborKeyedArchive, BytesAreAsDocumented) {
  const auto bytes = CborKeyedArchiver().archivedData(sampleRoot(), true);
  const Bytes expected = {0xD9, 0xD9, 0xF7,                                           // CBOR
                          0x83, 0x04, 0x66, 'P',  'a',  'r',  'c',  'e',  'l', 0xA3,  // [4, "Parcel", {
                          0x65, 'b',  'y',  't',  'e',  's',  0x41, 0xAB,             //   "bytes": h'AB',
                          0x68, 'c',  'o',  'n',  't',  'e',  'n',  't',  's',        //   "contents":
                          0x83, 0x03, 0x82, 0x00, 0x01,                               //     [3, [0, 1],
                          0x84, 0x02, 0x61, 'D',  0x26,                               //      [2, "D", -7,
                          0xA1, 0x61, 'k',  0xFA, 0x3F, 0xC0, 0x00, 0x00,             //       {"k": 1.5}]],
                          0x66, 's',  'e',  'a',  'l',  'e',  'd',  0xF5};            //   "sealed": true}]
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, expected);
}

/// What decoding gives: nothing at all, an error, or a root.
enum class Reading { noArchive, error, root };

Reading read(const Bytes& bytes) {
  const auto reader = CborKeyedArchiver().openForReading(bytes);
  if (!reader) return Reading::noArchive;
  reader->setFactory("Parcel", [](KeyedDecoder& decoder) -> std::shared_ptr<const Archivable> {
    auto contents = decoder.decodeObject("contents", kAll);
    auto content = decoder.decodeBytes("bytes");
    decoder.decodeBool("sealed");
    return contents && content ? std::make_shared<const Parcel>(std::move(*contents), std::move(*content))
                               : nullptr;
  });
  std::optional<Error> error;
  const auto root = reader->decodeTopLevelObject(kAll, error);
  EXPECT_TRUE(root || error);
  return error ? Reading::error : Reading::root;
}

TEST(CborKeyedArchive, RefusesWhatItDoesNotWrite) {
  const struct {
    const char* name;
    Bytes item;
  } rows[] = {
      {"null", {0xF6}},
      {"undefined", {0xF7}},
      {"a tag", {0xC1, 0x01}},
      {"an untagged array", {0x80}},
      {"an unknown kind", {0x82, 0x05, 0x01}},
      {"an unsigned integer of two parts", {0x83, 0x00, 0x01, 0x01}},
      {"a negative unsigned integer", {0x82, 0x00, 0x20}},
      {"a signed integer beyond 63 bits", {0x1B, 0x80, 0, 0, 0, 0, 0, 0, 0}},
      {"an array of malformed values", {0x82, 0x01, 0x80}},
      {"a dictionary of malformed values", {0xA1, 0x61, 'a', 0x80}},
      {"an error without info", {0x83, 0x02, 0x61, 'D', 0x01}},
      {"an error with a text for its code", {0x84, 0x02, 0x61, 'D', 0x61, 'x', 0xA0}},
      {"a list with a malformed element", {0x82, 0x03, 0x80}},
      {"an object without parts", {0x82, 0x04, 0x66, 'P', 'a', 'r', 'c', 'e', 'l'}},
      {"a map with a number for a key", {0xA1, 0x01, 0x01}},
      {"an array of more elements than there can be",
       {0x9B, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}},
      {"a text of more bytes than there are", {0x7B, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Bytes bytes = {0xD9, 0xD9, 0xF7};
    bytes.insert(bytes.end(), row.item.begin(), row.item.end());
    EXPECT_EQ(read(bytes), Reading::error);
  }
}

TEST(CborKeyedArchive, HugeGarbageIsRefusedBeforeItFillsMemoryOrStack) {
  constexpr std::size_t kSize = 1'100'000;
  for (const std::uint8_t byte : Bytes{0x81, 0x9F, 0xA1, 0xBF, 0x80, 0x00, 0xFF}) {
    SCOPED_TRACE(byte);
    Bytes bytes(kSize, byte);
    EXPECT_EQ(read(bytes), Reading::noArchive);
    bytes[0] = bytes[1] = 0xD9;
    bytes[2] = 0xF7;
    EXPECT_EQ(read(bytes), Reading::error);
    // The same inside an array without an end, so that every byte is an element.
    bytes[3] = 0x9F;
    EXPECT_EQ(read(bytes), Reading::error);
  }
}

TEST(CborKeyedArchive, WritesOnlyWhatItReads) {
  constexpr std::size_t kMaximumItemCount = 100;
  CborKeyedArchiver archiver(kMaximumItemCount);
  // The list's array and its kind are items too.
  const ArchivedObject most{ArchivedList(98, {Value(true)})}, tooMany{ArchivedList(99, {Value(true)})};
  const auto bytes = archiver.archivedData(most, false);
  ASSERT_TRUE(bytes);
  const auto decode = [&](const Bytes& archive) {
    std::optional<Error> error;
    return archiver.openForReading(archive)->decodeTopLevelObject(kAll, error).has_value();
  };
  EXPECT_TRUE(decode(*bytes));
  EXPECT_FALSE(archiver.archivedData(tooMany, false));
  EXPECT_FALSE(decode(CborKeyedArchiver().archivedData(tooMany, false).value()));
}

TEST(CborKeyedArchive, TextsNeedNotBeUtf8) {
  const std::string odd("\xFF\xC0\0\x80", 4);
  const auto bytes = CborKeyedArchiver().archivedData({Value(Dictionary{{odd, odd}})}, false);
  ASSERT_TRUE(bytes);
  std::optional<Error> error;
  const auto root = CborKeyedArchiver().openForReading(*bytes)->decodeTopLevelObject({"value"}, error);
  ASSERT_TRUE(root);
  EXPECT_EQ(std::get<Value>(root->contents), Value(Dictionary{{odd, odd}}));
}

}  // namespace
}  // namespace linewatch
