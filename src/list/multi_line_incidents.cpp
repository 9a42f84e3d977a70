#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tsl/robin_set.h>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

/// The line's name, or its system's name when the line has none; empty when both lack a name.
std::string_view nameOfLineOrSystem(const TransitLineItem& line) {
  if (const std::string& name = line.name(); !name.empty()) return name;
  return line.system() ? std::string_view(line.system()->name) : std::string_view();
}

/// The distinct names of the lines, in the order of the lines. Lines without a name are skipped.
std::vector<std::string_view> distinctNames(LineSpan lines) {
  std::vector<std::string_view> names;
  tsl::robin_set<std::string_view> known;
  known.reserve(lines.size());
  for (const TransitLineItem* line : lines) {
    const std::string_view name = nameOfLineOrSystem(*line);
    if (!name.empty() && known.insert(name).second) names.push_back(name);
  }
  return names;
}

/// The first argument of a list format: all names but the last, joined with commas. There are at least two
/// names.
std::string allButLast(std::span<const std::string_view> names) {
  if (names.size() == 2) return std::string(names.front());
  return platform().localization().joinCommaDelimited(names.first(names.size() - 1));
}

/// The artwork that the systems of all lines share; null when there is no such artwork. Lines at the start
/// whose systems have no artwork are skipped, but after the first artwork a line without one counts as
/// different.
SharedArtwork commonSystemArtwork(LineSpan lines) {
  SharedArtwork common;
  for (const TransitLineItem* line : lines) {
    const SharedArtwork& artwork = systemArtworkOfLine(*line);
    if (!common) {
      common = artwork;
    } else if (!TransitArtworkDataSourceIsEqual(artwork.get(), common.get())) {
      return nullptr;
    }
  }
  return common;
}

/// For each row, the index of the first row that is equal to it.
using FirstRows = TransitItemMap<std::size_t>;

bool affectsSeveralLines(const ItemToLinesMap::value_type& entry) { return entry.second.hasSeveral(); }

}  // namespace

void RVTransitIncidentsDataSourceBuilder::_updateItemsAffectingSeveralLines(
    TransitItems& items, ItemToLinesMap& itemToLinesMap) const {
  if (std::ranges::none_of(itemToLinesMap, affectsSeveralLines)) return;
  // The distinct rows in order, taken before the loop below changes the map.
  TransitItems distinctItems;
  FirstRows firstRows;
  for (std::size_t row = 0; row < items.size(); ++row) {
    if (firstRows.try_emplace(items[row].get(), row).second) distinctItems.push_back(items[row]);
  }
  for (const SharedTransitItem& oldItem : distinctItems) {
    const auto entry = itemToLinesMap.find(oldItem.get());
    if (entry == itemToLinesMap.end() || !affectsSeveralLines(*entry)) continue;
    LinesOfRow lines = std::move(entry.value());
    itemToLinesMap.erase(entry);
    const SharedTransitItem newItem = itemWithLineNames(*oldItem, lines.all());
    const std::size_t row = firstRows.at(oldItem.get());
    items[row] = newItem;
    itemToLinesMap.insert_or_assign(newItem.get(), std::move(lines));
    // The new row may be equal to another row; the lower index counts.
    const auto first = firstRows.try_emplace(newItem.get(), row).first;
    first.value() = std::min(first.value(), row);
  }
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::itemWithLineNames(const RVTransitItem& item,
                                                                         LineSpan lines) const {
  return std::make_shared<const RVTransitItem>(item.sharedPrimaryText(),
                                               _prependLineNames(lines, item.secondaryText()),
                                               artworkOfLines(lines), item.displayArtwork(), item.openable());
}

std::shared_ptr<const RVConfiguredArtwork> RVTransitIncidentsDataSourceBuilder::artworkOfLines(
    LineSpan lines) const {
  SharedArtwork common = commonSystemArtwork(lines);
  if (!common) return imageArtwork("WidgetGenericTransit", kFaintAlpha);
  return lineArtwork(std::move(common), artworkCache_);
}

OptionalText RVTransitIncidentsDataSourceBuilder::_prependLineNames(LineSpan lines,
                                                                    const OptionalText& toText) {
  const auto names = distinctNames(lines);
  if (names.empty()) return toText;
  const bool hasText = toText && !toText->empty();
  const bool hasTwoNames = names.size() == 2;
  const std::string last(names.back());
  if (names.size() == 1)
    return hasText ? widgetText("LineWatch_Single_Line_Prepended_Incident_Text", {last, *toText}) : last;
  if (hasText)
    return widgetText(hasTwoNames ? "LineWatch_2_Lines_Prepended_Incident_Text"
                                  : "LineWatch_N_Lines_Prepended_Incident_Text",
                      {allButLast(names), last, *toText});
  return widgetText(hasTwoNames ? "LineWatch_2_Lines_Concatenated" : "LineWatch_N_Lines_Names_Concatenated",
                    {allButLast(names), last});
}

}  // namespace linewatch
