#include "desktop/storage/stored_preferences.h"

#include "desktop/base/failure.h"
#include "desktop/storage/cbor.h"

namespace linewatch::desktop {

std::optional<Value> StoredPreferences::objectForKey(std::string_view key) const {
  std::optional<Bytes> bytes;
  bool isTooLarge = false;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT length(value), value FROM preference WHERE suite = ? AND key = ?",
                        {suite_, key}, [&](const SqliteRow& row) {
                          isTooLarge = row.integer(0) > kLargestPreference;
                          if (!isTooLarge) bytes = row.bytes(1);
                        });
  }));
  if (isTooLarge) database_->report(failureAt(key, "the stored value is larger than any preference"));
  if (!bytes) return std::nullopt;
  auto value = cbor::valueIn(*bytes);
  if (!value) database_->report(failureAt(key, "the stored value is malformed"));
  return value;
}

bool StoredPreferences::setObject(Value value, std::string_view key) {
  const auto operation = keeping(value, key);
  if (operation) return database_->save(*operation);
  database_->report(operation.error());
  return false;
}

std::optional<Error> StoredPreferences::keep(const Value& value, std::string_view key) {
  const auto operation = keeping(value, key);
  return operation ? database_->write(*operation) : operation.error();
}

Outcome<StoredDatabase::Operation> StoredPreferences::keeping(const Value& value,
                                                              std::string_view key) const {
  auto bytes = cbor::bytesOf(value);
  if (!bytes) return failureAt(key, "the value cannot be written");
  if (static_cast<std::int64_t>(bytes->size()) > kLargestPreference)
    return failureAt(key, "the value is too large to be kept");
  return StoredDatabase::Operation(
      [suite = suite_, key = std::string(key), bytes = std::move(*bytes)](SqliteDatabase& database) {
        return database.run("INSERT OR REPLACE INTO preference (suite, key, value) VALUES (?, ?, ?)",
                            {suite, key, bytes});
      });
}

void StoredPreferences::removeObject(std::string_view key) {
  // Where there is nothing to remove, no database has to be made.
  bool isThere = false;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT 1 FROM preference WHERE suite = ? AND key = ?", {suite_, key},
                        [&](const SqliteRow&) { isThere = true; });
  }));
  if (!isThere) return;
  database_->save([suite = suite_, key = std::string(key)](SqliteDatabase& database) {
    return database.run("DELETE FROM preference WHERE suite = ? AND key = ?", {suite, key});
  });
}

Error StoredPreferences::failureAt(std::string_view key, std::string_view why) const {
  return failure("preferences", suite_ + " " + std::string(key), why);
}

}  // namespace linewatch::desktop
