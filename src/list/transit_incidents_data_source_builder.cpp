#include "list/transit_incidents_data_source_builder.h"

#include <numeric>
#include <utility>

#include "activity/bzip2_compression.h"
#include "activity/openable_url.h"
#include "activity/rova_activity.h"
#include "list/localized_text.h"
#include "list/row_artwork.h"
#include "platform/companion_application.h"
#include "platform/incident_string_provider.h"
#include "platform/platform.h"
#include "platform/transit_storage_line_item.h"
#include "platform/url_display_options.h"
#include "platform/user_session.h"

namespace linewatch {

namespace {

constexpr int kMapType = 3;
constexpr int kFavoritesType = 2;

bool isEmpty(const SharedText& text) { return !*text || (*text)->empty(); }

std::shared_ptr<const RVTransitListItem> makeList(SummaryItem summary, TransitItems expandedItems = {}) {
  return std::make_shared<const RVTransitListItem>(std::move(summary), std::move(expandedItems));
}

std::shared_ptr<const RVUserActivityData> activityDataOfLine(const TransitLineItem& line) {
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(kMapType);
  RovaActivity activity;
  activity.setLineItem(std::make_shared<TransitStorageLineItem>(line));
  activity.setDisplayOptions(std::move(options));
  auto bytes = bzip2CompressedData(activity.data());
  if (!bytes) return nullptr;
  Dictionary userInfo;
  userInfo.emplace(kActivityRecordKey, *std::move(bytes));
  return RVUserActivityData::make(std::string(kCompanionReverseDomainPrefix) + "Rova.Transit.Incident",
                                  std::move(userInfo));
}

}  // namespace

struct RVTransitIncidentsDataSourceBuilder::Rows {
  /// The incidents with a row, and their rows; index by index they belong together, and with the lines below.
  TransitIncidents incidents;
  TransitItems items;
  /// The line under which the row was made.
  LinesOfRow firstLines;

  HashIndex rowByMuid;
  ItemToLinesMap itemToLines;
  /// The lines that made no new row, a line that only shares others' rows included.
  std::size_t unaffectedLineCount = 0;

  /// Makes room for as many rows; what is not used is never touched.
  void reserve(std::size_t rowCount) {
    incidents.reserve(rowCount);
    items.reserve(rowCount);
    firstLines.reserve(rowCount);
    itemToLines.reserve(rowCount);
  }
  HashIndex::Search find(std::uint64_t muid) {
    return rowByMuid.search(muid, [&](std::uint32_t row) { return incidents[row]->muid() == muid; });
  }
  /// Adds a row for the incident that `search` did not find.
  void add(const HashIndex::Search& search, const SharedIncident& incident, SharedTransitItem item,
           const TransitLineItem& line) {
    rowByMuid.enter(search, static_cast<std::uint32_t>(items.size()));
    itemToLines.addRow(*item, line);
    firstLines.push_back(&line);
    incidents.push_back(incident);
    items.push_back(std::move(item));
  }
};

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
  if (lineItems_->empty()) return noFavoritesList();
  Rows rows = collectRows();
  _updateItemsAffectingSeveralLines(rows.items, rows.itemToLines);
  record(rows);
  if (rows.items.empty()) return makeList(_allClearItem());
  if (rows.items.size() == 1) {
    const SharedTransitItem row = rows.items.front();
    if (rows.unaffectedLineCount == 0) return makeList(row);
    return makeList(row, {row, _clearServiceItemForLines(rows.unaffectedLineCount)});
  }
  auto summary = _summaryItemForIncidents(rows.incidents, rows.itemToLines);
  return makeList(std::move(summary), expandedItems(std::move(rows)));
}

std::shared_ptr<const RVTransitListItem> RVTransitIncidentsDataSourceBuilder::noFavoritesList() {
  auto row = std::make_shared<const RVTransitItem>(
      kestrowText("LineWatch_NoFavorite_Title"), kestrowText("LineWatch_NoFavorite_SecondaryText"), nullptr,
      /*displayArtwork=*/false, std::make_shared<const OpenableURL>(URL{"rova://?t=r"}));
  record({});
  return makeList(std::move(row));
}

RVTransitIncidentsDataSourceBuilder::Rows RVTransitIncidentsDataSourceBuilder::collectRows() {
  Rows rows;
  rows.reserve(std::accumulate(
      lineItems_->begin(), lineItems_->end(), std::size_t{0},
      [](std::size_t count, const SharedLineItem& line) { return count + line->incidents().size(); }));
  for (const SharedLineItem& line : *lineItems_) {
    bool madeNewRow = false;
    const std::size_t incidentCount = line->incidents().size();
    for (std::size_t index = 0; index < incidentCount; ++index) {
      if (addRowOrLine(*line, index, rows)) madeNewRow = true;
    }
    if (!madeNewRow) ++rows.unaffectedLineCount;
  }
  currentLine_ = {};
  return rows;
}

