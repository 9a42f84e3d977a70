#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "feeds/catalogue/catalogue.h"
#include "feeds/gtfs/csv_table.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/text/ascii.h"
#include "feeds/text/plain_text.h"
#include "feeds/text/single_line.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

/// Far more than the feeds of the world.
constexpr std::size_t kMostFeeds = 100'000;
/// A text with more rows that are no CSV is no spreadsheet.
constexpr std::size_t kMostDamagedRows = 100;

std::vector<std::string> listIn(std::string_view value) {
  std::vector<std::string> items;
  while (!value.empty()) {
    const std::size_t end = std::min(value.find('|'), value.size());
    if (auto item = singleLine(value.substr(0, end)); !item.empty()) items.push_back(std::move(item));
    value.remove_prefix(std::min(end + 1, value.size()));
  }
  return items;
}

std::string httpAddress(std::string_view value) {
  std::string address = singleLine(value);
  return isHttpURL(address) ? address : std::string();
}

std::optional<double> degrees(std::string_view value, double limit) {
  double number = 0;
  const auto [end, trouble] = std::from_chars(value.data(), value.data() + value.size(), number);
  const bool isWhole = trouble == std::errc() && end == value.data() + value.size();
  return isWhole && std::abs(number) <= limit ? std::optional(number) : std::nullopt;
}

CatalogueFeed::Status statusIn(std::string_view value) {
  using enum CatalogueFeed::Status;
  if (value.empty() || value == "active") return active;
  return value == "deprecated" ? deprecated : inactive;
}

/// True for a name that a request can carry, as a header or in the query.
bool isFieldName(std::string_view name) {
  constexpr std::string_view kSigns = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::ranges::all_of(name, [kSigns](char byte) {
    return isAsciiAlphanumeric(byte) || kSigns.find(byte) != std::string_view::npos;
  });
}

/// The columns of the spreadsheet and its rows as feeds.
class Spreadsheet {
 public:
  explicit Spreadsheet(std::string_view csv) : table_(csv, kMostFeeds) {
    for (std::size_t i = 0; i < kNames.size(); ++i) columns_[i] = table_.column(kNames[i]);
  }

  /// The first column that every catalogue has, but this text lacks; null when it has all.
  const char* missingColumn() const {
    const auto missing = std::ranges::find_if(
        kRequired, [this](Column column) { return !table_.has(columns_[static_cast<std::size_t>(column)]); });
    return missing == kRequired.end() ? nullptr : kNames[static_cast<std::size_t>(*missing)];
  }
  CsvTable& table() { return table_; }

  // About the row that the table is at.
  /// True for neither a timetable nor alerts, e.g. for vehicle positions.
  bool isOther() const { return !isTimetable() && !isAlerts(); }
  /// True if it lacks what every feed needs.
  bool isBroken() const { return text(Column::id).empty() || httpAddress(value(Column::url)).empty(); }
  CatalogueFeed feed() const;

 private:
  enum class Column : std::uint8_t {
    id,
    dataType,
    entityType,
    country,
    subdivision,
    municipality,
    provider,
    name,
    timetables,
    url,
    keyKind,
    keyPage,
    keyName,
    copyUrl,
    license,
    south,
    north,
    west,
    east,
    status,
    replacements
  };
  static constexpr std::array kNames = {"id",
                                        "data_type",
                                        "entity_type",
                                        "location.country_code",
                                        "location.subdivision_name",
                                        "location.municipality",
                                        "provider",
                                        "name",
                                        "static_reference",
                                        "urls.direct_download",
                                        "urls.authentication_type",
                                        "urls.authentication_info",
                                        "urls.api_key_parameter_name",
                                        "urls.latest",
                                        "urls.license",
                                        "location.bounding_box.minimum_latitude",
                                        "location.bounding_box.maximum_latitude",
                                        "location.bounding_box.minimum_longitude",
                                        "location.bounding_box.maximum_longitude",
                                        "status",
                                        "redirect.id"};
  static constexpr std::array kRequired = {Column::id, Column::dataType, Column::entityType,
                                           Column::timetables, Column::url};

