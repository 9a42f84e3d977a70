// Puts any values into the columns of a state database, as another version or a damaged disk would leave
// them. Everything can still be read or is refused with one line, and what is then confirmed is there.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "choices.h"
#include "machine/terminal_line.h"
#include "platform/log.h"
#include "require.h"
#include "storage/saved_state.h"
#include "storage/stored_analytics.h"
#include "storage/stored_favorites.h"
#include "temporary_folder.h"

namespace {

using namespace linewatch;

/// The log is printed as terminal lines, because its messages may quote what is stored.
class OneLineLog final : public Log {
 public:
  void write(const LogMessage& message) override { requireOneLine(terminalLine(message.text(false))); }
  bool isEnabled(LogLevel) const override { return true; }
};

template <class Result>
void requireReadOrRefused(const Result& result) {
  if (!result) requireOneLine(result.error());
}

std::vector<std::string> namesIn(SqliteDatabase& database, const std::string& query) {
  std::vector<std::string> names;
  require(!database.run(query, {}, [&](const SqliteRow& row) { names.push_back(row.text(0)); }));
  return names;
}

/// A literal of SQL: NULL, an integer, a real number, a text or bytes.
std::string literalIn(Choices& choices) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const int kind = choices.number(0, 4);
  if (kind == 0) return "NULL";
  if (kind == 1) return std::to_string(choices.integer());
  if (kind == 2) return std::to_string(choices.byte()) + ".5e" + std::to_string(choices.byte());
  std::string literal = "X'";
  for (const char character : choices.text(choices.byte())) {
    const auto byte = static_cast<std::uint8_t>(character);
    literal += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  literal += "'";
  return kind == 3 ? "CAST(" + literal + " AS TEXT)" : literal;
}

/// Inserts rows of any values; constraints of the tables may refuse them.
std::optional<Error> fill(SqliteDatabase& database, Choices& choices) {
  static const auto tables =
      namesIn(database,
              "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%' ORDER BY 1");
  while (!choices.isAtEnd()) {
    const std::string& table = tables[choices.byte() % tables.size()];
    std::string values;
    for (std::size_t i = namesIn(database, "SELECT name FROM pragma_table_info('" + table + "')").size();
         i > 0; --i)
      values += literalIn(choices) + (i > 1 ? "," : "");
    (void)database.run("INSERT INTO " + table + " VALUES (" + values + ")");
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryFolder folder;
  static OneLineLog log;
  std::filesystem::remove_all(folder.path() / "state");
  SavedState state(*StateDirectories::under(folder.path() / "state"), log,
                   std::make_shared<GivenPreferences>(Dictionary()));
  Choices choices(data, size);
  require(!state.database()->write([&](SqliteDatabase& database) { return fill(database, choices); }));

  StoredFavorites favorites(state.database());
  requireReadOrRefused(favorites.list());
  requireReadOrRefused(state.feeds().list());
  requireReadOrRefused(storedWidgetSessions(*state.database()));
  requireReadOrRefused(storedUserActions(*state.database()));
  (void)state.recordsAnalytics();

  const StoredFavorite favorite{.feed = "city", .subject = "M1"};
  if (!favorites.add({favorite})) return 0;
  const auto list = favorites.list();
  require(!list ||
          std::ranges::any_of(*list, [&](const StoredFavorite& each) { return each.isSameAs(favorite); }));
  return 0;
}
