#include "feeds/gtfs/gtfs_reader.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "feeds/gtfs/colors.h"
#include "feeds/gtfs/csv_table.h"
#include "feeds/text/ascii.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

using Contents = LineIndex::Contents;

bool isTagCharacter(char byte) { return isAsciiAlphanumeric(byte) || byte == '-'; }

/// Empty when the text is no tag, and for "mul", which means several languages.
std::string languageTag(std::string_view text) {
  std::string tag(text);
  std::replace(tag.begin(), tag.end(), '_', '-');
  const bool isTag =
      tag.size() >= 2 && tag.size() <= 35 && std::all_of(tag.begin(), tag.end(), isTagCharacter);
  return isTag && tag != "mul" ? tag : std::string();
}

std::optional<std::int32_t> number(std::string_view text) {
  std::int32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, trouble] = std::from_chars(text.data(), end, value);
  return trouble == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

void readAgencies(CsvTable& table, Contents& contents) {
  const auto id = table.column("agency_id");
  const auto name = table.column("agency_name");
  const auto language = table.column("agency_lang");
  while (table.next()) {
    contents.agencies.push_back({.id = std::string(table.value(id)),
                                 .name = singleLine(table.value(name)),
                                 .language = languageTag(table.value(language))});
  }
}

/// Reads the language in feed_info.txt. The agencies' language is used only without it.
void readLanguage(CsvTable& table, Contents& contents) {
  const auto language = table.column("feed_lang");
  if (table.next()) contents.language = languageTag(table.value(language));
}

/// The indexes of agencies by id. In a feed with one agency, routes without an agency id belong to it.
class AgencyPlaces {
 public:
  explicit AgencyPlaces(const std::vector<FeedAgency>& agencies) {
    for (std::uint32_t place = 0; place < agencies.size(); ++place)
      places_.emplace(agencies[place].id, place);
    if (agencies.size() == 1) places_.emplace("", 0);
  }

  std::optional<std::uint32_t> operator[](std::string_view id) const {
    const auto place = places_.find(id);
    return place == places_.end() ? std::nullopt : std::optional(place->second);
  }

 private:
  std::unordered_map<std::string_view, std::uint32_t> places_;
};

struct RouteColumns {
  explicit RouteColumns(const CsvTable& table)
      : id(table.column("route_id")),
        agency(table.column("agency_id")),
        shortName(table.column("route_short_name")),
        longName(table.column("route_long_name")),
        type(table.column("route_type")),
        color(table.column("route_color")),
        textColor(table.column("route_text_color")) {}

  CsvTable::Column id, agency, shortName, longName, type, color, textColor;
};

FeedRoute routeOfRow(const CsvTable& table, const RouteColumns& columns, const AgencyPlaces& agencies) {
  FeedRoute route{.id = std::string(table.value(columns.id)),
                  .shortName = singleLine(table.value(columns.shortName)),
                  .longName = singleLine(table.value(columns.longName)),
                  .agency = agencies[table.value(columns.agency)],
                  .type = number(table.value(columns.type)),
                  .color = normalizedColor(table.value(columns.color)),
                  .textColor = normalizedColor(table.value(columns.textColor))};
  // A route without names is shown by its id.
  if (route.shortName.empty() && route.longName.empty()) route.longName = singleLine(route.id);
  return route;
}

void readRoutes(CsvTable& table, Contents& contents) {
  const RouteColumns columns(table);
  const AgencyPlaces agencies(contents.agencies);
  std::unordered_set<std::string> known;
  while (table.next()) {
    const std::string_view id = table.value(columns.id);
    if (id.empty() || !known.emplace(id).second) continue;
    contents.routes.push_back(routeOfRow(table, columns, agencies));
  }
}

struct TableReading {
  std::string_view file;
  /// A required column; absent for an optional table.
  std::optional<std::string_view> neededColumn;
  void (*read)(CsvTable&, Contents&);
};

// In this order, because routes refer to agencies.
constexpr TableReading kTables[] = {
    {"agency.txt", std::nullopt, readAgencies},
    {"feed_info.txt", std::nullopt, readLanguage},
    {"routes.txt", "route_id", readRoutes},
};

std::optional<CsvReader::Fault> readTable(const TableReading& reading, CsvTable& table, Contents& contents) {
  if (table.fault()) return table.fault();
  if (reading.neededColumn && !table.has(table.column(*reading.neededColumn))) {
    return CsvReader::Fault{table.line(), "there is no column " + std::string(*reading.neededColumn)};
  }
  reading.read(table, contents);
  return table.fault();
}

std::optional<Error> readFrom(GtfsSource& source, const TableReading& reading, Contents& contents) {
  Outcome<std::optional<std::string>> bytes = source.file(reading.file);
  if (!bytes) return bytes.error();
  if (!*bytes && reading.neededColumn)
    return failure(FailureCode::notFound, reading.file, "", "the feed has no such file");
  if (!*bytes) return std::nullopt;
  const std::string text = withValidUtf8(std::move(**bytes));
  CsvTable table(text);
  const std::optional<CsvReader::Fault> fault = readTable(reading, table, contents);
  if (!fault) return std::nullopt;
  return failure(FailureCode::malformed, std::string(reading.file) + " line " + std::to_string(fault->line),
                 "", fault->why);
}

const std::string& languageOfAgencies(const Contents& contents) {
  for (const FeedAgency& agency : contents.agencies) {
    if (!agency.language.empty()) return agency.language;
  }
  return contents.language;
}

}  // namespace

Outcome<Contents> readGtfs(GtfsSource& source, std::string feedName) {
  Contents contents{.feedName = std::move(feedName), .language = {}, .agencies = {}, .routes = {}};
  for (const TableReading& reading : kTables) {
    if (std::optional<Error> error = readFrom(source, reading, contents)) return *std::move(error);
  }
  if (contents.language.empty()) contents.language = languageOfAgencies(contents);
  return contents;
}

}  // namespace linewatch
