#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "shared/outcome.h"
#include "storage/database_file.h"
#include "storage/database_schema.h"
#include "storage/sqlite_database.h"

namespace linewatch {

/// A connection to a database file of one schema, opened when it is first used and again after the file was
/// replaced. One thread at a time.
///
/// A damaged file is set aside; the call that finds the damage fails with `FailureCode::damaged`, and the
/// next write makes a new file. A file of a newer version or of another program (`unsupported`) is
/// neither read nor written.
class DatabaseConnection {
 public:
  /// Works on the open database. It may run more than once and only what its last run did counts.
  using Operation = std::function<std::optional<Error>(SqliteDatabase&)>;

  struct Options {
    /// How long to wait for another program that uses the file.
    std::chrono::milliseconds busyTimeout{3000};
    /// The most pages of 4096 bytes that the file may have; absent: SQLite's own limit.
    std::optional<std::int64_t> maximumPageCount;
    /// Whether the file has a write-ahead log while this connection writes, so that readers and writers do
    /// not wait for each other.
    bool usesLog = false;
    /// After a call that waited the whole timeout, whether the next ones fail at once until the file is free.
    bool waitsOnce = false;
  };

  /// Opens nothing yet. `schema` must outlive the connection.
  DatabaseConnection(DatabaseFile file, const DatabaseSchema& schema, Options options)
      : file_(std::move(file)), schema_(schema), options_(options) {}
  ~DatabaseConnection() { close(); }
  DatabaseConnection(const DatabaseConnection&) = delete;
  DatabaseConnection& operator=(const DatabaseConnection&) = delete;

  /// Runs `operation` if there is a file. Writes nothing, except that it rolls back a killed program's
  /// transaction and migrates an older file to this version.
  std::optional<Error> read(const Operation& operation);
  /// Runs `operation` in one transaction and returns after the commit: all of it is on the disk or, after an
  /// error, none. Makes the file and its folder when they are missing.
  std::optional<Error> write(const Operation& operation);
  /// Opens the file for writing, if there is one, so that it has its log before the first write.
  void prepareToWrite();
  /// Closes the file. The last connection to close it removes its log.
  void close();

 private:
  std::optional<Error> attempt(const std::function<std::optional<Error>()>& action);
  std::optional<Error> commitIn(const Operation& operation);
  std::optional<Error> openForReading();
  std::optional<Error> openForWriting();
  bool needsLogThatCannotBeMade(const Error& error) const;
  std::optional<Error> makeFile();
  std::optional<Error> connect(SqliteDatabase::Mode mode);
  std::optional<Error> checkAndMigrate();
  Outcome<std::int64_t> readVersion();
  std::optional<Error> inTransaction(const Operation& operation);
  Error setAside(const Error& damage);
  Error refusal(FailureCode code, std::string_view why) const;
  std::chrono::milliseconds busyTimeout() const {
    return wasBusy_ && options_.waitsOnce ? std::chrono::milliseconds() : options_.busyTimeout;
  }
  bool isReplaced() const { return file_.identity() != connectedFile_; }
  void drop();

  const DatabaseFile file_;
  const DatabaseSchema& schema_;
  const Options options_;
  std::optional<SqliteDatabase> connection_;
  std::optional<DatabaseFile::Identity> connectedFile_;
  /// Whether the connection has been set up for writing, too.
  bool isForWriting_ = false;
  bool wasBusy_ = false;
};

/// The error that describes the loss with the last damaged file set aside, by any program; absent when there
/// is none.
std::optional<Error> lossOf(const DatabaseFile& file, const DatabaseSchema& schema);

}  // namespace linewatch
