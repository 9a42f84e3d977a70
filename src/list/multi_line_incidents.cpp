#include <unordered_set>
#include <utility>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

const std::string& nameStandingForLine(const TransitLineItem& line) {
  static const std::string kNone;
  if (!line.name().empty()) return line.name();
  return line.system() ? line.system()->name : kNone;
}

/// Each name once, where it first occurs.
std::vector<std::string> distinctNames(const TransitLineItems& lines) {
  std::vector<std::string> names;
  std::unordered_set<std::string_view> seen;
  for (const SharedLineItem& line : lines) {
    const std::string& name = nameStandingForLine(*line);
    if (!name.empty() && seen.insert(name).second) names.push_back(name);
  }
  return names;
}

/// The names but the last, joined into one text.
std::string joinedButLast(const std::vector<std::string>& names) {
  return platform().localization().joinCommaDelimited(std::span(names).first(names.size() - 1));
}

/// The artwork that the systems of all lines share; null when they differ or have none. Lines without a
/// system artwork are passed over until the first that has one.
SharedArtwork commonSystemArtwork(const TransitLineItems& lines) {
  const TransitArtworkDataSource* common = nullptr;
  const SharedArtwork* result = nullptr;
  for (const SharedLineItem& line : lines) {
    const SharedArtwork& artwork = systemArtworkOfLine(*line);
    if (common == nullptr) {
      common = artwork.get();
      result = &artwork;
    } else if (!artwork || !TransitArtworkDataSourceIsEqual(artwork.get(), common)) {
      return nullptr;
    }
  }
  return common ? *result : nullptr;
}

/// The first position of each row that was put in place of another, to find again a later row equal to it.
using RewrittenPositions =
    std::unordered_map<SharedTransitItem, std::size_t, TransitItemIdentity, TransitItemIdentity>;
using ItemSet = std::unordered_set<SharedTransitItem, TransitItemIdentity, TransitItemIdentity>;

}  // namespace

void RVTransitIncidentsDataSourceBuilder::_updateItemsAffectingSeveralLines(
    TransitItems& items, ItemToLinesMap& itemToLinesMap) const {
  RewrittenPositions rewritten;
  ItemSet done;
  const TransitItems rows = items;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const auto entry = itemToLinesMap.find(rows[row]);
    if (entry == itemToLinesMap.end() || entry->second.size() < 2) continue;
    // Of rows that are equal only the first is rewritten, also when what it becomes is equal to them.
    if (!done.insert(rows[row]).second) continue;
    SharedTransitItem item = itemNamingLines(*rows[row], entry->second);
    const auto earlier = rewritten.find(rows[row]);
    const std::size_t position = earlier == rewritten.end() ? row : earlier->second;
    items[position] = item;
    rewritten.emplace(item, position);
    TransitLineItems lines = std::move(entry->second);
    itemToLinesMap.erase(entry);
    itemToLinesMap.insert_or_assign(std::move(item), std::move(lines));
  }
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::itemNamingLines(const RVTransitItem& item,
                                                                       const TransitLineItems& lines) const {
  return std::make_shared<const RVTransitItem>(item.primaryText(),
                                               _prependLineNames(lines, item.secondaryText()),
                                               artworkOfLines(lines), item.displayArtwork(), item.openable());
}

std::shared_ptr<const RVConfiguredArtwork> RVTransitIncidentsDataSourceBuilder::artworkOfLines(
    const TransitLineItems& lines) const {
  SharedArtwork common = commonSystemArtwork(lines);
  if (!common) return imageArtwork("WidgetGenericTransit", kFaintAlpha);
  return lineArtwork(std::move(common), artworkCache_);
}

std::optional<std::string> RVTransitIncidentsDataSourceBuilder::_prependLineNames(
    const TransitLineItems& lines, const std::optional<std::string>& text) {
  const auto names = distinctNames(lines);
  if (names.empty()) return text;
  if (!text || text->empty()) {
    if (names.size() == 1) return names[0];
    if (names.size() == 2) return widgetText("LineWatch_2_Lines_Concatenated", {names[0], names[1]});
    return widgetText("LineWatch_N_Lines_Names_Concatenated", {joinedButLast(names), names.back()});
  }
  if (names.size() == 1)
    return widgetText("LineWatch_Single_Line_Prepended_Incident_Text", {names[0], *text});
  if (names.size() == 2)
    return widgetText("LineWatch_2_Lines_Prepended_Incident_Text", {names[0], names[1], *text});
  return widgetText("LineWatch_N_Lines_Prepended_Incident_Text", {joinedButLast(names), names.back(), *text});
}

}  // namespace linewatch
