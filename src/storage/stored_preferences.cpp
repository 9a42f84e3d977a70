#include "storage/stored_preferences.h"

#include "shared/failure.h"
#include "wire/archive/cbor.h"

namespace linewatch {

// ---- What is remembered ----

std::optional<Error> RememberedPreferences::read(StoredDatabase& database) {
  std::map<Key, std::optional<Value>> values;
  auto error = database.read([&](SqliteDatabase& open) {
    return open.run("SELECT suite, key, value FROM preference WHERE length(value) <= ?", {kLargestPreference},
                    [&](const SqliteRow& row) {
                      if (auto value = cbor::valueIn(row.bytes(2)))
                        values.insert_or_assign({row.text(0), row.text(1)}, std::move(*value));
                    });
  });
  if (error) return error;
  const std::lock_guard lock(mutex_);
  // What was set and is not saved yet is newer than what was read.
  if (database.isBehind()) {
    values_.merge(values);
  } else {
    values_ = std::move(values);
  }
  return std::nullopt;
}

std::optional<std::optional<Value>> RememberedPreferences::find(std::string_view suite,
                                                                std::string_view key) const {
  const std::lock_guard lock(mutex_);
  const auto value = values_.find({std::string(suite), std::string(key)});
  return value == values_.end() ? std::nullopt : std::optional(value->second);
}

void RememberedPreferences::remember(std::string_view suite, std::string_view key,
                                     std::optional<Value> value) {
  const std::lock_guard lock(mutex_);
  values_.insert_or_assign({std::string(suite), std::string(key)}, std::move(value));
}

// ---- The store ----

std::optional<Value> StoredPreferences::objectForKey(std::string_view key) const {
  auto value = read(key);
  if (!value) database_->report(value.error());
  if (!value && !isBusy(value.error())) return std::nullopt;
  if (!value || database_->isBehind()) {
    if (auto remembered = remembered_->find(suite_, key)) return *std::move(remembered);
  }
  if (!value) return std::nullopt;
  remembered_->remember(suite_, key, *value);
  return std::move(*value);
}

Outcome<std::optional<Value>> StoredPreferences::read(std::string_view key) const {
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
  auto value = bytes ? cbor::valueIn(*bytes) : std::nullopt;
  if (bytes && !value) database_->report(failureAt(key, "the stored value is malformed"));
  return value;
}

bool StoredPreferences::setObject(Value value, std::string_view key) {
  const auto operation = keeping(value, key);
  if (!operation) {
    database_->report(operation.error());
    return false;
  }
  const bool isSaved = database_->save(*operation);
  if (isSaved) remembered_->remember(suite_, key, std::move(value));
  return isSaved;
}

std::optional<Error> StoredPreferences::keep(const Value& value, std::string_view key) {
  const auto operation = keeping(value, key);
  auto error = operation ? database_->write(*operation) : operation.error();
  if (!error) remembered_->remember(suite_, key, value);
  return error;
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
  if (!mayBeThere(key)) return;
  const bool isRemoved = database_->save([suite = suite_, key = std::string(key)](SqliteDatabase& database) {
    return database.run("DELETE FROM preference WHERE suite = ? AND key = ?", {suite, key});
  });
  if (isRemoved) remembered_->remember(suite_, key, std::nullopt);
}

bool StoredPreferences::mayBeThere(std::string_view key) const {
  bool isThere = false;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT 1 FROM preference WHERE suite = ? AND key = ?", {suite_, key},
                        [&](const SqliteRow&) { isThere = true; });
  });
  database_->report(error);
  return error ? isBusy(*error) : isThere || database_->isBehind();
}

Error StoredPreferences::failureAt(std::string_view key, std::string_view why) const {
  return failure("preferences", suite_ + " " + std::string(key), why);
}

}  // namespace linewatch