  std::string_view value(Column column) const {
    return table_.value(columns_[static_cast<std::size_t>(column)]);
  }
  std::string text(Column column) const { return singleLine(value(column)); }
  bool isTimetable() const { return value(Column::dataType) == "gtfs"; }
  bool isAlerts() const {
    const auto entities = listIn(value(Column::entityType));
    return value(Column::dataType) == "gtfs_rt" && std::ranges::find(entities, "sa") != entities.end();
  }
  CatalogueKey key() const;
  std::optional<GeoBox> box() const;

  CsvTable table_;
  std::array<CsvTable::Column, kNames.size()> columns_{};
};

CatalogueKey Spreadsheet::key() const {
  using enum CatalogueKey::Kind;
  const std::string_view kind = value(Column::keyKind);
  if (kind.empty() || kind == "0") return {};
  CatalogueKey key{.kind = other, .page = webAddress(value(Column::keyPage)).value_or("")};
  if ((kind != "1" && kind != "2") || !isFieldName(value(Column::keyName))) return key;
  key.kind = kind == "1" ? queryParameter : header;
  key.name = value(Column::keyName);
  return key;
}

std::optional<GeoBox> Spreadsheet::box() const {
  const auto south = degrees(value(Column::south), 90), north = degrees(value(Column::north), 90);
  const auto west = degrees(value(Column::west), 180), east = degrees(value(Column::east), 180);
  if (!south || !north || !west || !east || *south > *north || *west > *east) return std::nullopt;
  return GeoBox{*south, *north, *west, *east};
}

CatalogueFeed Spreadsheet::feed() const {
  CatalogueFeed feed{.id = text(Column::id),
                     .kind = isAlerts() ? CatalogueFeed::Kind::alerts : CatalogueFeed::Kind::timetable,
                     .status = statusIn(value(Column::status)),
                     .country = text(Column::country),
                     .subdivision = text(Column::subdivision),
                     .municipality = text(Column::municipality),
                     .provider = text(Column::provider),
                     .name = text(Column::name),
                     .url = httpAddress(value(Column::url)),
                     .copyUrl = httpAddress(value(Column::copyUrl)),
                     .license = webAddress(value(Column::license)).value_or(""),
                     .key = key(),
                     .box = box(),
                     .timetables = listIn(value(Column::timetables)),
                     .replacements = listIn(value(Column::replacements))};
  std::ranges::transform(feed.country, feed.country.begin(), asciiCapital);
  return feed;
}

Error noCatalogue(std::string_view why) {
  return failure(FailureCode::malformed, "", "", "it is no catalogue of feeds: " + std::string(why));
}

}  // namespace

Outcome<SharedCatalogue> readCatalogue(std::string_view csv) {
  Spreadsheet sheet(csv);
  CsvTable& table = sheet.table();
  if (const char* const missing = sheet.missingColumn())
    return noCatalogue("its first line has no column " + std::string(missing));
  std::vector<SharedCatalogueFeed> feeds;
  std::size_t skipped = 0, damaged = 0;
  do {
    while (table.next()) {
      if (sheet.isOther()) continue;
      if (sheet.isBroken()) {
        ++skipped;
      } else {
        feeds.push_back(std::make_shared<const CatalogueFeed>(sheet.feed()));
      }
    }
    if (table.fault() && ++damaged > kMostDamagedRows)
      return noCatalogue("line " + std::to_string(table.fault()->line) + ": " + table.fault()->why);
  } while (table.skipFault());
  if (feeds.empty()) return noCatalogue("it has no feed with alerts or a timetable");
  return std::make_shared<const Catalogue>(std::move(feeds), skipped + damaged);
}

}  // namespace linewatch
