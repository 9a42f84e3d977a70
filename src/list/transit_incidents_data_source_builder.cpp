#include "list/transit_incidents_data_source_builder.h"

#include <optional>
#include <utility>

#include "activity/bzip2_compression.h"
#include "activity/line_activity.h"
#include "activity/openable_url.h"
#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "platform/companion_application.h"
#include "platform/incident_string_provider.h"
#include "platform/platform.h"
#include "platform/user_session.h"

namespace linewatch {

namespace {

constexpr int kFavoritesType = 2;

bool isEmpty(const SharedText& text) { return !*text || (*text)->empty(); }

/// The sum of the numbers of incidents of all lines: an incident counts once for each line that lists it.
std::size_t countListings(const TransitLineItems& lines) {
  std::size_t count = 0;
  for (const SharedLineItem& line : lines) count += line->incidents().size();
  return count;
}

std::shared_ptr<const RVTransitListItem> makeList(SummaryItem summary, TransitItems expandedItems = {}) {
  return std::make_shared<const RVTransitListItem>(std::move(summary), std::move(expandedItems));
}

}  // namespace

RVTransitIncidentsDataSourceBuilder::RVTransitIncidentsDataSourceBuilder(
    std::shared_ptr<const TransitLineItems> lineItems, std::uint64_t maxNumberOfItems,
    std::shared_ptr<ArtworkDataSourceCache> artworkCache,
    std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics)
    : lineItems_(std::move(lineItems)),
      maxNumberOfItems_(maxNumberOfItems == 0 ? kNoRowLimit : maxNumberOfItems),
      artworkCache_(std::move(artworkCache)),
      analytics_(std::move(analytics)) {}

std::shared_ptr<const RVTransitListItem> RVTransitIncidentsDataSourceBuilder::listItem() {
  if (!listItem_) listItem_ = _buildTransitListItem();
  return listItem_;
}

const std::shared_ptr<RVTransitIncidentFilter>& RVTransitIncidentsDataSourceBuilder::incidentFilter() {
  if (!incidentFilter_) incidentFilter_ = std::make_shared<RVTransitIncidentFilter>();
  return incidentFilter_;
}

std::shared_ptr<const RVTransitListItem> RVTransitIncidentsDataSourceBuilder::_buildTransitListItem() {
  if (lineItems_->empty()) return listWithoutFavorites();
  IncidentRows rows(countListings(*lineItems_));
  Lines unaffectedLines;
  for (const SharedLineItem& line : *lineItems_) {
    if (!addRowsOfLine(*line, rows)) unaffectedLines.push_back(line.get());
  }
  _updateItemsAffectingSeveralLines(rows.items(), rows.itemToLinesMap());
  record(rows);

  const bool hasGoodService = !unaffectedLines.empty();
  if (rows.items().empty()) return makeList(_allClearItem());
  if (rows.items().size() == 1) {
    SharedTransitItem row = rows.items().front();
    if (!hasGoodService) return makeList(std::move(row));
    return makeList(row, {row, _clearServiceItemForLines(unaffectedLines)});
  }
  auto summary = _summaryItemForIncidents(rows.incidents(), rows.items(), rows.itemToLinesMap());
  TransitItems expandedItems = std::move(rows.items());
  if (hasGoodService) expandedItems.push_back(_clearServiceItemForLines(unaffectedLines));
  applyRowLimit(expandedItems, hasGoodService, rows);
  return makeList(std::move(summary), std::move(expandedItems));
}

std::shared_ptr<const RVTransitListItem> RVTransitIncidentsDataSourceBuilder::listWithoutFavorites() const {
  auto row = std::make_shared<const RVTransitItem>(
      kestrowText("LineWatch_NoFavorite_Title"), kestrowText("LineWatch_NoFavorite_SecondaryText"), nullptr,
      /*displayArtwork=*/false, std::make_shared<const OpenableURL>(URL{"rova://?t=r"}));
  record(IncidentRows(0));
  return makeList(std::move(row));
}

void RVTransitIncidentsDataSourceBuilder::record(const IncidentRows& rows) const {
  if (analytics_) {
    analytics_->recordInfoForLines(*lineItems_, rows.incidents(), rows.incidentsToLineMapping());
  }
}

bool RVTransitIncidentsDataSourceBuilder::addRowsOfLine(const TransitLineItem& line, IncidentRows& rows) {
  ListedLine listedLine{line};
  const TransitIncidents& incidents = line.incidents();
  bool madeNewRow = false;
  for (std::size_t index = 0; index < incidents.size(); ++index) {
    const SharedIncident& incident = incidents[index];
    if (!incidentFilter()->shouldDisplayIncident(*incident)) continue;
    if (const auto row = rows.find(incident->muid())) {
      rows.addLine(*row, line);
    } else if (SharedTransitItem item = _itemForIncidentAtIndex(index, listedLine)) {
      rows.add(incident, std::move(item), line);
      madeNewRow = true;
    }
  }
  return madeNewRow;
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_itemForIncidentAtIndex(std::size_t index,
                                                                               ListedLine& inLine) const {
  const TransitIncidents& incidents = inLine.line.incidents();
  if (index >= incidents.size()) return nullptr;
  IncidentStringProvider& texts = platform().incidentStringProvider();
  auto title = texts.cellTitleForIncident(incidents[index]);
  auto secondaryText = texts.cellSecondaryTextForIncident(incidents[index]);
  if (isEmpty(title) && isEmpty(secondaryText)) return nullptr;
  return std::make_shared<const RVTransitItem>(std::move(title), std::move(secondaryText),
                                               artworkOfRows(inLine),
                                               /*displayArtwork=*/true, activityDataOfNextRow(inLine));
}

const std::shared_ptr<const RVConfiguredArtwork>& RVTransitIncidentsDataSourceBuilder::artworkOfRows(
    ListedLine& line) const {
  if (!line.artwork) line.artwork = lineArtwork(artworkForLine(line.line), artworkCache_);
  return line.artwork;
}

const std::shared_ptr<const RVUserActivityData>& RVTransitIncidentsDataSourceBuilder::activityDataOfNextRow(
    ListedLine& line) {
  if (!line.activityData) {
    line.activityData = _userActivityDataForLineItem(line.line);
  } else if (*line.activityData) {
    // The session was shared for the first row when the data was made. It must be shared for each row.
    platform().userSession().shareSession();
  }
  return *line.activityData;
}

std::shared_ptr<const RVUserActivityData> RVTransitIncidentsDataSourceBuilder::_userActivityDataForLineItem(
    const TransitLineItem& line) {
  auto compressed = bzip2CompressedData(activityRecordOfLine(line));
  if (!compressed) return nullptr;
  return RVUserActivityData::make(std::string(kCompanionReverseDomainPrefix) + "Rova.Transit.Incident",
                                  Dictionary{{kActivityRecordKey, *std::move(compressed)}});
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_allClearItem() const {
  return std::make_shared<const RVTransitItem>(kestrowText("LineWatch_GoodService_Title"),
                                               _allClearSecondaryText(), imageArtwork("good-v2", kFullAlpha),
                                               /*displayArtwork=*/true, _urlForFavorites());
}

std::string RVTransitIncidentsDataSourceBuilder::_allClearSecondaryText() const {
  if (lineItems_->size() == 1) return kestrowText("LineWatch_GoodService_SecondaryText_Singular");
  return kestrowText("LineWatch_GoodService_SecondaryText_Plural", {std::uint64_t{lineItems_->size()}});
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_clearServiceItemForLines(const Lines& lines) {
  return std::make_shared<const RVTransitItem>(
      kestrowText("LineWatch_GoodService_Title"), _clearServiceSecondaryTextForLines(lines),
      imageArtwork("good-alt-v2", kFaintAlpha), /*displayArtwork=*/true, _urlForFavorites());
}

std::string RVTransitIncidentsDataSourceBuilder::_clearServiceSecondaryTextForLines(const Lines& lines) {
  return widgetText("LineWatch_GoodService_Overflow_SecondaryText", {std::uint64_t{lines.size()}});
}

std::shared_ptr<const RVOpenable> RVTransitIncidentsDataSourceBuilder::_urlForFavorites() {
  const URL url = platform().mapURLBuilder().urlForFavorites(kFavoritesType, kOpenedMapType);
  UserSession& session = platform().userSession();
  session.shareSession();
  return std::make_shared<const OpenableURL>(session.sharedSessionPunchOutURL(url.absoluteString));
}

void RVTransitIncidentsDataSourceBuilder::applyRowLimit(TransitItems& expandedItems, bool endsWithGoodService,
                                                        const IncidentRows& rows) const {
  if (expandedItems.size() <= maxNumberOfItems_) return;
  const std::size_t excess = expandedItems.size() - maxNumberOfItems_;
  // One row more than the excess is removed, to make room for the overflow row. The good-service row stays
  // last, unless the limit is one row: then only the overflow row is left.
  const std::size_t removed = excess + 1;
  const std::size_t kept = expandedItems.size() - removed;
  const std::size_t position = endsWithGoodService && kept > 0 ? kept - 1 : kept;
  const std::size_t incidentCount = endsWithGoodService && kept == 0 ? excess : removed;
  const auto first = expandedItems.begin() + static_cast<std::ptrdiff_t>(position);
  const auto last = first + static_cast<std::ptrdiff_t>(removed);
  const TransitIncidents overflow(rows.incidents().end() - static_cast<std::ptrdiff_t>(incidentCount),
                                  rows.incidents().end());
  expandedItems.insert(expandedItems.erase(first, last),
                       _incidentsOverflowItemForIncidents(overflow, rows.incidentsToLineMapping()));
}

}  // namespace linewatch
