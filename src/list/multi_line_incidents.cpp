#include <functional>
#include <utility>

#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_incidents_data_source_builder.h"
#include "platform/platform.h"
#include "shared/text_hash.h"

namespace linewatch {

namespace {

const std::string& nameStandingForLine(const TransitLineItem& line) {
  static const std::string kNone;
  if (!line.name().empty()) return line.name();
  return line.system() ? line.system()->name : kNone;
}

/// Each name once, where it first occurs.
std::vector<const std::string*> distinctNames(const LinesOfRow& lines) {
  std::vector<const std::string*> names;
  HashIndex seen;
  for (const TransitLineItem* line : lines) {
    const std::string& name = nameStandingForLine(*line);
    if (name.empty()) continue;
    const auto search =
        seen.search(hashOfText(name), [&](std::uint32_t place) { return *names[place] == name; });
    if (search.place()) continue;
    seen.enter(search, static_cast<std::uint32_t>(names.size()));
    names.push_back(&name);
  }
  return names;
}

/// The names but the last, joined into one text.
std::string joinedButLast(const std::vector<const std::string*>& names) {
  std::vector<std::string> joined;
  joined.reserve(names.size() - 1);
  for (std::size_t i = 0; i + 1 < names.size(); ++i) joined.push_back(*names[i]);
  return platform().localization().joinCommaDelimited(joined);
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
  return std::make_shared<const RVTransitItem>(item.primaryText(),
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
  if (!text || text->empty()) {
    if (names.size() == 1) return *names[0];
    if (names.size() == 2) return widgetText("LineWatch_2_Lines_Concatenated", {*names[0], *names[1]});
    return widgetText("LineWatch_N_Lines_Names_Concatenated", {joinedButLast(names), *names.back()});
  }
  if (names.size() == 1)
    return widgetText("LineWatch_Single_Line_Prepended_Incident_Text", {*names[0], *text});
  if (names.size() == 2)
    return widgetText("LineWatch_2_Lines_Prepended_Incident_Text", {*names[0], *names[1], *text});
  return widgetText("LineWatch_N_Lines_Prepended_Incident_Text",
                    {joinedButLast(names), *names.back(), *text});
}

}  // namespace linewatch
