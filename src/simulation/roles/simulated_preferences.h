#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/preferences_store.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// What the stores of every suite hold. Outlives the process: a restarted platform is given the same one.
class PreferencesStorage {
 public:
  /// The suite's values, which may be read and changed without a record.
  Dictionary& suite(std::string_view name) { return suites_[std::string(name)]; }

 private:
  std::map<std::string, Dictionary> suites_;
};

/// A store on one suite. Setting and removing are recorded as "preferencesSet" and "preferencesRemoved" with
/// their key; removing an absent key is, too.
class SimulatedPreferencesStore final : public PreferencesStore {
 public:
  SimulatedPreferencesStore(SharedBackstage backstage, std::shared_ptr<PreferencesStorage> storage,
                            std::string suite)
      : backstage_(std::move(backstage)), storage_(std::move(storage)), suite_(std::move(suite)) {}

  std::optional<Value> objectForKey(std::string_view key) const override;
  bool setObject(Value value, std::string_view key) override;
  void removeObject(std::string_view key) override;

 private:
  SharedBackstage backstage_;
  std::shared_ptr<PreferencesStorage> storage_;
  std::string suite_;
};

}  // namespace linewatch::simulation