/// Gives the incident a row, or adds the line to the row that it has. True when a row was made.
bool RVTransitIncidentsDataSourceBuilder::addRowOrLine(const TransitLineItem& line, std::size_t index,
                                                       Rows& rows) {
  const SharedIncident& incident = line.incidents()[index];
  if (!incidentFilter()->shouldDisplayIncident(*incident)) return false;
  const HashIndex::Search search = rows.find(incident->muid());
  if (const auto row = search.place()) {
    rows.itemToLines.addLine(*row, line);
    return false;
  }
  SharedTransitItem item = _itemForIncidentAtIndex(index, line);
  if (!item) return false;
  rows.add(search, incident, std::move(item), line);
  return true;
}

TransitItems RVTransitIncidentsDataSourceBuilder::expandedItems(Rows rows) const {
  const bool endsWithGoodService = rows.unaffectedLineCount > 0;
  TransitItems items = std::move(rows.items);
  if (endsWithGoodService) items.push_back(_clearServiceItemForLines(rows.unaffectedLineCount));
  applyRowLimit(items, endsWithGoodService, rows);
  return items;
}

void RVTransitIncidentsDataSourceBuilder::record(const Rows& rows) const {
  if (!analytics_) return;
  IncidentsToLineMapping incidentToLine;
  incidentToLine.reserve(rows.incidents.size());
  for (std::size_t row = 0; row < rows.incidents.size(); ++row)
    incidentToLine.emplace(rows.incidents[row]->muid(), rows.firstLines[row]);
  analytics_->recordInfoForLines(*lineItems_, rows.incidents, incidentToLine);
}

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_itemForIncidentAtIndex(std::size_t index,
                                                                               const TransitLineItem& line) {
  if (index >= line.incidents().size()) return nullptr;
  const SharedIncident& incident = line.incidents()[index];
  IncidentStringProvider& texts = platform().incidentStringProvider();
  auto title = texts.cellTitleForIncident(incident);
  auto secondaryText = texts.cellSecondaryTextForIncident(incident);
  if (isEmpty(title) && isEmpty(secondaryText)) return nullptr;
  return std::make_shared<const RVTransitItem>(std::move(title), std::move(secondaryText),
                                               productsOfLine(line).artwork, /*displayArtwork=*/true,
                                               _userActivityDataForLineItem(line));
}

RVTransitIncidentsDataSourceBuilder::LineProducts& RVTransitIncidentsDataSourceBuilder::productsOfLine(
    const TransitLineItem& line) {
  if (currentLine_.line != &line) {
    currentLine_ = {&line, lineArtwork(artworkStandingForLine(line), artworkCache_), std::nullopt};
  }
  return currentLine_;
}

std::shared_ptr<const RVUserActivityData> RVTransitIncidentsDataSourceBuilder::_userActivityDataForLineItem(
    const TransitLineItem& line) {
  auto& data = productsOfLine(line).activityData;
  if (!data) {
    data = activityDataOfLine(line);
  } else if (*data) {
    (*data)->shareSessionAgain();
  }
  return *data;
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

SharedTransitItem RVTransitIncidentsDataSourceBuilder::_clearServiceItemForLines(std::size_t lineCount) {
  return std::make_shared<const RVTransitItem>(
      kestrowText("LineWatch_GoodService_Title"), _clearServiceSecondaryTextForLines(lineCount),
      imageArtwork("good-alt-v2", kFaintAlpha), /*displayArtwork=*/true, _urlForFavorites());
}

std::string RVTransitIncidentsDataSourceBuilder::_clearServiceSecondaryTextForLines(std::size_t lineCount) {
  return widgetText("LineWatch_GoodService_Overflow_SecondaryText", {std::uint64_t{lineCount}});
}

std::shared_ptr<const RVOpenable> RVTransitIncidentsDataSourceBuilder::_urlForFavorites() {
  const URL url = platform().mapURLBuilder().urlForFavorites(kFavoritesType, kMapType);
  UserSession& session = platform().userSession();
  session.sessionEntity(/*share=*/true, /*reset=*/false);
  return std::make_shared<const OpenableURL>(session.sharedSessionPunchOutURL(url.absoluteString));
}

void RVTransitIncidentsDataSourceBuilder::applyRowLimit(TransitItems& items, bool endsWithGoodService,
                                                        const Rows& rows) const {
  if (items.size() <= maxNumberOfItems_) return;
  const std::size_t excess = items.size() - maxNumberOfItems_;
  // One row more than the excess goes, to make room for the overflow row; the good-service row stays last if
  // it can.
  const std::size_t removed = excess + 1;
  const std::size_t kept = items.size() - removed;
  const std::size_t position = endsWithGoodService && kept > 0 ? kept - 1 : kept;
  const std::size_t incidentCount = endsWithGoodService && kept == 0 ? excess : removed;
  const auto first = items.begin() + static_cast<std::ptrdiff_t>(position);
  items.erase(first, first + static_cast<std::ptrdiff_t>(removed));
  const TransitIncidents overflow(rows.incidents.end() - static_cast<std::ptrdiff_t>(incidentCount),
                                  rows.incidents.end());
  items.insert(items.begin() + static_cast<std::ptrdiff_t>(position),
               _incidentsOverflowItemForIncidents(overflow, std::span(rows.firstLines).last(incidentCount)));
}

}  // namespace linewatch
