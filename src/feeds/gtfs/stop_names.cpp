#include "feeds/gtfs/stop_names.h"

#include <algorithm>
#include <utility>

#include "feeds/gtfs/csv_table.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

/// Ten times the stops of a large country.
constexpr std::size_t kMostStops = 5'000'000;
constexpr std::size_t kPageSize = 16384;

/// A row of stops.txt as a line of a page.
struct StopLine {
  std::string id;
  std::string rest;
};

/// Ids with tabs or line ends do not fit into a page. No known feed has such.
bool fitsIntoPage(std::string_view id) {
  return !id.empty() && id.find_first_of("\t\n\r") == std::string_view::npos;
}

std::vector<StopLine> stopLinesOf(CsvTable& table) {
  const auto id = table.column("stop_id");
  const auto name = table.column("stop_name");
  const auto station = table.column("parent_station");
  std::vector<StopLine> lines;
  while (table.next()) {
    if (!fitsIntoPage(table.value(id))) continue;
    const std::string_view parent = table.value(station);
    lines.push_back(
        {std::string(table.value(id)),
         singleLine(table.value(name)) + '\t' + std::string(fitsIntoPage(parent) ? parent : "") + '\n'});
  }
  std::ranges::stable_sort(lines, {}, &StopLine::id);
  // Clang 14 cannot compile std::ranges::unique of this standard library.
  const auto isSameStop = [](const StopLine& one, const StopLine& other) { return one.id == other.id; };
  lines.erase(std::unique(lines.begin(), lines.end(), isSameStop), lines.end());
  return lines;
}

std::vector<StopPage> pagesOf(const std::vector<StopLine>& lines) {
  std::vector<StopPage> pages;
  for (const StopLine& line : lines) {
    if (pages.empty()) pages.push_back({"", ""});
    if (pages.back().text.size() > kPageSize) pages.push_back({line.id, ""});
    pages.back().text.append(line.id).append("\t").append(line.rest);
  }
  return pages;
}

/// The text up to the separator, which is dropped too.
std::string_view takeUpTo(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return taken;
}

std::optional<StopNames::Stop> stopIn(std::string_view page, std::string_view id) {
  while (!page.empty()) {
    std::string_view line = takeUpTo(page, '\n');
    if (takeUpTo(line, '\t') != id) continue;
    const std::string_view name = takeUpTo(line, '\t');
    return StopNames::Stop{std::string(name), std::string(line)};
  }
  return std::nullopt;
}

}  // namespace

Outcome<std::vector<StopPage>> readStopPages(GtfsSource& source) {
  Outcome<std::optional<std::string>> bytes = source.file(kStopsTable);
  if (!bytes) return bytes.error();
  if (!*bytes) return std::vector<StopPage>();
  const std::string text = withValidUtf8(std::move(**bytes));
  CsvTable table(text, kMostStops);
  const std::vector<StopLine> lines = stopLinesOf(table);
  if (!table.fault()) return pagesOf(lines);
  return failure(FailureCode::malformed,
                 std::string(kStopsTable) + " line " + std::to_string(table.fault()->line), "",
                 table.fault()->why);
}

const StopPage* pageWithStop(const std::vector<StopPage>& pages, std::string_view id) {
  const auto after = std::ranges::upper_bound(pages, id, {}, &StopPage::firstId);
  return after == pages.begin() ? nullptr : &*std::prev(after);
}

const std::optional<StopNames::Stop>& StopNames::find(std::string_view id) {
  const auto known = found_.find(id);
  if (known != found_.end()) return known->second;
  std::optional<Stop> stop = lookUp(id);
  if (stop && stop->name.empty() && !stop->station.empty()) {
    if (const auto station = lookUp(stop->station)) stop->name = station->name;
  }
  return found_.emplace(std::string(id), std::move(stop)).first->second;
}

std::optional<StopNames::Stop> StopNames::lookUp(std::string_view id) const {
  for (const PageSource& source : sources_) {
    const std::optional<std::string> page = source(id);
    if (!page) continue;
    if (auto stop = stopIn(*page, id)) return stop;
  }
  return std::nullopt;
}

}  // namespace linewatch
