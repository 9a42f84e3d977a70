#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "platform/recording_log.h"
#include "platform/transit_storage_incident.h"
#include "simulation/simulated_platform.h"
#include "storage/saved_state.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// A process whose stores outlive it.
class Process {
 public:
  virtual ~Process() = default;
  virtual std::shared_ptr<PreferencesStore> makeStore(const std::string& suite) = 0;
  /// Ends the process and starts a new one.
  virtual void restart() = 0;
  virtual std::vector<std::string> errorsLogged() = 0;
};

class SimulatedProcess final : public Process {
 public:
  std::shared_ptr<PreferencesStore> makeStore(const std::string& suite) override {
    return platform_->makePreferencesStore(suite);
  }
  void restart() override { platform_ = simulation::SimulatedPlatform::restarted(*platform_); }
  std::vector<std::string> errorsLogged() override { return platform_->transcript().logTexts("error"); }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> platform_ = simulation::SimulatedPlatform::make();
};

class DesktopProcess final : public Process {
 public:
  DesktopProcess() { restart(); }
  std::shared_ptr<PreferencesStore> makeStore(const std::string& suite) override {
    return saved_->preferences(suite);
  }
  void restart() override {
    saved_ = std::make_unique<SavedState>(*StateDirectories::under(folder_.path()), log_,
                                          std::make_shared<GivenPreferences>(Dictionary{{"given", 1}}));
  }
  std::vector<std::string> errorsLogged() override { return log_.lines(); }

 private:
  TemporaryFolder folder_;
  RecordingLog log_;
  std::unique_ptr<SavedState> saved_;
};

class PreferencesStoreContract : public testing::TestWithParam<Subject<Process>> {
 protected:
  std::shared_ptr<PreferencesStore> store(const std::string& suite = "suite") {
    return process_->makeStore(suite);
  }

  std::shared_ptr<Process> process_ = GetParam().make();
};

TEST_P(PreferencesStoreContract, ValuesKeepTheirKindAcrossARestart) {
  const Dictionary values = {
      {"", "empty key"},
      {"bool", true},
      {"signed", 5},
      {"unsigned", 5U},
      {"least", std::numeric_limits<std::int64_t>::min()},
      {"most", std::numeric_limits<std::uint64_t>::max()},
      {"double", 5.0},
      {"text", std::string("a\0b", 3)},
      {"no text", ""},
      {"bytes", Bytes{0, 1, 255}},
      {"no bytes", Bytes{}},
      {"array", Array{1, 1U, Array{Dictionary{{"k", 0.1}}}}},
      {"quote'\"; --", Dictionary{}},
      {std::string(10'000, 'k'), Bytes(1'000'000, 7)},
  };
  for (const auto& [key, value] : values) store()->setObject(value, key);
  for (const bool isRestarted : {false, true}) {
    if (isRestarted) process_->restart();
    for (const auto& [key, value] : values) EXPECT_EQ(store()->objectForKey(key), value) << key.substr(0, 20);
  }
  EXPECT_THAT(process_->errorsLogged(), IsEmpty());
}

TEST_P(PreferencesStoreContract, StoresOfOneSuiteSeeTheSameValues) {
  const auto first = store();
  const auto second = store();
  const auto other = store("other suite");
  EXPECT_FALSE(second->objectForKey("k"));
  first->setObject("old", "k");
  EXPECT_EQ(second->objectForKey("k"), Value("old"));
  second->setObject(7U, "k");
  EXPECT_EQ(first->objectForKey("k"), Value(7U));
  EXPECT_FALSE(other->objectForKey("k"));
  other->setObject(1, "k");
  first->removeObject("k");
  first->removeObject("never there");
  EXPECT_FALSE(second->objectForKey("k"));
  EXPECT_FALSE(first->boolForKey("k"));
  EXPECT_EQ(other->objectForKey("k"), Value(1));
}

TEST_P(PreferencesStoreContract, AValueThatCannotBeWrittenIsLoggedAndTheOldValueStays) {
  const Value object(std::make_shared<const TransitStorageIncident>());
  EXPECT_TRUE(store()->setObject("old", "key of it"));
  for (const Value& value : {object, Value(Array{1, object}), Value(Dictionary{{"k", Array{object}}})}) {
    EXPECT_FALSE(store()->setObject(value, "key of it"));
    EXPECT_EQ(store()->objectForKey("key of it"), Value("old"));
  }
  ASSERT_FALSE(process_->errorsLogged().empty());
  EXPECT_THAT(process_->errorsLogged()[0], HasSubstr("key of it"));
}

TEST_P(PreferencesStoreContract, EveryValueReadsAsABoolean) {
  const std::pair<Value, bool> rows[] = {{true, true},   {false, false},    {0, false},       {-1, true},
                                         {2U, true},     {0.0, false},      {0.5, true},      {"YES", true},
                                         {"true", true}, {"1", true},       {"no", false},    {"", false},
                                         {"0", false},   {Bytes{1}, false}, {Array{1}, false}};
  for (const auto& [value, truth] : rows) {
    store()->setObject(value, "k");
    EXPECT_EQ(store()->boolForKey("k"), truth) << value.description();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, PreferencesStoreContract,
    testing::Values(Subject<Process>{"Simulation", [] { return std::make_shared<SimulatedProcess>(); }},
                    Subject<Process>{"Desktop", [] { return std::make_shared<DesktopProcess>(); }}),
    nameOfSubject<Process>);

}  // namespace
}  // namespace linewatch
