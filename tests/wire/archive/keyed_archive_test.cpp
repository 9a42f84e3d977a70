#include <functional>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/transit_storage_incident.h"
#include "wire/archive/cbor_keyed_archiver.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

/// An object with a label that can hold another object.
struct Box final : Archivable {
  std::string label;
  std::optional<ArchivedObject> inside;
  bool isSecure = true;

  Box(std::string text, std::optional<ArchivedObject> contents = std::nullopt, bool secure = true)
      : label(std::move(text)), inside(std::move(contents)), isSecure(secure) {}

  std::string_view archiveClassName() const override { return "Box"; }
  bool supportsSecureCoding() const override { return isSecure; }
  void encodeWithCoder(KeyedCoder& coder) const override {
    coder.encodeBytes("label", Bytes(label.begin(), label.end()));
    if (inside) coder.encodeObject("inside", *inside);
    coder.encodeBool("closed", true);
  }
  static std::shared_ptr<const Archivable> make(KeyedDecoder& decoder, const AllowedClasses& allowed) {
    const auto label = decoder.decodeBytes("label");
    if (!label || !decoder.decodeBool("closed")) return nullptr;
    return std::make_shared<const Box>(std::string(label->begin(), label->end()),
                                       decoder.decodeObject("inside", allowed));
  }
};

ArchivedObject boxed(std::string label, std::optional<ArchivedObject> inside = std::nullopt,
                     bool isSecure = true) {
  return {std::make_shared<const Box>(std::move(label), std::move(inside), isSecure)};
}

const Box* boxIn(const std::optional<ArchivedObject>& object) {
  if (!object) return nullptr;
  const auto* archivable = std::get_if<std::shared_ptr<const Archivable>>(&object->contents);
  return archivable != nullptr ? dynamic_cast<const Box*>(archivable->get()) : nullptr;
}

const Value* valueIn(const std::optional<ArchivedObject>& object) {
  return object ? std::get_if<Value>(&object->contents) : nullptr;
}

const AllowedClasses kAll = {"Box", "value", "array", "error"};

class CborKeyedArchive : public testing::Test {
 protected:
  struct Reading {
    bool isArchive = false;
    std::optional<ArchivedObject> root;
    std::optional<Error> error;
  };

  std::unique_ptr<KeyedUnarchiver> open(const Bytes& bytes, const AllowedClasses& insideBoxes = kAll) {
    auto reader = archiver_.openForReading(bytes);
    if (reader) {
      reader->setFactory("Box",
                         [insideBoxes](KeyedDecoder& decoder) { return Box::make(decoder, insideBoxes); });
    }
    return reader;
  }
  Reading read(const Bytes& bytes, const AllowedClasses& allowed = kAll,
               const AllowedClasses& insideBoxes = kAll) {
    const auto reader = open(bytes, insideBoxes);
    Reading reading{reader != nullptr, {}, {}};
    if (reader) reading.root = reader->decodeTopLevelObject(allowed, reading.error);
    return reading;
  }
  Reading readBack(const ArchivedObject& root, const AllowedClasses& allowed = kAll,
                   const AllowedClasses& insideBoxes = kAll) {
    const auto bytes = archiver_.archivedData(root, true);
    EXPECT_TRUE(bytes);
    return bytes ? read(*bytes, allowed, insideBoxes) : Reading{};
  }
  void expectKept(const Value& value) {
    SCOPED_TRACE(value.description());
    const Reading reading = readBack({value}, {"value"});
    EXPECT_FALSE(reading.error);
    ASSERT_NE(valueIn(reading.root), nullptr);
    EXPECT_EQ(*valueIn(reading.root), value);
  }

  CborKeyedArchiver archiver_;
};

