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

/// A store whose values are overridden for one run. A value that is set goes to the store and ends the
/// override; without a store it is kept for the run.
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

/// Values that override the stored values of every suite for one run. Main thread.
class GivenPreferences {
 public:
  explicit GivenPreferences(Dictionary values) : values_(std::move(values)) {}

  /// The overridden store. `store` holds the suite's own values; null in a run that saves nothing.
  std::shared_ptr<PreferencesStore> inFrontOf(std::shared_ptr<PreferencesStore> store,
                                              std::string_view suite) {
    return std::make_shared<OverlaidPreferences>(valuesOf(suite), std::move(store));
  }

 private:
  const std::shared_ptr<Dictionary>& valuesOf(std::string_view suite) {
    auto& values = suites_[std::string(suite)];
    if (!values) values = std::make_shared<Dictionary>(values_);
    return values;
  }

  const Dictionary values_;
  /// One table per suite: setting a value in one suite changes no other.
  std::map<std::string, std::shared_ptr<Dictionary>> suites_;
};

}  // namespace linewatch
