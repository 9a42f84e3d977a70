#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "desktop/storage/state_database.h"
#include "platform/preferences_store.h"

namespace linewatch::desktop {

/// Bytes, as it is kept: a larger value is neither kept nor read, so that nobody waits for it.
inline constexpr std::int64_t kLargestPreference = std::int64_t{16} << 20;

/// A store on one suite of the state database. It keeps nothing itself: every object on the suite, in every
/// process, sees the same values.
class StoredPreferences final : public PreferencesStore {
 public:
  StoredPreferences(SharedDatabase database, std::string suite)
      : database_(std::move(database)), suite_(std::move(suite)) {}

  std::optional<Value> objectForKey(std::string_view key) const override;
  bool setObject(Value value, std::string_view key) override;
  void removeObject(std::string_view key) override;
  /// As `setObject`, for those who hand the error on.
  std::optional<Error> keep(const Value& value, std::string_view key);

 private:
  Outcome<StoredDatabase::Operation> keeping(const Value& value, std::string_view key) const;
  Error failureAt(std::string_view key, std::string_view why) const;

  SharedDatabase database_;
  std::string suite_;
};

}  // namespace linewatch::desktop
