#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/platform.h"
#include "shared/hash_index.h"
#include "shared/text_hash.h"

namespace linewatch {

namespace {

/// Empty when neither the line nor its system has one.
std::string_view nameStandingForLine(const TransitLineItem& line) {
  if (const std::string& name = line.name(); !name.empty()) return name;
  return line.system() ? std::string_view(line.system()->name) : std::string_view();
}

/// Each name once, where it first occurs.
std::vector<std::string_view> distinctNames(const LinesOfRow& lines) {
  std::vector<std::string_view> names;
  names.reserve(lines.size());
  HashIndex seen;
  seen.reserve(lines.size());
  for (const TransitLineItem* line : lines) {
    const std::string_view name = nameStandingForLine(*line);
    if (name.empty()) continue;
    const auto search =
        seen.search(hashOfText(name), [&](std::uint32_t place) { return names[place] == name; });
    if (search.place()) continue;
    seen.enter(search, static_cast<std::uint32_t>(names.size()));
    names.push_back(name);
  }
  return names;
}

/// Of two names the first, of more all but the last joined into one text.
std::string allButLast(std::span<const std::string_view> names) {
  if (names.size() == 2) return std::string(names.front());
  return platform().localization().joinCommaDelimited(names.first(names.size() - 1));
}

/// The artwork that the systems of all lines share; null when they differ or have none. Lines without a
/// system artwork are passed over until the first that has one.
SharedArtwork commonSystemArtwork(const LinesOfRow& lines) {
  const TransitArtworkDataSource* common = nullptr;
  const SharedArtwork* result = nullptr;
  for (const TransitLineItem* line : lines) {
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

}  // namespace

void RVTransitIncidentsDataSourceBuilder::_updateItemsAffectingSeveralLines(
    TransitItems& items, ItemToLinesMap& itemToLinesMap) const {
  // Rewriting adds entries, which are not rewritten again.
  const std::size_t entryCount = itemToLinesMap.entryCount();
  for (std::size_t entry = 0; entry < entryCount; ++entry) {
    if (itemToLinesMap.lineCount(entry) < 2) continue;
    SharedTransitItem& row = items[itemToLinesMap.firstRowOfEntry(entry)];
    SharedTransitItem former = std::exchange(
        row, itemNamingLines(itemToLinesMap.itemOfEntry(entry), itemToLinesMap.linesOfEntry(entry)));
    itemToLinesMap.replaceItem(entry, std::move(former), *row);
  }
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::itemNamingLines(const RVTransitItem& item,
                                                                       const LinesOfRow& lines) const {
  return std::make_shared<const RVTransitItem>(item.sharedPrimaryText(),
                                               _prependLineNames(lines, item.secondaryText()),
                                               artworkOfLines(lines), item.displayArtwork(), item.openable());
}

std::shared_ptr<const RVConfiguredArtwork> RVTransitIncidentsDataSourceBuilder::artworkOfLines(
    const LinesOfRow& lines) const {
  SharedArtwork common = commonSystemArtwork(lines);
  if (!common) return imageArtwork("WidgetGenericTransit", kFaintAlpha);
  return lineArtwork(std::move(common), artworkCache_);
}

std::optional<std::string> RVTransitIncidentsDataSourceBuilder::_prependLineNames(
    const LinesOfRow& lines, const std::optional<std::string>& text) {
  const auto names = distinctNames(lines);
  if (names.empty()) return text;
  const bool hasText = text && !text->empty();
  const bool areTwo = names.size() == 2;
  const std::string last(names.back());
  if (names.size() == 1)
    return hasText ? widgetText("LineWatch_Single_Line_Prepended_Incident_Text", {last, *text}) : last;
  if (hasText)
    return widgetText(
        areTwo ? "LineWatch_2_Lines_Prepended_Incident_Text" : "LineWatch_N_Lines_Prepended_Incident_Text",
        {allButLast(names), last, *text});
  return widgetText(areTwo ? "LineWatch_2_Lines_Concatenated" : "LineWatch_N_Lines_Names_Concatenated",
                    {allButLast(names), last});
}

}  // namespace linewatch
