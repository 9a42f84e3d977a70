#include "widget/saved_ui_data.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/companion_application.h"
#include "platform/transit_storage_line_item.h"
#include "simulation/forwarding_platform.h"
#include "simulation/platform_test.h"
#include "simulation/world/world_records.h"

namespace linewatch {
namespace {

using simulation::SimulatedPlatform;
using simulation::World;
using State = RVTransitIncidentViewControllerState;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// An archivable object of any class name and parts.
class AnyRecord : public Archivable {
 public:
  using Parts = std::vector<std::pair<std::string, ArchivedObject>>;
  AnyRecord(std::string name, Parts parts, bool isSecure = true)
      : name_(std::move(name)), parts_(std::move(parts)), isSecure_(isSecure) {}

  std::string_view archiveClassName() const override { return name_; }
  bool supportsSecureCoding() const override { return isSecure_; }
  void encodeWithCoder(KeyedCoder& coder) const override {
    for (const auto& [key, object] : parts_) coder.encodeObject(key, object);
  }

 private:
  std::string name_;
  Parts parts_;
  bool isSecure_;
};

/// Forwards to an unarchiver and notes whether decoding was finished.
class WatchedUnarchiver final : public KeyedUnarchiver {
 public:
  WatchedUnarchiver(std::unique_ptr<KeyedUnarchiver> unarchiver, bool& hasFinished)
      : unarchiver_(std::move(unarchiver)), hasFinished_(hasFinished) {}

  void setFactory(std::string className, ArchivableFactory factory) override {
    unarchiver_->setFactory(std::move(className), std::move(factory));
  }
  std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                     std::optional<Error>& error) override {
    return unarchiver_->decodeTopLevelObject(allowed, error);
  }
  void finishDecoding() override {
    hasFinished_ = true;
    unarchiver_->finishDecoding();
  }

 private:
  std::unique_ptr<KeyedUnarchiver> unarchiver_;
  bool& hasFinished_;
};

/// A simulated platform that notes how the keyed archiver is used.
class WatchedPlatform final : public ForwardingPlatform, public KeyedArchiver {
 public:
  KeyedArchiver& keyedArchiver() override { return *this; }
  std::optional<Bytes> archivedData(const ArchivedObject& root, bool requiringSecureCoding) override {
    requiredSecureCoding = requiringSecureCoding;
    return simulated().keyedArchiver().archivedData(root, requiringSecureCoding);
  }
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes& bytes) override {
    return std::make_unique<WatchedUnarchiver>(simulated().keyedArchiver().openForReading(bytes),
                                               hasFinishedDecoding);
  }

  bool requiredSecureCoding = false;
  bool hasFinishedDecoding = false;
};

class SavedUIData : public PlatformTest {
 protected:
  static World city() {
    World world;
    world.incidents["strike"] = {.muid = 11, .title = "Strike", .start = Seconds(-60), .end = Seconds(60)};
    for (const char* name : {"A", "B", "C"}) {
      auto& line = world.lines[name] = {.muid = world.lines.size() + 1, .name = name};
      line.incidents = {"strike"};
    }
    return world;
  }
  static std::shared_ptr<const TransitLineItems> threeLines() {
    return std::make_shared<const TransitLineItems>(simulation::WorldRecords(city()).allLines());
  }

  bool save(std::shared_ptr<RVResult> result, bool expanded) {
    return saveUIData(std::make_shared<const State>(std::move(result), expanded));
  }
  /// Loads the state as the next process does.
  std::shared_ptr<const State> loadInNextProcess() {
    platform_ = SimulatedPlatform::restarted(*platform_);
    installPlatform(platform_);
    platform_->transcript().clear();
    return loadSavedUIData();
  }

  Dictionary& stored() { return platform_->preferences().suite(kCompanionAppGroupSuite); }
  void store(Value value) { stored().insert_or_assign(std::string(kSavedUIDataKey), std::move(value)); }
  bool isStored() { return stored().contains(kSavedUIDataKey); }
  void storeArchive(std::string className, AnyRecord::Parts parts) {
    const auto root = std::make_shared<const AnyRecord>(std::move(className), std::move(parts));
    store(platform_->keyedArchiver().archivedData({root}, true).value());
  }
  static ArchivedList storageLines() {
    ArchivedList list;
    const auto lines = threeLines();
    for (const auto& line : *lines) {
      list.push_back({std::make_shared<const TransitStorageLineItem>(*line)});
    }
    return list;
  }
};

