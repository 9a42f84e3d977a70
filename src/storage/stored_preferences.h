#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/preferences_store.h"
#include "storage/pending_preferences.h"
#include "storage/state_database.h"

namespace linewatch {

/// Bytes of an encoded value. A larger one is neither kept nor read, so that nobody waits for it.
inline constexpr std::int64_t kLargestPreference = std::int64_t{16} << 20;

/// A store on one suite of the state database. It keeps nothing itself: all stores on the suite, in every
/// process, see the same values. Stores with the same `pending` also see the values that are not saved yet.
/// A value that cannot be read counts as absent, with a line in the log. Any thread.
class StoredPreferences final : public PreferencesStore {
 public:
  StoredPreferences(SharedDatabase database, std::string suite,
                    std::shared_ptr<PendingPreferences> pending = std::make_shared<PendingPreferences>())
      : database_(std::move(database)), suite_(std::move(suite)), pending_(std::move(pending)) {}

  std::optional<Value> objectForKey(std::string_view key) const override;
  /// Writes nothing when the key has this value already.
  bool setObject(Value value, std::string_view key) override;
  void removeObject(std::string_view key) override;

  /// As `objectForKey`, with the error of a failure.
  Outcome<std::optional<Value>> read(std::string_view key) const;
  /// The write that keeps the value, as a part of a larger one.
  Outcome<StoredDatabase::Operation> writeOf(const Value& value, std::string_view key) const;

 private:
  Outcome<std::optional<Bytes>> readBytes(std::string_view key) const;
  Outcome<Bytes> encode(const Value& value, std::string_view key) const;
  bool isKept(const Value& value, const Bytes& encoded, std::string_view key) const;
  bool mayExist(std::string_view key) const;
  bool save(std::optional<Value> value, std::string_view key, StoredDatabase::Operation operation);
  StoredDatabase::Operation insertion(std::string_view key, Bytes encoded) const;
  Error failureAt(std::string_view key, std::string_view why) const;

  SharedDatabase database_;
  std::string suite_;
  std::shared_ptr<PendingPreferences> pending_;
};

}  // namespace linewatch