TEST_F(CborKeyedArchive, BytesAreAsDocumented) {
  const ArchivedList list = {{Value(std::uint64_t{1})}, {Error{"D", -7, {{"k", 1.5}}}}};
  const auto bytes = archiver_.archivedData(boxed("\xAB", ArchivedObject{list}), true);
  const Bytes expected = {0xD9, 0xD9, 0xF7,                                 // CBOR
                          0x83, 0x04, 0x63, 'B',  'o',  'x',  0xA3,         // [4, "Box", {
                          0x66, 'c',  'l',  'o',  's',  'e',  'd',  0xF5,   //   "closed": true,
                          0x66, 'i',  'n',  's',  'i',  'd',  'e',          //   "inside":
                          0x83, 0x03, 0x82, 0x00, 0x01,                     //     [3, [0, 1],
                          0x84, 0x02, 0x61, 'D',  0x26,                     //      [2, "D", -7,
                          0xA1, 0x61, 'k',  0xFA, 0x3F, 0xC0, 0x00, 0x00,   //       {"k": 1.5}]],
                          0x65, 'l',  'a',  'b',  'e',  'l',  0x41, 0xAB};  //   "label": h'AB'}]
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, expected);
}

TEST_F(CborKeyedArchive, ValuesKeepTheirKindAndContents) {
  const Dictionary nested = {{"", Array{1, 1U, "1", Bytes{1}, Array{}, Dictionary{}}}, {"k\n\"", false}};
  const std::string notUtf8("\xFF\xC0\0\x80", 4);
  for (const Value& value : {Value(true), Value(false), Value(0), Value(0U), Value(5), Value(5U), Value(5.0),
                             Value(0.1), Value(1e300), Value(std::numeric_limits<double>::infinity()),
                             Value(""), Value("Zürich"), Value(Bytes{}), Value(Bytes{0, 255}), Value(Array{}),
                             Value(Dictionary{}), Value(nested), Value(Dictionary{{notUtf8, notUtf8}})}) {
    expectKept(value);
  }
}

TEST_F(CborKeyedArchive, IntegersAroundEveryPowerOfTwoAreKept) {
  for (int bit = 0; bit < 64; ++bit) {
    const std::uint64_t power = std::uint64_t{1} << bit;
    for (const std::uint64_t value : {power - 1, power, power + 1}) {
      expectKept(value);
      expectKept(static_cast<std::int64_t>(value));
      expectKept(static_cast<std::int64_t>(~value));
    }
  }
}

TEST_F(CborKeyedArchive, EqualObjectsGiveIdenticalBytes) {
  const auto bytesOf = [this](double number) {
    return archiver_.archivedData(
        boxed("b", ArchivedObject{ArchivedList{{Value(Dictionary{{"z", number}, {"a", 1}})},
                                               {Error{"D", 1, {}}}}}),
        true);
  };
  EXPECT_EQ(bytesOf(0.0), bytesOf(-0.0));
  EXPECT_NE(bytesOf(0.0), bytesOf(0.5));
}

TEST_F(CborKeyedArchive, ObjectsErrorsAndListsAreRead) {
  const Error error{"Domain", -7, {{"debugDescription", "why"}}};
  const ArchivedList list = {
      boxed("first"), {error}, {Value(1U)}, {ArchivedList{}}, boxed("last", boxed("inner"))};
  const Reading reading = readBack(boxed("outer", ArchivedObject{list}));
  EXPECT_FALSE(reading.error);
  ASSERT_NE(boxIn(reading.root), nullptr);
  EXPECT_EQ(boxIn(reading.root)->label, "outer");
  const auto* read = std::get_if<ArchivedList>(&boxIn(reading.root)->inside->contents);
  ASSERT_NE(read, nullptr);
  ASSERT_EQ(read->size(), 5U);
  EXPECT_EQ(boxIn(read->at(0))->label, "first");
  EXPECT_EQ(std::get<Error>(read->at(1).contents), error);
  EXPECT_EQ(*valueIn(read->at(2)), Value(1U));
  EXPECT_TRUE(std::get<ArchivedList>(read->at(3).contents).empty());
  EXPECT_EQ(boxIn(boxIn(read->at(4))->inside)->label, "inner");
}

TEST_F(CborKeyedArchive, AbsentKeysAreNoFailure) {
  const auto bytes = archiver_.archivedData(boxed("b"), true);
  const auto reader = open(*bytes);
  reader->setFactory("Box", [](KeyedDecoder& decoder) {
    EXPECT_TRUE(decoder.containsValueForKey("label"));
    EXPECT_TRUE(decoder.containsValueForKey("closed"));
    EXPECT_FALSE(decoder.containsValueForKey("inside"));
    EXPECT_FALSE(decoder.decodeObject("inside", kAll));
    EXPECT_FALSE(decoder.decodeBool("inside"));
    EXPECT_FALSE(decoder.decodeBytes("inside"));
    return std::make_shared<const Box>("made");
  });
  std::optional<Error> error;
  EXPECT_NE(boxIn(reader->decodeTopLevelObject(kAll, error)), nullptr);
  EXPECT_FALSE(error);
}

