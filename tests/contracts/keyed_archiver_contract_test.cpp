#include <functional>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "platform/transit_storage_incident.h"
#include "simulation/simulated_platform.h"
#include "wire/archive/cbor_keyed_archiver.h"
#include "wire/keyed_archiver.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

/// A labelled object with another in it.
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

class KeyedArchiverContract : public testing::TestWithParam<Subject<KeyedArchiver>> {
 protected:
  struct Reading {
    bool isArchive = false;
    std::optional<ArchivedObject> root;
    std::optional<Error> error;
  };

  static std::unique_ptr<KeyedUnarchiver> open(KeyedArchiver& archiver, const Bytes& bytes,
                                               const AllowedClasses& insideBoxes = kAll) {
    auto reader = archiver.openForReading(bytes);
    if (reader) {
      reader->setFactory("Box",
                         [insideBoxes](KeyedDecoder& decoder) { return Box::make(decoder, insideBoxes); });
    }
    return reader;
  }
  static Reading read(KeyedArchiver& archiver, const Bytes& bytes, const AllowedClasses& allowed = kAll,
                      const AllowedClasses& insideBoxes = kAll) {
    const auto reader = open(archiver, bytes, insideBoxes);
    Reading reading{reader != nullptr, {}, {}};
    if (reader) reading.root = reader->decodeTopLevelObject(allowed, reading.error);
    return reading;
  }
  Reading readBack(const ArchivedObject& root, const AllowedClasses& allowed = kAll,
                   const AllowedClasses& insideBoxes = kAll) {
    const auto bytes = archiver_->archivedData(root, true);
    EXPECT_TRUE(bytes);
    return bytes ? read(*archiver_, *bytes, allowed, insideBoxes) : Reading{};
  }

  std::shared_ptr<KeyedArchiver> archiver_ = GetParam().make();
};

TEST_P(KeyedArchiverContract, ValuesKeepTheirKindAndContents) {
  const Dictionary nested = {{"", Array{1, 1U, "1", Bytes{1}, Array{}, Dictionary{}}}, {"k\n\"", false}};
  for (const Value& value : {Value(true),
                             Value(false),
                             Value(0),
                             Value(0U),
                             Value(-1),
                             Value(5),
                             Value(5U),
                             Value(5.0),
                             Value(std::numeric_limits<std::int64_t>::min()),
                             Value(std::numeric_limits<std::int64_t>::max()),
                             Value(std::numeric_limits<std::uint64_t>::max()),
                             Value(0.1),
                             Value(1e300),
                             Value(std::numeric_limits<double>::infinity()),
                             Value(""),
                             Value("Zürich\0x"),
                             Value(Bytes{}),
                             Value(Bytes{0, 255}),
                             Value(Array{}),
                             Value(Dictionary{}),
                             Value(nested)}) {
    SCOPED_TRACE(value.description());
    const Reading reading = readBack({value}, {"value"});
    EXPECT_FALSE(reading.error);
    ASSERT_NE(valueIn(reading.root), nullptr);
    EXPECT_EQ(*valueIn(reading.root), value);
  }
}

TEST_P(KeyedArchiverContract, EqualObjectsGiveIdenticalBytes) {
  const auto bytesOf = [this](double number) {
    return archiver_->archivedData(
        boxed("b", ArchivedObject{ArchivedList{{Value(Dictionary{{"z", number}, {"a", 1}})},
                                               {Error{"D", 1, {}}}}}),
        true);
  };
  EXPECT_EQ(bytesOf(0.0), bytesOf(-0.0));
  EXPECT_NE(bytesOf(0.0), bytesOf(0.5));
}

