// Reads any bytes as the tables of a timetable feed, as a cached line index, or as a user's query for lines.
// The first byte chooses.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "feeds/gtfs/gtfs_reader.h"
#include "feeds/gtfs/line_index_encoding.h"
#include "feeds/gtfs/line_lookup.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/text/utf8.h"
#include "require.h"

namespace linewatch {
namespace {

/// Two tables in one text, separated by a NUL.
class Tables final : public GtfsSource {
 public:
  explicit Tables(std::string_view text)
      : routes_(text.substr(0, text.find('\0'))),
        agencies_(text.substr(std::min(routes_.size() + 1, text.size()))) {}

  Outcome<std::optional<std::string>> file(std::string_view name) override {
    if (name == "routes.txt") return std::optional(routes_);
    if (name == "agency.txt") return std::optional(agencies_);
    return std::optional<std::string>();
  }

 private:
  std::string routes_;
  std::string agencies_;
};

/// Checks that hold for the lines of every feed.
void use(const LineIndex::Contents& contents) {
  const SharedLineIndex index = std::make_shared<const LineIndex>(contents);
  LineRecords records(index);
  for (std::size_t route = 0; route < index->routes().size(); ++route) {
    const auto& line = records.lineFieldsOfRoute(route);
    require(line->muid == index->muidOfRoute(route));
    require(!index->routes()[route].agency || line->system != nullptr);
  }
  if (index->routes().empty()) return;
  const FeedRoute& first = index->routes().front();
  require(index->routeWithId(first.id) == 0U);
  require(findLine(std::span(&index, 1), first.id).succeeded());
  require(!searchLines(std::span(&index, 1), index->nameOfRoute(0)).empty());
}

void readTables(std::string_view text) {
  Tables tables(text);
  const Outcome<LineIndex::Contents> contents = readGtfs(tables, "feed");
  if (!contents) return;
  for (const FeedRoute& route : contents->routes)
    require(isValidUtf8(route.id + route.shortName + route.longName));
  require(*decodeLineIndex(encodeLineIndex(*contents)) == *contents);
  use(*contents);
}

void decode(std::span<const std::uint8_t> bytes) {
  const Outcome<LineIndex::Contents> contents = decodeLineIndex(bytes);
  if (!contents) return;
  require(std::ranges::equal(encodeLineIndex(*contents), bytes));
  use(*contents);
}

void ask(std::string_view query) {
  static const SharedLineIndex city = std::make_shared<const LineIndex>(
      LineIndex::Contents{.feedName = "city",
                          .language = "",
                          .agencies = {{"A", "Écluse & Cie", ""}},
                          .routes = {{"1", "10", "Łódź – Zoo", 0, 3, "", ""},
                                     {"2", "", "Red Line", 0, 1, "", ""},
                                     {"3", "10", "", {}, {}, "", ""}}});
  (void)searchLines(std::span(&city, 1), query);
  (void)findLine(std::span(&city, 1), query);
}

}  // namespace
}  // namespace linewatch

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  if (size == 0) return 0;
  const std::span<const std::uint8_t> bytes(data + 1, size - 1);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  switch (data[0] % 3) {
    case 0:
      readTables(text);
      break;
    case 1:
      decode(bytes);
      break;
    default:
      ask(text);
  }
  return 0;
}
