#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/preferences_store.h"
#include "storage/state_database.h"

namespace linewatch {

/// Bytes, as it is kept: a larger value is neither kept nor read, so that nobody waits for it.
inline constexpr std::int64_t kLargestPreference = std::int64_t{16} << 20;

/// What the preferences were when they could last be read, or were set: for when another program keeps them
/// from being read, or what was set from being saved. Any thread.
class RememberedPreferences {
 public:
  /// Reads all of them. After an error what is remembered stays.
  std::optional<Error> read(StoredDatabase& database);

  /// No value: there was none. Absent where it is not known either way.
  std::optional<std::optional<Value>> find(std::string_view suite, std::string_view key) const;
  void remember(std::string_view suite, std::string_view key, std::optional<Value> value);

 private:
  using Key = std::pair<std::string, std::string>;

  mutable std::mutex mutex_;
  std::map<Key, std::optional<Value>> values_;
};

/// A store on one suite of the state database. It keeps nothing itself: every object on the suite, in every
/// process, sees the same values; of what waits to be saved, those with the same memory. What another program
/// keeps from being read is as it is remembered; absent where nothing is.
class StoredPreferences final : public PreferencesStore {
 public:
  StoredPreferences(
      SharedDatabase database, std::string suite,
      std::shared_ptr<RememberedPreferences> remembered = std::make_shared<RememberedPreferences>())
      : database_(std::move(database)), suite_(std::move(suite)), remembered_(std::move(remembered)) {}

  std::optional<Value> objectForKey(std::string_view key) const override;
  bool setObject(Value value, std::string_view key) override;
  void removeObject(std::string_view key) override;
  /// As `objectForKey` and `setObject`, for those who hand the error on. What is remembered is no answer
  /// here.
  Outcome<std::optional<Value>> read(std::string_view key) const;
  std::optional<Error> keep(const Value& value, std::string_view key);

 private:
  Outcome<StoredDatabase::Operation> keeping(const Value& value, std::string_view key) const;
  Error failureAt(std::string_view key, std::string_view why) const;

  bool mayBeThere(std::string_view key) const;

  SharedDatabase database_;
  std::string suite_;
  std::shared_ptr<RememberedPreferences> remembered_;
};

}  // namespace linewatch
