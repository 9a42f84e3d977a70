#include "storage/database_connection.h"

#include <string>
#include <utility>

#include "shared/failure.h"

namespace linewatch {

namespace {

std::optional<Error> runMigrations(SqliteDatabase& database, const DatabaseSchema& schema,
                                   std::int64_t version) {
  for (const std::string_view step : schema.migrations.subspan(static_cast<std::size_t>(version))) {
    if (auto error = database.runScript(step)) return error;
  }
  return database.runScript("PRAGMA application_id = " + std::to_string(schema.applicationId) +
                            "; PRAGMA user_version = " + std::to_string(schema.version()));
}

/// The bytes of a file with the schema's tables and nothing in them.
Outcome<Bytes> emptyDatabase(const DatabaseSchema& schema) {
  auto database = SqliteDatabase::open(schema.name, ":memory:", SqliteDatabase::Mode::readWrite, {});
  if (!database) return database.error();
  if (auto error = runMigrations(*database, schema, 0)) return *std::move(error);
  return database->bytes();
}

}  // namespace

std::optional<Error> DatabaseConnection::read(const Operation& operation) {
  return attempt([&]() -> std::optional<Error> {
    if (auto error = openForReading()) return error;
    return connection_ ? operation(*connection_) : std::nullopt;
  });
}

std::optional<Error> DatabaseConnection::write(const Operation& operation) {
  auto error = commitIn(operation);
  // Another program may have moved the file away meanwhile. A commit to it is not in the new file.
  if (!error && isReplaced()) error = commitIn(operation);
  if (!error) file_.touchLog();
  return error;
}

std::optional<Error> DatabaseConnection::commitIn(const Operation& operation) {
  return attempt([&]() -> std::optional<Error> {
    if (auto error = openForWriting()) return error;
    return inTransaction(operation);
  });
}

void DatabaseConnection::prepareToWrite() {
  if (!file_.identity()) return;
  // The next write fails with the same error and reports it.
  static_cast<void>(attempt([this] { return openForWriting(); }));
}

void DatabaseConnection::close() {
  // A file with a log cannot be read in a read-only folder. This fails while other programs use the file,
  // which does no harm.
  const bool mayHaveLog = file_.hasLog() || (isForWriting_ && options_.usesLog);
  if (connection_ && !isReplaced() && mayHaveLog) {
    connection_->setBusyTimeout({});
    static_cast<void>(connection_->run("PRAGMA journal_mode = DELETE"));
  }
  drop();
}

void DatabaseConnection::drop() {
  connection_.reset();
  isForWriting_ = false;
}

std::optional<Error> DatabaseConnection::attempt(const std::function<std::optional<Error>()>& action) {
  if (connection_ && isReplaced()) drop();
  if (connection_) connection_->setBusyTimeout(busyTimeout());
  auto error = action();
  wasBusy_ = error && isBusy(*error);
  return error && isDamage(*error) ? setAside(*error) : error;
}

// ---- Opening ----

std::optional<Error> DatabaseConnection::openForReading() {
  if (connection_ || file_.isKnownAbsent()) return std::nullopt;
  if (auto error = connect(SqliteDatabase::Mode::readWrite)) return error;
  auto error = checkAndMigrate();
  if (error && needsLogThatCannotBeMade(*error)) {
    error = connect(SqliteDatabase::Mode::immutable);
    if (!error) error = checkAndMigrate();
  }
  if (error) connection_.reset();
  return error;
}

/// A killed program can leave a file that needs a log in a folder where none can be made. No program can be
/// writing there then.
bool DatabaseConnection::needsLogThatCannotBeMade(const Error& error) const {
  const FailureCode code = failureCodeOf(error);
  return (code == FailureCode::unreadable || code == FailureCode::readOnly) && !file_.hasLog();
}

std::optional<Error> DatabaseConnection::openForWriting() {
  if (isForWriting_) return std::nullopt;
  connection_.reset();
  if (auto error = makeFile()) return error;
  file_.restrictToOwner();
  if (auto error = connect(SqliteDatabase::Mode::readWrite)) return error;
  auto error = checkAndMigrate();
  // Another program may prevent the log. Everything works without it, only slower.
  if (!error && options_.usesLog) static_cast<void>(connection_->run("PRAGMA journal_mode = WAL"));
  if (!error) error = connection_->runScript("PRAGMA synchronous = " + std::string(schema_.synchronous));
  if (error) connection_.reset();
  isForWriting_ = !error;
  return error;
}

std::optional<Error> DatabaseConnection::makeFile() {
  if (const auto obstacle = file_.makeFolder()) {
    return failure(failureCodeOf(obstacle), schema_.name, file_.path().parent_path().string(),
                   "the folder cannot be made: " + obstacle.message());
  }
  if (!file_.isKnownAbsent()) return std::nullopt;
  const auto bytes = emptyDatabase(schema_);
  if (!bytes) return bytes.error();
  const auto obstacle = file_.create(*bytes);
  if (!obstacle) return std::nullopt;
  return refusal(failureCodeOf(obstacle), "it cannot be made: " + obstacle.message());
}

std::optional<Error> DatabaseConnection::connect(SqliteDatabase::Mode mode) {
  auto opened = SqliteDatabase::open(schema_.name, file_.path(), mode, busyTimeout());
  if (!opened) return opened.error();
  connection_.emplace(std::move(*opened));
  connectedFile_ = file_.identity();
  if (!options_.maximumPageCount) return std::nullopt;
  return connection_->run("PRAGMA max_page_count = " + std::to_string(*options_.maximumPageCount));
}

std::optional<Error> DatabaseConnection::checkAndMigrate() {
  const auto version = readVersion();
  if (!version) return version.error();
  if (*version == schema_.version()) return std::nullopt;
  return inTransaction([this](SqliteDatabase& database) -> std::optional<Error> {
    // Another program may have migrated the file in the meantime.
    const auto now = readVersion();
    return now ? runMigrations(database, schema_, *now) : now.error();
  });
}

Outcome<std::int64_t> DatabaseConnection::readVersion() {
  std::int64_t version = 0;
  std::int64_t applicationId = 0;
  // One statement, so that both values are from the same moment.
  const auto error =
      connection_->run("SELECT user_version, application_id FROM pragma_user_version, pragma_application_id",
                       {}, [&](const SqliteRow& row) {
                         version = row.integer(0);
                         applicationId = row.integer(1);
                       });
  if (error) return *error;
  // SQLite treats an empty file as a new database. Here it is damage, because a new file appears complete.
  if (applicationId == 0 && file_.hasNoBytes()) return refusal(FailureCode::damaged, "it is empty");
  if (applicationId != schema_.applicationId)
    return refusal(FailureCode::unsupported, "another program's database stands in its place");
  if (version > schema_.version())
    return refusal(FailureCode::unsupported, "a newer version of LineWatch has written it");
  return version;
}

std::optional<Error> DatabaseConnection::inTransaction(const Operation& operation) {
  auto error = connection_->run("BEGIN IMMEDIATE");
  if (error) return error;
  error = operation(*connection_);
  if (!error) error = connection_->run("COMMIT");
  // After some failures SQLite has rolled back by itself, and this fails.
  if (error) static_cast<void>(connection_->run("ROLLBACK"));
  return error;
}

// ---- Damage ----

Error DatabaseConnection::setAside(const Error& damage) {
  drop();
  if (const auto obstacle = file_.setAside(connectedFile_)) {
    return refusal(failureCodeOf(obstacle), "it is damaged and cannot be set aside: " + obstacle.message());
  }
  return lossOf(file_, schema_).value_or(damage);
}

std::optional<Error> lossOf(const DatabaseFile& file, const DatabaseSchema& schema) {
  const auto aside = file.lastSetAside();
  if (!aside) return std::nullopt;
  const Error loss =
      failure(FailureCode::damaged, file.path().string(),
              "it was damaged, and is set aside as " + aside->filename().string(), schema.remedy);
  return within(schema.name, loss);
}

Error DatabaseConnection::refusal(FailureCode code, std::string_view why) const {
  return failure(code, schema_.name, file_.path().string(), why);
}

}  // namespace linewatch
