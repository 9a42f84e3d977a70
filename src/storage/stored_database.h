#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "platform/log.h"
#include "shared/mutex.h"
#include "storage/database_connection.h"
#include "storage/write_queue.h"

namespace linewatch {

/// A database file that outlives the program, opened when it is first used and made by the first write.
/// Several programs may use one file at the same time. Any thread.
///
/// Writes are confirmed (`write`) or not (`save`). Errors are those of `DatabaseConnection`; `busy` says that
/// another program used the file for longer than the busy timeout.
class StoredDatabase {
 public:
  using Operation = DatabaseConnection::Operation;

  struct Options {
    /// How long a call waits for another program that uses the file.
    std::chrono::milliseconds busyTimeout{3000};
    /// The most pages of 4096 bytes that the file may have; absent: SQLite's own limit.
    std::optional<std::int64_t> maximumPageCount;
    /// Whether `save` leaves its writes to a thread of their own, for a program whose main thread must not
    /// wait for the disk. The file then has a write-ahead log, so that reading does not wait either.
    bool defersSaves = false;
    /// After a call that waited the whole timeout, whether the next ones fail at once until the file is free.
    bool waitsOnce = false;

    DatabaseConnection::Options forReading() const {
      return {busyTimeout, maximumPageCount, false, waitsOnce};
    }
    DatabaseConnection::Options forWriting() const {
      return {busyTimeout, maximumPageCount, defersSaves, waitsOnce};
    }
  };

  /// `log` and `schema` must outlive this.
  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log, Options options);
  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log)
      : StoredDatabase(std::move(file), schema, log, Options{}) {}
  /// Makes the deferred writes, or tells the log how many are lost because another program uses the file.
  ~StoredDatabase();
  StoredDatabase(const StoredDatabase&) = delete;
  StoredDatabase& operator=(const StoredDatabase&) = delete;

  const std::filesystem::path& file() const { return file_.path(); }
  /// The error that describes the loss with the last damaged file set aside, by any program; absent when
  /// there is none.
  std::optional<Error> loss() const { return lossOf(file_, schema_); }

  /// Runs `operation` if there is a file. Does not see deferred writes.
  std::optional<Error> read(const Operation& operation) LINEWATCH_EXCLUDES(readerMutex_);
  /// Runs `operation` in one transaction, after the deferred writes, and returns after the commit: all of it
  /// is on the disk or, after an error, none. Makes the file and its folder when they are missing.
  std::optional<Error> write(const Operation& operation) LINEWATCH_EXCLUDES(writerMutex_);
  /// As `write`, for callers that cannot return an error: it goes to the log. After damage `operation` writes
  /// to the new file. A deferred write is retried until the file is free, and must own its data.
  /// `settled` (may be empty) is called once, on any thread: with true after the commit, with false after a
  /// failure; never for a write that is lost at the end. Returns false if the write has failed already.
  bool save(Operation operation, std::function<void(bool isSaved)> settled = {})
      LINEWATCH_EXCLUDES(writerMutex_);
  /// Waits until the deferred writes are done; false when another program keeps them from it.
  bool waitUntilSaved() { return queue_.waitUntilDone(); }

  /// Writes the error, if there is one, to the log, each sentence once. Damage that costs the user nothing is
  /// for debugging only.
  void report(const std::optional<Error>& error) LINEWATCH_EXCLUDES(reportedMutex_);
  /// The log for the messages of `settled`; null when `save` writes at once.
  Log* deferredLog() const { return options_.defersSaves ? &log_ : nullptr; }

 private:
  std::optional<Error> saveNow(const Operation& operation) LINEWATCH_EXCLUDES(writerMutex_);
  bool tryDeferred(const Operation& operation, const std::function<void(bool isSaved)>& settled);
  Error busy(std::string_view why) const;
  void report(const std::string& sentence, LogLevel level) LINEWATCH_EXCLUDES(reportedMutex_);

  const DatabaseFile file_;
  const DatabaseSchema& schema_;
  Log& log_;
  const Options options_;

  /// Two connections, so that a read does not wait for a commit.
  Mutex readerMutex_;
  DatabaseConnection reader_ LINEWATCH_GUARDED_BY(readerMutex_);
  Mutex writerMutex_;
  DatabaseConnection writer_ LINEWATCH_GUARDED_BY(writerMutex_);
  Mutex reportedMutex_;
  std::set<std::string> reported_ LINEWATCH_GUARDED_BY(reportedMutex_);
  /// The last member, as its thread uses the others.
  WriteQueue queue_;
};

}  // namespace linewatch
