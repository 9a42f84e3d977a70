#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "shared/failure.h"
#include "shared/outcome.h"
#include "shared/value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace linewatch {

/// Whether a file is damaged, or is no database at all.
inline bool isDamage(const Error& error) { return failureCodeOf(error) == FailureCode::damaged; }

/// Whether another program uses the file, so that the call may work later.
inline bool isBusy(const Error& error) { return failureCodeOf(error) == FailureCode::busy; }

/// A value for a `?` of a statement; monostate for NULL. Texts and bytes are not copied and must live until
/// the statement has run.
using SqliteParameter =
    std::variant<std::monostate, std::int64_t, double, std::string_view, std::span<const std::uint8_t>>;

/// A text that may be absent, as a parameter.
inline SqliteParameter parameterOf(const std::optional<std::string>& text) {
  return text ? SqliteParameter(std::string_view(*text)) : SqliteParameter();
}

/// The current row of a statement. Columns count from 0; a column of another type is converted by SQLite's
/// rules. Valid within the row handler only.
class SqliteRow {
 public:
  explicit SqliteRow(sqlite3_stmt* statement) : statement_(statement) {}

  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  double real(int column) const;
  std::string text(int column) const;
  std::optional<std::string> optionalText(int column) const;
  Bytes bytes(int column) const;

 private:
  sqlite3_stmt* statement_;
};

/// A connection to a database. One thread at a time.
///
/// Errors have the codes `busy`, `damaged`, `readOnly`, `full`, `unreadable` (it cannot be opened) and
/// `other`.
class SqliteDatabase {
 public:
  enum class Mode {
    /// A file that may only be read is opened for reading.
    readWrite,
    /// Only for a file that nothing can change meanwhile: neither locks it nor looks for a log beside it.
    immutable
  };
  using RowHandler = std::function<void(const SqliteRow&)>;

  /// The file must exist; ":memory:" is a new database in memory. `name` says in errors which database it is,
  /// e.g. "state database". A statement waits up to `busyTimeout` for another program to finish.
  static Outcome<SqliteDatabase> open(std::string_view name, const std::filesystem::path& file, Mode mode,
                                      std::chrono::milliseconds busyTimeout);

  /// How long a statement waits from now on.
  void setBusyTimeout(std::chrono::milliseconds busyTimeout);

  /// Runs one statement with a parameter for each of its `?` and hands each row to `onRow`.
  std::optional<Error> run(std::string_view statement, std::initializer_list<SqliteParameter> parameters = {},
                           const RowHandler& onRow = {});
  /// Runs statements without parameters and rows.
  std::optional<Error> runScript(std::string_view statements);

  /// How many rows the last INSERT, UPDATE or DELETE changed.
  std::int64_t changedRowCount() const;
  /// The row id of the row that the last INSERT added.
  std::int64_t lastRowId() const;
  /// The bytes of the database as a file.
  Bytes bytes() const;

 private:
  struct Close {
    void operator()(sqlite3* connection) const;
  };

  SqliteDatabase(std::string place, sqlite3* connection)
      : place_(std::move(place)), connection_(connection) {}
  Error errorFor(int result) const;

  /// E.g. "state database: /home/ann/linewatch.sqlite".
  std::string place_;
  std::unique_ptr<sqlite3, Close> connection_;
};

}  // namespace linewatch