TEST_P(KeyedArchiverContract, ObjectsErrorsAndListsComeBack) {
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

TEST_P(KeyedArchiverContract, AbsentKeysGiveNothingAndAreNoFailure) {
  const auto bytes = archiver_->archivedData(boxed("b"), true);
  const auto reader = open(*archiver_, *bytes);
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

TEST_P(KeyedArchiverContract, WhatIsNotAllowedBecomesNoneAndAnErrorAtTheEnd) {
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

TEST_P(KeyedArchiverContract, APartOfAnotherKindIsAFailure) {
  const auto bytes = archiver_->archivedData(boxed("b"), true);
  for (const bool asBool : {true, false}) {
    const auto reader = open(*archiver_, *bytes);
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

TEST_P(KeyedArchiverContract, AnObjectThatNothingMakesIsAFailure) {
  const auto bytes = archiver_->archivedData(boxed("b"), true);
  std::optional<Error> error;
  EXPECT_FALSE(archiver_->openForReading(*bytes)->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(error);
  const auto reader = open(*archiver_, *bytes);
  reader->setFactory("Box", [](KeyedDecoder&) { return nullptr; });
  EXPECT_FALSE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(error);
}

TEST_P(KeyedArchiverContract, SecureCodingIsAskedOfEveryObject) {
  const ArchivedObject insecure = boxed("b", std::nullopt, false);
  for (const ArchivedObject& root :
       {insecure, boxed("outer", insecure), ArchivedObject{ArchivedList{insecure}}}) {
    EXPECT_FALSE(archiver_->archivedData(root, true));
    const auto bytes = archiver_->archivedData(root, false);
    ASSERT_TRUE(bytes);
    EXPECT_FALSE(read(*archiver_, *bytes).error);
  }
}

TEST_P(KeyedArchiverContract, WhatCannotBeArchivedGivesNoArchive) {
  const Value object(std::make_shared<const TransitStorageIncident>());
  ArchivedObject deep = {Value(1)};
  for (int i = 0; i < 300; ++i) deep = {ArchivedList{std::move(deep)}};
  for (const ArchivedObject& root :
       {ArchivedObject{object}, ArchivedObject{Value(Array{object})},
        ArchivedObject{Error{"D", 1, {{"k", object}}}}, boxed("b", ArchivedObject{object}),
        ArchivedObject{std::shared_ptr<const Archivable>()}, deep}) {
    EXPECT_FALSE(archiver_->archivedData(root, false));
  }
}

TEST_P(KeyedArchiverContract, AReasonableDepthComesBack) {
  ArchivedObject root = boxed("deepest");
  for (int i = 0; i < 90; ++i) root = boxed("box", ArchivedObject{ArchivedList{root}});
  EXPECT_FALSE(readBack(root).error);
}

TEST_P(KeyedArchiverContract, BytesOfNoArchiveCannotBeOpened) {
  for (const char* text : {"", "x", "garbage", "{\"json\": 1}", "bplist00"}) {
    const std::string bytes = text;
    EXPECT_EQ(archiver_->openForReading({bytes.begin(), bytes.end()}), nullptr) << text;
  }
}

TEST_P(KeyedArchiverContract, SpoiltArchivesAreRefusedOrReadWithoutHarm) {
  const ArchivedObject root = boxed(
      "outer", ArchivedObject{ArchivedList{{Error{"D", 1, {{"k", 1.5}}}}, boxed("b"), {Value("text")}}});
  const Bytes whole = *archiver_->archivedData(root, true);
  for (std::size_t place = 0; place < whole.size(); ++place) {
    Bytes bytes = whole;
    for (int value = 0; value < 256; ++value) {
      bytes[place] = static_cast<std::uint8_t>(value);
      const Reading changed = read(*archiver_, bytes);
      EXPECT_TRUE(!changed.isArchive || changed.error || changed.root) << value << " at " << place;
    }
    bytes.resize(place);
    const Reading truncated = read(*archiver_, bytes);
    EXPECT_TRUE(!truncated.isArchive || truncated.error) << "ended at " << place;
  }
  Bytes longer = whole;
  longer.push_back(0);
  EXPECT_TRUE(read(*archiver_, longer).error);
}

TEST_P(KeyedArchiverContract, NothingIsDecodedAfterTheEnd) {
  const auto bytes = archiver_->archivedData(boxed("b"), true);
  const auto reader = open(*archiver_, *bytes);
  std::optional<Error> error;
  EXPECT_TRUE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_TRUE(reader->decodeTopLevelObject(kAll, error));
  reader->finishDecoding();
  EXPECT_FALSE(reader->decodeTopLevelObject(kAll, error));
  EXPECT_FALSE(error);
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, KeyedArchiverContract,
    testing::Values(Subject<KeyedArchiver>{"Simulation",
                                           [] {
                                             const auto platform = simulation::SimulatedPlatform::make();
                                             return std::shared_ptr<KeyedArchiver>(
                                                 platform, &platform->keyedArchiver());
                                           }},
                    Subject<KeyedArchiver>{"Desktop", [] { return std::make_shared<CborKeyedArchiver>(); }}),
    nameOfSubject<KeyedArchiver>);

}  // namespace
}  // namespace linewatch