TEST_F(SavedUIData, ComesBackInTheNextProcess) {
  EXPECT_TRUE(save(std::make_shared<RVResult>(threeLines()), true));
  EXPECT_THAT(platform_->transcript().names(), ElementsAre("preferencesSet"));
  EXPECT_TRUE(platform_->transcript().hasLogText(
      "Saving view model to GroupSetting (key: Rova.LineWatch.savedUIData) : "
      "<RVTransitIncidentViewControllerState | result: 3 line items | expanded: YES>"));

  const auto state = loadInNextProcess();
  ASSERT_NE(state, nullptr);
  EXPECT_TRUE(state->expanded());
  EXPECT_FALSE(state->lineItemsResult()->error());
  const auto& lines = *state->lineItemsResult()->successObject();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[2]->name(), "C");
  EXPECT_NE(dynamic_cast<const TransitStorageLineItem*>(lines[2].get()), nullptr);
  ASSERT_EQ(lines[2]->incidents().size(), 1U);
  EXPECT_EQ(lines[2]->incidents()[0]->title(), "Strike");
  EXPECT_EQ(lines[2]->incidents()[0]->endDate(), World().start + Seconds(60));
  EXPECT_THAT(platform_->transcript().logTexts(),
              ElementsAre("View model loaded from GroupSettings (key: Rova.LineWatch.savedUIData): "
                          "<RVTransitIncidentViewControllerState | result: 3 line items | expanded: YES>"));
}

TEST_F(SavedUIData, KeepsTheResultAsSuccessOrFailure) {
  const Error error{"Transit", 7, {{"tries", 3}}};
  struct Row {
    const char* name;
    std::shared_ptr<RVResult> result;
    std::optional<std::size_t> lines;
    std::optional<Error> error;
  };
  for (const Row& row : {
           Row{"an empty list", std::make_shared<RVResult>(std::make_shared<TransitLineItems>()), 0, {}},
           Row{"an error", std::make_shared<RVResult>(error), {}, error},
           Row{"both: the success", std::make_shared<RVResult>(threeLines(), error), 3, {}},
           Row{"neither: no state", std::make_shared<RVResult>(nullptr, std::nullopt), {}, {}},
           Row{"no result: no state", nullptr, {}, {}},
       }) {
    save(row.result, false);
    const auto state = loadInNextProcess();
    EXPECT_TRUE(isStored()) << row.name;
    ASSERT_EQ(state != nullptr, row.lines || row.error) << row.name;
    if (!state) continue;
    EXPECT_FALSE(state->expanded()) << row.name;
    EXPECT_EQ(state->lineItemsResult()->error(), row.error) << row.name;
    const auto& lines = state->lineItemsResult()->successObject();
    ASSERT_EQ(lines != nullptr, row.lines.has_value()) << row.name;
    if (lines) {
      EXPECT_EQ(lines->size(), row.lines) << row.name;
    }
  }
}

TEST_F(SavedUIData, WritesOnlyTheKeysOfItsKindOfResult) {
  struct Keys : KeyedCoder {
    void encodeObject(std::string_view key, const ArchivedObject&) override { keys.emplace_back(key); }
    void encodeBool(std::string_view key, bool) override { keys.emplace_back(key); }
    void encodeBytes(std::string_view key, const Bytes&) override { keys.emplace_back(key); }
    std::vector<std::string> keys;
  };
  const auto keysOf = [](std::shared_ptr<RVResult> result) {
    Keys keys;
    State(std::move(result), true).encodeWithCoder(keys);
    return keys.keys;
  };
  EXPECT_THAT(keysOf(std::make_shared<RVResult>(threeLines())),
              ElementsAre("lineItemResultSuccess", "expanded"));
  EXPECT_THAT(keysOf(std::make_shared<RVResult>(Error{"Transit", 7, {}})),
              ElementsAre("lineItemResultError", "expanded"));
  EXPECT_THAT(keysOf(nullptr), ElementsAre("expanded"));
}

