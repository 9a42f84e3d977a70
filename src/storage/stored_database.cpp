#include "storage/stored_database.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/failure.h"

namespace linewatch {

namespace {

/// SQLite keeps what it needs to undo a write in a file of this ending beside the database.
constexpr const char* kJournalSuffix = "-journal";

/// Holds the advisory lock on a file as long as it lives. Not the kind of lock that SQLite itself takes.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path& file)
      : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ >= 0) ::flock(descriptor_, LOCK_EX);
  }
  ~FileLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int descriptor_;
};

/// False where a folder on the way may not be looked into: then it is not known.
bool isKnownAbsent(const std::filesystem::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

std::filesystem::path nameBeside(std::filesystem::path file, int number) {
  return file += number == 1 ? ".damaged" : ".damaged-" + std::to_string(number);
}

/// How many have been set aside.
int countBeside(const std::filesystem::path& file) {
  std::error_code ignored;
  int count = 0;
  while (std::filesystem::exists(nameBeside(file, count + 1), ignored)) ++count;
  return count;
}

std::filesystem::path withSuffix(std::filesystem::path file, const char* suffix) { return file += suffix; }

}  // namespace

StoredDatabase::StoredDatabase(std::filesystem::path file, const DatabaseSchema& schema, Log& log,
                               Options options)
    : file_(std::move(file)), schema_(schema), log_(log), options_(options) {}

StoredDatabase::~StoredDatabase() {
  hurried_ = std::thread::id();
  const Lock held = lock();
  if (const auto error = catchUp()) report(sentenceOf(*error) + "; what waited to be saved is lost");
}

std::optional<Error> StoredDatabase::read(const Operation& operation) {
  const Lock held = lock();
  if (!held) return busy();
  catchUpWithoutWaiting();
  return attempt([&]() -> std::optional<Error> {
    if (auto error = openForReading()) return error;
    return connection_ ? operation(*connection_) : std::nullopt;
  });
}

std::optional<Error> StoredDatabase::write(const Operation& operation) {
  const Lock held = lock();
  auto error = held ? catchUp() : busy();
  return error ? error : writeLocked(operation);
}

std::optional<Error> StoredDatabase::writeLocked(const Operation& operation) {
  return attempt([&]() -> std::optional<Error> {
    if (auto error = openForWriting()) return error;
    return inTransaction(operation);
  });
}

std::optional<Error> StoredDatabase::loss() const {
  const int count = countBeside(file_);
  if (count == 0) return std::nullopt;
  const std::string aside = nameBeside(file_, count).filename().string();
  return within(schema_.name,
                failure(file_.string(), "it was damaged, and is set aside as " + aside, schema_.remedy));
}

void StoredDatabase::report(const std::optional<Error>& error) {
  if (!error) return;
  const bool isMended = isDamage(*error) && schema_.remedy.empty();
  report(sentenceOf(*error), isMended ? LogLevel::debug : LogLevel::error);
}

// ---- Threads in a hurry ----

bool StoredDatabase::save(Operation operation) {
  const Lock held = lock();
  auto error = held ? catchUp() : busy();
  if (!error) error = saveLocked(operation);
  if (!error) return true;
  const bool canWait = hurries() && isBusy(*error);
  if (canWait) {
    putOff(std::move(operation), *error);
  } else {
    report(error);
  }
  return canWait;
}

std::optional<Error> StoredDatabase::saveLocked(const Operation& operation) {
  auto error = writeLocked(operation);
  if (!error || !isDamage(*error)) return error;
  report(*error);
  return writeLocked(operation);
}

bool StoredDatabase::isBehind() {
  const std::lock_guard notes(notesMutex_);
  return !putOff_.empty();
}

std::chrono::milliseconds StoredDatabase::patience() const {
  if (!waits_) return {};
  return hurries() ? options_.haste : options_.busyTimeout;
}

StoredDatabase::Lock StoredDatabase::lock() {
  Lock held(mutex_, std::defer_lock);
  if (hurries()) {
    static_cast<void>(held.try_lock_for(options_.haste));
  } else {
    held.lock();
  }
  return held;
}

std::optional<Error> StoredDatabase::catchUp() {
  while (true) {
    const Operation* next = nullptr;
    {
      const std::lock_guard notes(notesMutex_);
      if (putOff_.empty()) return std::nullopt;
      next = &putOff_.front();
    }
    auto error = saveLocked(*next);
    if (error && isBusy(*error)) return error;
    report(error);
    const std::lock_guard notes(notesMutex_);
    putOff_.pop_front();
  }
}

// Reading needs no writer to be through, and must not wait as if it did.
void StoredDatabase::catchUpWithoutWaiting() {
  waits_ = false;
  static_cast<void>(catchUp());
  waits_ = true;
}

void StoredDatabase::putOff(Operation operation, const Error& why) {
  report(sentenceOf(why) + "; what is to be saved waits for it");
  const std::lock_guard notes(notesMutex_);
  putOff_.push_back(std::move(operation));
}

// ---- The file ----

std::optional<Error> StoredDatabase::attempt(const std::function<std::optional<Error>()>& action) {
  forgetReplacedFile();
  if (connection_) connection_->setBusyTimeout(patience());
  auto error = action();
  return error && isDamage(*error) ? setAside(*error) : error;
}

