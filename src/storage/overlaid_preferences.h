#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/preferences_store.h"
#include "shared/value.h"

namespace linewatch {

/// Values given for one run, in front of a store. What the store has taken takes the place of what was given;
/// without a store it is kept for the run.
class OverlaidPreferences final : public PreferencesStore {
 public:
  /// `store` may be null. Objects that share `given` see the same values.
  OverlaidPreferences(std::shared_ptr<Dictionary> given, std::shared_ptr<PreferencesStore> store)
      : given_(std::move(given)), store_(std::move(store)) {}

  std::optional<Value> objectForKey(std::string_view key) const override {
    if (const auto value = given_->find(key); value != given_->end()) return value->second;
    return store_ ? store_->objectForKey(key) : std::nullopt;
  }
  bool setObject(Value value, std::string_view key) override {
    if (!store_) {
      given_->insert_or_assign(std::string(key), std::move(value));
      return true;
    }
    const bool isSet = store_->setObject(std::move(value), key);
    if (isSet) forget(key);
    return isSet;
  }
  void removeObject(std::string_view key) override {
    forget(key);
    if (store_) store_->removeObject(key);
  }

 private:
  void forget(std::string_view key) {
    if (const auto value = given_->find(key); value != given_->end()) given_->erase(value);
  }

  std::shared_ptr<Dictionary> given_;
  std::shared_ptr<PreferencesStore> store_;
};

/// The values given for one run, in front of the store of every suite. Main thread.
class GivenPreferences {
 public:
  explicit GivenPreferences(Dictionary values) : values_(std::move(values)) {}

  /// `store`: the suite's own; null in a run that saves nothing.
  std::shared_ptr<PreferencesStore> inFrontOf(std::shared_ptr<PreferencesStore> store,
                                              std::string_view suite) {
    return std::make_shared<OverlaidPreferences>(valuesOf(suite), std::move(store));
  }
  /// What the suite's own store says holds from now on.
  void forget(std::string_view key, std::string_view suite) { valuesOf(suite)->erase(std::string(key)); }

 private:
  const std::shared_ptr<Dictionary>& valuesOf(std::string_view suite) {
    auto& values = suites_[std::string(suite)];
    if (!values) values = std::make_shared<Dictionary>(values_);
    return values;
  }

  const Dictionary values_;
  /// What is set or removed in one suite changes no other.
  std::map<std::string, std::shared_ptr<Dictionary>> suites_;
};

}  // namespace linewatch