TEST_F(SavedUIData, RemovesAStateOnlyWhenDecodingFails) {
  enum class Then { loads, givesNone, isRemoved };
  struct Row {
    const char* name;
    const char* className;
    AnyRecord::Parts parts;
    Then then;
  };
  const ArchivedObject stranger{std::make_shared<const AnyRecord>("Stranger", AnyRecord::Parts{})};
  const ArchivedObject line = storageLines().front();
  const ArchivedObject damagedLine{
      std::make_shared<const AnyRecord>("TransitStorageLineItem", AnyRecord::Parts{})};
  const ArchivedObject error{Error{"Transit", 7, {}}};
  constexpr const char* kState = "RVTransitIncidentViewControllerState";
  for (const Row& row : {
           Row{"today's name", kState, {{"lineItemResultSuccess", {storageLines()}}}, Then::loads},
           Row{"the former name", "RVTransitListItemData", {{"lineItemResultError", error}}, Then::loads},
           Row{"another class", "Stranger", {{"lineItemResultError", error}}, Then::isRemoved},
           Row{"neither result", kState, {}, Then::givesNone},
           Row{"a line instead of a list", kState, {{"lineItemResultSuccess", line}}, Then::givesNone},
           Row{"a text instead of a list",
               kState,
               {{"lineItemResultSuccess", {Value("x")}}},
               Then::isRemoved},
           Row{"a success that is no list, and an error",
               kState,
               {{"lineItemResultSuccess", line}, {"lineItemResultError", error}},
               Then::givesNone},
           Row{"a text instead of an error",
               kState,
               {{"lineItemResultError", {Value("x")}}},
               Then::isRemoved},
           Row{"a stranger in the list",
               kState,
               {{"lineItemResultSuccess", {ArchivedList{line, stranger}}}},
               Then::isRemoved},
           Row{"an error in the list",
               kState,
               {{"lineItemResultSuccess", {ArchivedList{error}}}},
               Then::isRemoved},
           Row{"a line instead of an error", kState, {{"lineItemResultError", line}}, Then::isRemoved},
           Row{"a damaged line",
               kState,
               {{"lineItemResultSuccess", {ArchivedList{damagedLine}}}},
               Then::isRemoved},
           Row{"a good list, and a text instead of a flag",
               kState,
               {{"lineItemResultSuccess", {storageLines()}}, {"expanded", {Value("x")}}},
               Then::isRemoved},
       }) {
    storeArchive(row.className, row.parts);
    const auto state = loadInNextProcess();
    EXPECT_EQ(state != nullptr, row.then == Then::loads) << row.name;
    EXPECT_EQ(isStored(), row.then != Then::isRemoved) << row.name;
    const auto lines = platform_->transcript().logTexts();
    ASSERT_EQ(lines.size(), 1U) << row.name;
    EXPECT_TRUE(lines[0].starts_with(row.then == Then::isRemoved ? "Error parsing ViewModel data loaded from "
                                                                   "GroupSettings, removing it (key: "
                                                                 : "View model loaded from GroupSettings"))
        << row.name;
    if (row.then == Then::givesNone) {
      EXPECT_TRUE(lines[0].ends_with(": (null)")) << row.name;
    }
    if (row.then == Then::isRemoved) {
      EXPECT_THAT(lines[0], HasSubstr(": (null) - error: KeyedArchiveErrorDomain ")) << row.name;
      EXPECT_THAT(platform_->transcript().names(), ElementsAre("preferencesRemoved")) << row.name;
      EXPECT_EQ(platform_->transcript().events().front().name, "log") << "logged before it is removed";
    }
  }
}

TEST_F(SavedUIData, AValueThatIsNoArchiveStaysStored) {
  EXPECT_EQ(loadInNextProcess(), nullptr);
  EXPECT_THAT(platform_->transcript().logTexts(),
              ElementsAre("No view model found in GroupSettings (key: Rova.LineWatch.savedUIData)"));
  for (const Value& garbage : {Value(Bytes{}), Value(Bytes(1000, 0x42)), Value("text"), Value(7)}) {
    store(garbage);
    EXPECT_EQ(loadInNextProcess(), nullptr);
    EXPECT_TRUE(isStored());
    EXPECT_THAT(
        platform_->transcript().logTexts(),
        ElementsAre("View model loaded from GroupSettings (key: Rova.LineWatch.savedUIData): (null)"));
  }
}

TEST_F(SavedUIData, SurvivesAnyDamageToAnArchive) {
  save(std::make_shared<RVResult>(threeLines()), true);
  const Bytes whole = *stored().find(kSavedUIDataKey)->second.get<Bytes>();
  platform_->log().setEnabled(LogLevel::debug, false);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    store(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_EQ(loadSavedUIData(), nullptr) << "cut to " << length;
  }
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (const int change : {0x01, 0x80, 0xFF}) {
      Bytes damaged = whole;
      damaged[place] = static_cast<std::uint8_t>(damaged[place] ^ change);
      store(damaged);
      const auto state = loadSavedUIData();
      EXPECT_TRUE(state == nullptr || state->lineItemsResult() != nullptr);
    }
  }
}

TEST_F(SavedUIData, RequiresSecureCodingAndFinishesDecoding) {
  const auto watched = std::make_shared<WatchedPlatform>();
  installPlatform(watched);
  save(std::make_shared<RVResult>(threeLines()), true);
  EXPECT_TRUE(watched->requiredSecureCoding);
  EXPECT_NE(loadSavedUIData(), nullptr);
  EXPECT_TRUE(watched->hasFinishedDecoding);
}

TEST_F(SavedUIData, TheOldStateStaysWhenTheNewOneCannotBeArchived) {
  save(std::make_shared<RVResult>(threeLines()), true);
  platform_->changeWorld([](World& world) { world.archives = false; });
  EXPECT_FALSE(save(std::make_shared<RVResult>(Error{"Transit", 7, {}}), false));
  EXPECT_THAT(platform_->transcript().logTexts().back(),
              "Unable to cache view model to disk because it couldnt be converted to Blob: "
              "<RVTransitIncidentViewControllerState | result: Transit 7 | expanded: NO>");
  EXPECT_EQ(platform_->transcript().countOf("preferencesSet"), 1U);
  const auto state = loadInNextProcess();
  ASSERT_NE(state, nullptr);
  EXPECT_NE(state->lineItemsResult()->successObject(), nullptr);
}

}  // namespace
}  // namespace linewatch