TEST_F(CborKeyedArchive, AnObjectOfAClassThatIsNotAllowedIsAbsentAndAnErrorIsReported) {
  const struct {
    const char* name;
    ArchivedObject inside;
    AllowedClasses allowed;
  } rows[] = {{"object", boxed("b"), {"value", "array", "error"}},
              {"value", {Value(1)}, {"Box", "array", "error"}},
              {"error", {Error{"D", 1, {}}}, {"Box", "value", "array"}},
              {"list", {ArchivedList{}}, {"Box", "value", "error"}},
              {"object in a list", {ArchivedList{{Value(1)}, boxed("b")}}, {"array", "value"}},
              {"value in a list", {ArchivedList{{Value(1)}, boxed("b")}}, {"array", "Box"}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Reading inside = readBack(boxed("outer", row.inside), kAll, row.allowed);
    EXPECT_TRUE(inside.error);
    ASSERT_NE(boxIn(inside.root), nullptr);
    EXPECT_FALSE(boxIn(inside.root)->inside);

    const Reading root = readBack(row.inside, row.allowed);
    EXPECT_TRUE(root.error);
    EXPECT_FALSE(root.root);
  }
}

TEST_F(CborKeyedArchive, AValueOfAnotherKindIsAFailure) {
  const auto bytes = archiver_.archivedData(boxed("b"), true);
  for (const bool asBool : {true, false}) {
    const auto reader = open(*bytes);
    reader->setFactory("Box", [asBool](KeyedDecoder& decoder) {
      if (asBool) {
        EXPECT_FALSE(decoder.decodeBool("label"));
      } else {
        EXPECT_FALSE(decoder.decodeBytes("closed"));
      }
      return std::make_shared<const Box>("made");
    });
    std::optional<Error> error;
    EXPECT_NE(boxIn(reader->decodeTopLevelObject(kAll, error)), nullptr);
    EXPECT_TRUE(error);
  }
}

TEST_F(CborKeyedArchive, AnObjectWithoutAFactoryIsAFailure) {
  const auto bytes = archiver_.archivedData(boxed("b"), true);
  std::optional<Error> error;
  EXPECT_FALSE(archiver_.openForReading(*bytes)->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(error);
  const auto reader = open(*bytes);
  reader->setFactory("Box", [](KeyedDecoder&) { return nullptr; });
  EXPECT_FALSE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(error);
}

TEST_F(CborKeyedArchive, EveryObjectMustSupportSecureCodingWhenItIsRequired) {
  const ArchivedObject insecure = boxed("b", std::nullopt, false);
  for (const ArchivedObject& root :
       {insecure, boxed("outer", insecure), ArchivedObject{ArchivedList{insecure}}}) {
    EXPECT_FALSE(archiver_.archivedData(root, true));
    const auto bytes = archiver_.archivedData(root, false);
    ASSERT_TRUE(bytes);
    EXPECT_FALSE(read(*bytes).error);
  }
}

TEST_F(CborKeyedArchive, ObjectsOfTheProcessAndDeepNestingCannotBeArchived) {
  const Value object(std::make_shared<const TransitStorageIncident>());
  ArchivedObject deep = {Value(1)};
  for (int i = 0; i < 300; ++i) deep = {ArchivedList{std::move(deep)}};
  for (const ArchivedObject& root :
       {ArchivedObject{object}, ArchivedObject{Value(Array{object})},
        ArchivedObject{Error{"D", 1, {{"k", object}}}}, boxed("b", ArchivedObject{object}),
        ArchivedObject{std::shared_ptr<const Archivable>()}, deep}) {
    EXPECT_FALSE(archiver_.archivedData(root, false));
  }
}

TEST_F(CborKeyedArchive, NestingBelowTheLimitIsRead) {
  ArchivedObject root = boxed("deepest");
  for (int i = 0; i < 90; ++i) root = boxed("box", ArchivedObject{ArchivedList{root}});
  EXPECT_FALSE(readBack(root).error);
}

TEST_F(CborKeyedArchive, OtherBytesCannotBeOpened) {
  for (const char* text : {"", "x", "garbage", "{\"json\": 1}", "bplist00"}) {
    const std::string bytes = text;
    EXPECT_EQ(archiver_.openForReading({bytes.begin(), bytes.end()}), nullptr) << text;
  }
}

TEST_F(CborKeyedArchive, DamagedArchivesAreRefusedOrReadSafely) {
  const ArchivedObject root = boxed(
      "outer", ArchivedObject{ArchivedList{{Error{"D", 1, {{"k", 1.5}}}}, boxed("b"), {Value("text")}}});
  const Bytes whole = *archiver_.archivedData(root, true);
  for (std::size_t place = 0; place < whole.size(); ++place) {
    Bytes bytes = whole;
    for (int value = 0; value < 256; ++value) {
      bytes[place] = static_cast<std::uint8_t>(value);
      const Reading changed = read(bytes);
      EXPECT_TRUE(!changed.isArchive || changed.error || changed.root) << value << " at " << place;
    }
    bytes.resize(place);
    const Reading truncated = read(bytes);
    EXPECT_TRUE(!truncated.isArchive || truncated.error) << "ended at " << place;
  }
  Bytes longer = whole;
  longer.push_back(0);
  EXPECT_TRUE(read(longer).error);
}

TEST_F(CborKeyedArchive, NothingIsDecodedAfterFinishDecoding) {
  const auto bytes = archiver_.archivedData(boxed("b"), true);
  const auto reader = open(*bytes);
  std::optional<Error> error;
  EXPECT_TRUE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(reader->decodeTopLevelObject(kAll, error));
  reader->finishDecoding();
  EXPECT_FALSE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_FALSE(error);
}

TEST_F(CborKeyedArchive, RefusesItemsThatItDoesNotWrite) {
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
      {"an object without parts", {0x82, 0x04, 0x63, 'B', 'o', 'x'}},
      {"a map with a number for a key", {0xA1, 0x01, 0x01}},
      {"an array of more elements than there can be",
       {0x9B, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}},
      {"a text of more bytes than there are", {0x7B, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Bytes bytes = {0xD9, 0xD9, 0xF7};
    bytes.insert(bytes.end(), row.item.begin(), row.item.end());
    const Reading reading = read(bytes);
    EXPECT_TRUE(reading.isArchive && reading.error && !reading.root);
  }
}

TEST_F(CborKeyedArchive, LargeGarbageIsRefusedWithinMemoryAndStack) {
  constexpr std::size_t kSize = 1'100'000;
  for (const std::uint8_t byte : Bytes{0x81, 0x9F, 0xA1, 0xBF, 0x80, 0x00, 0xFF}) {
    SCOPED_TRACE(byte);
    Bytes bytes(kSize, byte);
    EXPECT_FALSE(read(bytes).isArchive);
    bytes[0] = bytes[1] = 0xD9;
    bytes[2] = 0xF7;
    EXPECT_TRUE(read(bytes).error);
    // The same bytes as elements of an array of indefinite length.
    bytes[3] = 0x9F;
    EXPECT_TRUE(read(bytes).error);
  }
}

TEST_F(CborKeyedArchive, AnArchiveWithTooManyItemsIsNotWritten) {
  constexpr std::size_t kMaximumItemCount = 100;
  CborKeyedArchiver archiver(kMaximumItemCount);
  // The array of the list and its kind number also count as items.
  const ArchivedObject most{ArchivedList(98, {Value(true)})}, tooMany{ArchivedList(99, {Value(true)})};
  const auto bytes = archiver.archivedData(most, false);
  ASSERT_TRUE(bytes);
  const auto isRead = [&](const Bytes& archive) {
    std::optional<Error> error;
    return archiver.openForReading(archive)->decodeTopLevelObject(kAll, error).has_value();
  };
  EXPECT_TRUE(isRead(*bytes));
  EXPECT_FALSE(archiver.archivedData(tooMany, false));
  EXPECT_FALSE(isRead(archiver_.archivedData(tooMany, false).value()));
}

}  // namespace
}  // namespace linewatch
