#include "storage/sqlite_database.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr int kPrimaryCodeMask = 0xFF;

struct Finalize {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

struct Reason {
  /// SQLite's primary result code.
  int result;
  FailureCode code;
  /// For the user.
  const char* sentence;
};
constexpr std::array kReasons = {
    Reason{SQLITE_BUSY, FailureCode::busy, "another program is using it"},
    Reason{SQLITE_LOCKED, FailureCode::busy, "another program is using it"},
    Reason{SQLITE_READONLY, FailureCode::readOnly, "it may only be read"},
    Reason{SQLITE_PERM, FailureCode::readOnly, "it may only be read"},
    Reason{SQLITE_CANTOPEN, FailureCode::unreadable,
           "it cannot be opened, or a file beside it cannot be made"},
    Reason{SQLITE_FULL, FailureCode::full, "the disk is full"},
    Reason{SQLITE_IOERR, FailureCode::other, "it cannot be read or written"},
    Reason{SQLITE_NOTADB, FailureCode::damaged, "it is damaged, or is no database"},
    Reason{SQLITE_CORRUPT, FailureCode::damaged, "it is damaged"}};

/// The errno that caused a result, e.g. EACCES; 0 when it would not help the user.
int systemErrorBehind(sqlite3* connection, int result) {
  const int primary = result & kPrimaryCodeMask;
  const bool isOfSystem = primary == SQLITE_CANTOPEN || primary == SQLITE_IOERR;
  return connection != nullptr && isOfSystem ? sqlite3_system_errno(connection) : 0;
}

/// The file's URI for SQLite, with ? and # escaped.
std::string immutableAddressOf(const std::filesystem::path& file) {
  std::string address = "file:";
  for (const char c : file.string()) {
    if (c == '%') {
      address += "%25";
    } else if (c == '?') {
      address += "%3f";
    } else if (c == '#') {
      address += "%23";
    } else {
      address += c;
    }
  }
  return address + "?immutable=1";
}

/// Binds a parameter's value at its place.
struct Bind {
  sqlite3_stmt* statement;
  int place;

  int operator()(std::monostate) const { return sqlite3_bind_null(statement, place); }
  int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, place, value); }
  int operator()(double value) const { return sqlite3_bind_double(statement, place, value); }
  int operator()(std::string_view value) const {
    // A null pointer would bind no text at all instead of an empty one.
    const char* text = value.data() != nullptr ? value.data() : "";
    return sqlite3_bind_text64(statement, place, text, value.size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  int operator()(std::span<const std::uint8_t> value) const {
    const void* bytes = value.data() != nullptr ? static_cast<const void*>(value.data()) : "";
    return sqlite3_bind_blob64(statement, place, bytes, value.size(), SQLITE_STATIC);
  }
};

}  // namespace

bool SqliteRow::isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
std::int64_t SqliteRow::integer(int column) const { return sqlite3_column_int64(statement_, column); }
double SqliteRow::real(int column) const { return sqlite3_column_double(statement_, column); }

std::string SqliteRow::text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
  return text != nullptr ? std::string(text, size) : std::string();
}

std::optional<std::string> SqliteRow::optionalText(int column) const {
  return isNull(column) ? std::nullopt : std::optional(text(column));
}

Bytes SqliteRow::bytes(int column) const {
  const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
  return bytes != nullptr ? Bytes(bytes, bytes + size) : Bytes();
}

void SqliteDatabase::Close::operator()(sqlite3* connection) const { sqlite3_close(connection); }

Outcome<SqliteDatabase> SqliteDatabase::open(std::string_view name, const std::filesystem::path& file,
                                             Mode mode, std::chrono::milliseconds busyTimeout) {
  const bool isImmutable = mode == Mode::immutable;
  const int access = isImmutable ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI : SQLITE_OPEN_READWRITE;
  const std::string location = isImmutable ? immutableAddressOf(file) : file.string();
  sqlite3* connection = nullptr;
  const int result = sqlite3_open_v2(location.c_str(), &connection,
                                     access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  SqliteDatabase database(std::string(name) + ": " + file.string(), connection);
  if (result != SQLITE_OK) return database.errorFor(result);
  database.setBusyTimeout(busyTimeout);
  return database;
}

void SqliteDatabase::setBusyTimeout(std::chrono::milliseconds busyTimeout) {
  sqlite3_busy_timeout(connection_.get(), static_cast<int>(busyTimeout.count()));
}

std::optional<Error> SqliteDatabase::run(std::string_view statement,
                                         std::initializer_list<SqliteParameter> parameters,
                                         const RowHandler& onRow) {
  sqlite3_stmt* prepared = nullptr;
  int result = sqlite3_prepare_v2(connection_.get(), statement.data(), static_cast<int>(statement.size()),
                                  &prepared, nullptr);
  const Statement owned(prepared);
  int place = 0;
  for (const SqliteParameter& parameter : parameters) {
    if (result == SQLITE_OK) result = std::visit(Bind{prepared, ++place}, parameter);
  }
  if (result != SQLITE_OK) return errorFor(result);
  while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
    if (onRow) onRow(SqliteRow(prepared));
  }
  return result == SQLITE_DONE ? std::nullopt : std::optional(errorFor(result));
}

std::optional<Error> SqliteDatabase::runScript(std::string_view statements) {
  const int result =
      sqlite3_exec(connection_.get(), std::string(statements).c_str(), nullptr, nullptr, nullptr);
  return result == SQLITE_OK ? std::nullopt : std::optional(errorFor(result));
}

std::int64_t SqliteDatabase::changedRowCount() const { return sqlite3_changes64(connection_.get()); }
std::int64_t SqliteDatabase::lastRowId() const { return sqlite3_last_insert_rowid(connection_.get()); }

Bytes SqliteDatabase::bytes() const {
  sqlite3_int64 size = 0;
  unsigned char* const bytes = sqlite3_serialize(connection_.get(), "main", &size, 0);
  Bytes copy = bytes != nullptr ? Bytes(bytes, bytes + size) : Bytes();
  sqlite3_free(bytes);
  return copy;
}

Error SqliteDatabase::errorFor(int result) const {
  const auto* const reason = std::ranges::find(kReasons, result & kPrimaryCodeMask, &Reason::result);
  if (reason == kReasons.end()) {
    return failure(place_, connection_ ? sqlite3_errmsg(connection_.get()) : sqlite3_errstr(result), "");
  }
  const int number = systemErrorBehind(connection_.get(), result);
  return failure(reason->code, place_, reason->sentence,
                 number == 0 ? "" : std::generic_category().message(number));
}

}  // namespace linewatch
