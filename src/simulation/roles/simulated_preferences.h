#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/preferences_store.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// The values of all suites. It outlives the process: a restarted platform gets the same storage.
class PreferencesStorage {
 public:
  /// The values of the suite. Reading and changing them here is not recorded.
  Dictionary& suite(std::string_view name) { return suites_[std::string(name)]; }

 private:
  std::map<std::string, Dictionary> suites_;
};

/// A store of one suite. Records "preferencesSet" and "preferencesRemoved" with the key, the latter even when
/// the key has no value.
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
