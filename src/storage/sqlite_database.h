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

#include "shared/outcome.h"
#include "shared/value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace linewatch {

/// The domain of errors that SQLite reports; their code is SQLite's extended result code.
inline constexpr std::string_view kSqliteErrorDomain = "SQLite";

/// Whether the error says that a file is damaged, or is no database at all.
bool isDamage(const Error& error);

/// Whether the error says that another program holds the file.
bool isBusy(const Error& error);

/// What stands for a `?` of a statement: nothing, a number, a text or bytes. A text and bytes are only looked
/// at and must live until the statement has run.
using SqliteParameter =
    std::variant<std::monostate, std::int64_t, double, std::string_view, std::span<const std::uint8_t>>;

/// A text that may be absent, as a parameter.
inline SqliteParameter parameterOf(const std::optional<std::string>& text) {
  return text ? SqliteParameter(std::string_view(*text)) : SqliteParameter();
}

/// The row that a statement stands at. Columns count from 0; a column of another type is converted as SQLite
/// does. Valid within the row handler only.
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

/// A connection to a database file. One thread at a time.
class SqliteDatabase {
 public:
  enum class Mode { mustExist, createIfAbsent };
  using RowHandler = std::function<void(const SqliteRow&)>;

  /// `name` says in errors what the database is, e.g. "state database". A file that may only be read is
  /// opened for reading. A statement waits up to `busyTimeout` for another program to finish.
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
  /// The row id that the last INSERT gave.
  std::int64_t lastRowId() const;

 private:
  struct Close {
    void operator()(sqlite3* connection) const;
  };

  SqliteDatabase(std::string place, sqlite3* connection)
      : place_(std::move(place)), connection_(connection) {}
  Error errorFor(int result) const;

  /// "state database: /home/…/linewatch.sqlite".
  std::string place_;
  std::unique_ptr<sqlite3, Close> connection_;
};

}  // namespace linewatch