std::optional<Error> StoredDatabase::openForReading() {
  if (connection_ || isKnownAbsent(file_)) return std::nullopt;
  if (auto error = connect(SqliteDatabase::Mode::mustExist)) return error;
  const auto version = readVersion();
  if (version && *version == static_cast<std::int64_t>(schema_.migrations.size())) return std::nullopt;
  const bool isOlder = version && *version > 0;
  auto error = isOlder ? migrate() : version ? std::nullopt : std::optional(version.error());
  if (!isOlder || error) connection_.reset();
  return error;
}

std::optional<Error> StoredDatabase::openForWriting() {
  if (connection_) return std::nullopt;
  std::error_code obstacle;
  std::filesystem::create_directories(file_.parent_path(), obstacle);
  if (obstacle)
    return failure(schema_.name, file_.parent_path().string(),
                   "the folder cannot be made: " + obstacle.message());
  if (auto error = connect(SqliteDatabase::Mode::createIfAbsent)) return error;
  auto error = migrate();
  if (error) connection_.reset();
  return error;
}

std::optional<Error> StoredDatabase::connect(SqliteDatabase::Mode mode) {
  auto opened = SqliteDatabase::open(schema_.name, file_, mode, patience());
  if (!opened) return opened.error();
  connection_.emplace(std::move(*opened));
  connectedFile_ = identityOf(file_);
  if (!options_.maximumPageCount) return std::nullopt;
  return connection_->run("PRAGMA max_page_count = " + std::to_string(*options_.maximumPageCount));
}

Outcome<std::int64_t> StoredDatabase::readVersion() {
  std::int64_t version = 0;
  std::int64_t applicationId = 0;
  bool isEmpty = true;
  // In one statement: in between another program may begin the file.
  const auto error = connection_->run(
      "SELECT user_version, application_id, NOT EXISTS (SELECT 1 FROM sqlite_schema) "
      "FROM pragma_user_version, pragma_application_id",
      {}, [&](const SqliteRow& row) {
        version = row.integer(0);
        applicationId = row.integer(1);
        isEmpty = row.integer(2) != 0;
      });
  if (error) return *error;
  if (applicationId == 0 && version == 0 && isEmpty) return std::int64_t{0};
  if (applicationId != schema_.applicationId)
    return refusal("another program's database stands in its place");
  if (version > static_cast<std::int64_t>(schema_.migrations.size())) {
    return refusal("a newer version of LineWatch has written it");
  }
  return version;
}

std::optional<Error> StoredDatabase::migrate() {
  const auto version = readVersion();
  if (!version) return version.error();
  if (*version == static_cast<std::int64_t>(schema_.migrations.size())) return std::nullopt;
  return inTransaction([this](SqliteDatabase& database) { return migrateWithin(database); });
}

std::optional<Error> StoredDatabase::migrateWithin(SqliteDatabase& database) {
  // Another program may have done it in the meantime.
  const auto version = readVersion();
  if (!version) return version.error();
  for (const std::string_view step : schema_.migrations.subspan(static_cast<std::size_t>(*version))) {
    if (auto error = database.runScript(step)) return error;
  }
  return database.runScript("PRAGMA application_id = " + std::to_string(schema_.applicationId) +
                            "; PRAGMA user_version = " + std::to_string(schema_.migrations.size()));
}

std::optional<Error> StoredDatabase::inTransaction(const Operation& operation) {
  auto error = connection_->run("BEGIN IMMEDIATE");
  if (error) return error;
  error = operation(*connection_);
  if (!error) error = connection_->run("COMMIT");
  // SQLite has undone some failures by itself, and then has nothing to roll back.
  if (error) static_cast<void>(connection_->run("ROLLBACK"));
  return error;
}

Error StoredDatabase::setAside(const Error& damage) {
  connection_.reset();
  if (auto obstacle = moveAside()) return *std::move(obstacle);
  Error error = loss().value_or(damage);
  error.domain = damage.domain;
  error.code = damage.code;
  return error;
}

std::optional<Error> StoredDatabase::moveAside() {
  // Two programs that find the same damage must not set the new file aside as well.
  const FileLock lock(file_);
  if (identityOf(file_) != connectedFile_) return std::nullopt;
  const std::filesystem::path aside = nameBeside(file_, countBeside(file_) + 1);
  std::error_code obstacle;
  std::filesystem::rename(file_, aside, obstacle);
  if (obstacle) return refusal("it is damaged and cannot be set aside: " + obstacle.message());
  // A journal that stayed would be undone in the new file.
  std::filesystem::rename(withSuffix(file_, kJournalSuffix), withSuffix(aside, kJournalSuffix), obstacle);
  return std::nullopt;
}

std::optional<StoredDatabase::FileIdentity> StoredDatabase::identityOf(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity{status.st_dev, status.st_ino};
}

Error StoredDatabase::refusal(std::string_view why) const {
  return failure(schema_.name, file_.string(), why);
}

Error StoredDatabase::busy() const {
  Error error = refusal("another program is using it");
  error.domain = kSqliteErrorDomain;
  error.code = SQLITE_BUSY;
  return error;
}

void StoredDatabase::forgetReplacedFile() {
  if (connection_ && identityOf(file_) != connectedFile_) connection_.reset();
}

void StoredDatabase::report(const std::string& sentence, LogLevel level) {
  const std::lock_guard notes(notesMutex_);
  if (reported_.insert(sentence).second) log_.write({level, kLogCategory, "%@", {sentence}});
}

}  // namespace linewatch
