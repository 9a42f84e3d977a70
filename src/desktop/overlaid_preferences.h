#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/preferences_store.h"
#include "platform/value.h"

namespace linewatch::desktop {

/// Values given for one run, in front of a store. What is set goes to the store and takes the place of what
/// was given; without a store it is kept for the run.
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
    forget(key);
    return store_->setObject(std::move(value), key);
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

}  // namespace linewatch::desktop
