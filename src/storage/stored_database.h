#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <thread>

#include <sys/types.h>

#include "platform/log.h"
#include "storage/sqlite_database.h"

namespace linewatch {

/// What a database file holds.
struct DatabaseSchema {
  /// What messages call it, e.g. "state database".
  std::string_view name;
  /// Marks the file as one of this kind, in SQLite's own field for it.
  std::int32_t applicationId;
  /// The statements that lead from each version to the next, the first ones from an empty file to version 1.
  std::span<const std::string_view> migrations;
  /// What a user can do when a damaged file was set aside; empty when there is nothing to do, as everything
  /// in it can be had again.
  std::string_view remedy = {};
};

/// A database file that outlives the program, opened when it is first needed and made when something is first
/// written. Several programs may use one file at the same time. Any thread.
///
/// A file that is damaged is set aside under a new name beside it. Whoever found the damage gets an error
/// that says so, and what is written next begins a new file. A file that a newer version has written, or
/// another program, is left as it is and neither read nor written.
class StoredDatabase {
 public:
  /// What is done with the open database.
  using Operation = std::function<std::optional<Error>(SqliteDatabase&)>;

  struct Options {
    /// How long to wait for another program that is writing.
    std::chrono::milliseconds busyTimeout{3000};
    /// The most pages (4096 bytes each) that the file may have; SQLite's own limit when absent.
    std::optional<std::int64_t> maximumPageCount;
    /// How long a thread in a hurry waits.
    std::chrono::milliseconds haste{100};
  };

  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log, Options options);
  StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log)
      : StoredDatabase(std::move(file), schema, log, Options{}) {}
  /// Saves what was put off; what still cannot be saved then is told to the log.
  ~StoredDatabase();
  StoredDatabase(const StoredDatabase&) = delete;
  StoredDatabase& operator=(const StoredDatabase&) = delete;

  /// From now on the calling thread, which a person waits for, is in a hurry: it waits for another program
  /// only for as long as nobody notices.
  void hurryOnThisThread() { hurried_ = std::this_thread::get_id(); }

  const std::filesystem::path& file() const { return file_; }
  /// What is lost with the damaged file that was set aside last, by whichever program; absent when none lies
  /// beside this one.
  std::optional<Error> loss() const;

  /// Does `operation` if there is a file, and nothing if there is none. Writes nothing but what was put off,
  /// if that takes no waiting.
  std::optional<Error> read(const Operation& operation);
  /// Does `operation` in one transaction: all of it or, after an error, none. Makes the file and its folder
  /// when they are missing.
  std::optional<Error> write(const Operation& operation);
  /// As `write`, for those who cannot hand an error on: it goes to the log, and false comes back. After
  /// damage it goes to the new file. On a thread in a hurry it is put off, with a line in the log, as long as
  /// another program holds the file: until the next that is done here, or the end. So `operation` owns all
  /// that it needs.
  bool save(Operation operation);
  /// Whether something that was put off is not saved yet, so that what is read may be older.
  bool isBehind();
  /// Puts the error, if there is one, into the log, each sentence once. For those who cannot hand an error
  /// on. Damage that leaves nothing to do is told only to those who look closer.
  void report(const std::optional<Error>& error);

 private:
  /// Tells one file from another that took its place.
  struct FileIdentity {
    dev_t device;
    ino_t inode;
    bool operator==(const FileIdentity&) const = default;
  };
  static std::optional<FileIdentity> identityOf(const std::filesystem::path& file);

  using Lock = std::unique_lock<std::timed_mutex>;
  /// Owns nothing when it would take a thread in a hurry too long.
  Lock lock();
  bool hurries() const { return hurried_.load() == std::this_thread::get_id(); }
  std::chrono::milliseconds patience() const;
  std::optional<Error> writeLocked(const Operation& operation);
  /// Writes to the new file where the old one turns out to be damaged.
  std::optional<Error> saveLocked(const Operation& operation);
  /// Does what was put off, in its order, until another program is in the way.
  std::optional<Error> catchUp();
  void catchUpWithoutWaiting();
  void putOff(Operation operation, const Error& why);

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
  /// The error of whoever found the damage.
  Error setAside(const Error& damage);
  std::optional<Error> moveAside();
  Error refusal(std::string_view why) const;
  Error busy() const;
  void forgetReplacedFile();
  void report(const std::string& sentence, LogLevel level = LogLevel::error);

  const std::filesystem::path file_;
  const DatabaseSchema& schema_;
  Log& log_;
  const Options options_;

  std::atomic<std::thread::id> hurried_;
  std::timed_mutex mutex_;
  bool waits_ = true;
  std::optional<SqliteDatabase> connection_;
  std::optional<FileIdentity> connectedFile_;
  /// Guards what follows, for moments only; may be taken under the other one. The front of what was put off
  /// is taken away under both.
  std::mutex notesMutex_;
  std::set<std::string> reported_;
  std::deque<Operation> putOff_;
};

}  // namespace linewatch
