#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "desktop/storage/sqlite_database.h"
#include "platform/log.h"

namespace linewatch::desktop {

/// What a database file holds.
struct DatabaseSchema {
  /// What messages call it, e.g. "state database".
  std::string_view name;
  /// Marks the file as one of this kind, in SQLite's own field for it.
  std::int32_t applicationId;
  /// The statements that lead from each version to the next, the first ones from an empty file to version 1.
  std::span<const std::string_view> migrations;
};

/// A database file that outlives the program, opened when it is first needed and made when something is first
/// written. Several programs may use one file at the same time. Any thread.
///
/// A file that is damaged is set aside under a new name beside it, with a line in the log, and a new one is
/// begun; a file that a newer version has written, or another program, is left as it is and neither read nor
/// written.
class StoredDatabase {
 public:
  /// What is done with the open database. It is done again from its start when the file had to be set aside,
  /// so it begins with clearing what it fills.
  using Operation = std::function<std::optional<Error>(SqliteDatabase&)>;

  struct Options {
    /// How long to wait for another program that is writing.
    std::chrono::milliseconds busyTimeout{3000};
    /// The most pages (4096 bytes each) that the file may have; SQLite's own limit when absent.
    std::optional<std::int64_t> maximumPageCount;
  };

  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log, Options options);
  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log)
      : StoredDatabase(std::move(file), schema, log, Options{}) {}

  const std::filesystem::path& file() const { return file_; }

  /// Does `operation` if there is a file, and nothing if there is none. Writes nothing.
  std::optional<Error> read(const Operation& operation);
  /// Does `operation` in one transaction: all of it or, after an error, none. Makes the file and its folder
  /// when they are missing.
  std::optional<Error> write(const Operation& operation);
  /// Puts the error into the log, each sentence once. For those who cannot hand an error on.
  void report(const Error& error);

 private:
  /// Tells one file from another that took its place.
  struct FileIdentity {
    dev_t device;
    ino_t inode;
    bool operator==(const FileIdentity&) const = default;
  };
  static std::optional<FileIdentity> identityOf(const std::filesystem::path& file);

  std::optional<Error> attempt(const std::function<std::optional<Error>()>& action);
  /// Leaves `connection_` empty, without an error, when there is nothing to read.
  std::optional<Error> openForReading();
  std::optional<Error> openForWriting();
  std::optional<Error> connect(SqliteDatabase::Mode mode);
  /// The version of the open file, 0 for an empty one.
  Outcome<std::int64_t> readVersion();
  std::optional<Error> migrate();
  std::optional<Error> migrateWithin(SqliteDatabase& database);
  std::optional<Error> inTransaction(const Operation& operation);
  std::optional<Error> setAside(const Error& damage);
  Outcome<std::filesystem::path> moveAside();
  Error refusal(std::string_view why) const;
  void forgetReplacedFile();
  void reportLocked(const std::string& sentence);

  const std::filesystem::path file_;
  const DatabaseSchema& schema_;
  Log& log_;
  const Options options_;

  std::mutex mutex_;
  std::optional<SqliteDatabase> connection_;
  std::optional<FileIdentity> connectedFile_;
  std::set<std::string> reported_;
};

}  // namespace linewatch::desktop
