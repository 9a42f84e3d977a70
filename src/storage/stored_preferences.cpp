#include "storage/stored_preferences.h"

#include "platform/log.h"
#include "shared/failure.h"
#include "wire/archive/cbor.h"

namespace linewatch {

std::optional<Value> StoredPreferences::objectForKey(std::string_view key) const {
  auto value = read(key);
  if (value) return *std::move(value);
  database_->report(value.error());
  return std::nullopt;
}

// Pending changes are read first: a change that is saved in between is then found in the database.
Outcome<std::optional<Value>> StoredPreferences::read(std::string_view key) const {
  if (auto changed = pending_->find(suite_, key)) return *std::move(changed);
  const auto bytes = readBytes(key);
  if (!bytes) return bytes.error();
  auto value = *bytes ? cbor::valueIn(**bytes) : std::nullopt;
  if (*bytes && !value) database_->report(failureAt(key, "the stored value is malformed"));
  return value;
}

Outcome<std::optional<Bytes>> StoredPreferences::readBytes(std::string_view key) const {
  std::optional<Bytes> bytes;
  bool isTooLarge = false;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT length(value), value FROM preference WHERE suite = ? AND key = ?",
                        {suite_, key}, [&](const SqliteRow& row) {
                          isTooLarge = row.integer(0) > kLargestPreference;
                          if (!isTooLarge) bytes = row.bytes(1);
                        });
  });
  if (error) return *error;
  if (isTooLarge) database_->report(failureAt(key, "the stored value is larger than any preference"));
  return bytes;
}

bool StoredPreferences::setObject(Value value, std::string_view key) {
  auto encoded = encode(value, key);
  if (!encoded) {
    database_->report(encoded.error());
    return false;
  }
  if (isKept(value, *encoded, key)) return true;
  return save(std::move(value), key, insertion(key, std::move(*encoded)));
}

bool StoredPreferences::isKept(const Value& value, const Bytes& encoded, std::string_view key) const {
  if (const auto changed = pending_->find(suite_, key)) return *changed == value;
  const auto kept = readBytes(key);
  return kept && *kept == encoded;
}

Outcome<StoredDatabase::Operation> StoredPreferences::writeOf(const Value& value,
                                                              std::string_view key) const {
  auto encoded = encode(value, key);
  if (!encoded) return encoded.error();
  return insertion(key, std::move(*encoded));
}

Outcome<Bytes> StoredPreferences::encode(const Value& value, std::string_view key) const {
  auto bytes = cbor::bytesOf(value);
  if (!bytes) return failureAt(key, "the value cannot be written");
  if (static_cast<std::int64_t>(bytes->size()) > kLargestPreference)
    return failureAt(key, "the value is too large to be kept");
  return std::move(*bytes);
}

StoredDatabase::Operation StoredPreferences::insertion(std::string_view key, Bytes encoded) const {
  return [suite = suite_, key = std::string(key), encoded = std::move(encoded)](SqliteDatabase& database) {
    return database.run("INSERT OR REPLACE INTO preference (suite, key, value) VALUES (?, ?, ?)",
                        {suite, key, encoded});
  };
}

void StoredPreferences::removeObject(std::string_view key) {
  // A removal that changes nothing must not make a database.
  if (!mayExist(key)) return;
  save(std::nullopt, key, [suite = suite_, key = std::string(key)](SqliteDatabase& database) {
    return database.run("DELETE FROM preference WHERE suite = ? AND key = ?", {suite, key});
  });
}

bool StoredPreferences::mayExist(std::string_view key) const {
  if (const auto changed = pending_->find(suite_, key)) return changed->has_value();
  bool exists = false;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT 1 FROM preference WHERE suite = ? AND key = ?", {suite_, key},
                        [&](const SqliteRow&) { exists = true; });
  });
  database_->report(error);
  return error ? isBusy(*error) : exists;
}

bool StoredPreferences::save(std::optional<Value> value, std::string_view key,
                             StoredDatabase::Operation operation) {
  const auto ticket = pending_->add(suite_, key, std::move(value));
  return database_->save(std::move(operation),
                         [pending = pending_, log = database_->deferredLog(), suite = suite_,
                          key = std::string(key), ticket](bool isSaved) {
                           pending->settle(suite, key, ticket);
                           if (isSaved && log)
                             log->write({LogLevel::debug, kLogCategory, "The preference %@ is saved", {key}});
                         });
}

Error StoredPreferences::failureAt(std::string_view key, std::string_view why) const {
  return failure("preferences", suite_ + " " + std::string(key), why);
}

}  // namespace linewatch
