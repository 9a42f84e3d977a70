#include "presentation/transit_incident_data_source.h"

#include <string>
#include <utility>
#include <variant>

#include "list/transit_item_data_source_builder.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "presentation/artwork_column_calculator.h"
#include "presentation/transit_item_fixed_height_cell.h"
#include "presentation/transit_summary_cell.h"
#include "ui/interface_settings.h"

namespace linewatch {

namespace {

constexpr double kInitialRowHeight = 110;
constexpr double kDefaultArtworkViewWidth = 73;
/// The points of a row's width that its text gets.
constexpr double kWidthBesideArtwork = 214;
constexpr double kArtworkTrailingInset = 16;
constexpr double kSeparatorInset = 16;
constexpr double kEstimatedRowHeight = 5;

constexpr const char* kPlainCellIdentifier = "TableViewCell";

// The text is on one line, so that a search for a logged line finds it.
// clang-format off
constexpr std::string_view kExpandingRefused =
    "Trying to set expanded state on widget datasource without expanded items to show, ignoring request to expand datasource state.\nListItem: %@";
// clang-format on

SharedTransitItem withArtwork(const SharedTransitItem& item, const SharedSizedArtwork& artwork) {
  return std::make_shared<const RVTransitItem>(
      item->primaryText(), item->secondaryText(),
      std::make_shared<const RVConfiguredArtwork>(artwork, item->artwork()->alpha()), item->displayArtwork(),
      item->openable());
}

template <class Cell>
void registerCell(ui::TableView& tableView) {
  tableView.registerCell(std::string(Cell::kReuseIdentifier), Cell::make);
}

ui::EdgeInsets separatorInset() {
  ui::EdgeInsets inset;
  const bool isMirrored =
      platform().interfaceSettings().layoutDirection() == ui::LayoutDirection::rightToLeft;
  (isMirrored ? inset.right : inset.left) = kSeparatorInset;
  return inset;
}

}  // namespace

RVTransitIncidentDataSource::RVTransitIncidentDataSource(std::shared_ptr<RVResult> transitLineItemsResult,
                                                         bool expanded,
                                                         std::shared_ptr<ArtworkDataSourceCache> artworkCache,
                                                         std::uint64_t maxNumberOfRows, double availableWidth)
    : rowHeight_(kInitialRowHeight),
      maxNumberOfRows_(maxNumberOfRows),
      transitLineItemResult_(transitLineItemsResult
                                 ? std::move(transitLineItemsResult)
                                 : std::make_shared<RVResult>(std::make_shared<const TransitLineItems>())),
      availableWidth_(availableWidth),
      artworkCache_(std::move(artworkCache)) {
  listItem_ = builtListItem(nullptr);
  expanded_ = _sanatizedExpandedValue(expanded, listItem_.get());
  _updateAdjustedShieldItemsAndColumnWidth();
}

RVTransitIncidentDataSource::~RVTransitIncidentDataSource() = default;

void RVTransitIncidentDataSource::configureTableView(ui::TableView& tableView) {
  registerCell<RVTransitItemFixedHeightCell>(tableView);
  registerCell<RVTransitSummaryCell>(tableView);
  tableView.setTableFooterView(std::make_shared<ui::View>());
  tableView.setSeparatorInset(separatorInset());
  tableView.setDelegate(shared_from_this());
  tableView.setDataSource(shared_from_this());
}

// ---- Content ----

void RVTransitIncidentDataSource::updateTransitLineItemResult(std::shared_ptr<RVResult> result,
                                                              const Analytics& captureAnalytics) {
  if (result == transitLineItemResult_) return;
  transitLineItemResult_ = std::move(result);
  recalculateDataSourceItemsWithAnalytics(captureAnalytics);
}

void RVTransitIncidentDataSource::recalculateDataSourceItemsWithAnalytics(const Analytics& analytics) {
  setListItem(builtListItem(analytics));
}

void RVTransitIncidentDataSource::setListItem(std::shared_ptr<const RVTransitListItem> listItem) {
  if (bothAbsentOrEqual(listItem, listItem_)) return;
  listItem_ = std::move(listItem);
  dropAdjustedItems();
  _updateAdjustedShieldItemsAndColumnWidth();
  notifyDelegate();
}

void RVTransitIncidentDataSource::setRowHeight(double rowHeight, std::uint64_t maxNumberOfRows) {
  const bool isNewLimit = maxNumberOfRows != maxNumberOfRows_;
  if (rowHeight == rowHeight_ && !isNewLimit) return;
  rowHeight_ = rowHeight;
  maxNumberOfRows_ = maxNumberOfRows;
  if (isNewLimit) {
    recalculateDataSourceItemsWithAnalytics(nullptr);
  } else {
    notifyDelegate();
  }
}

void RVTransitIncidentDataSource::setExpanded(bool expanded) {
  if (expanded == expanded_) return;
  expanded_ = _sanatizedExpandedValue(expanded, listItem_.get());
  notifyDelegate();
}

void RVTransitIncidentDataSource::setAvailableWidth(double availableWidth) {
  if (availableWidth == availableWidth_) return;
  availableWidth_ = availableWidth;
  const auto summaryBefore = std::exchange(shieldAjustedSummaryItem_, std::nullopt);
  const auto itemsBefore = std::exchange(shieldAdjustedExpandedItems_, std::nullopt);
  const double columnWidthBefore = artworkColumnWidth_;
  _updateAdjustedShieldItemsAndColumnWidth();
  const bool looksTheSame = artworkColumnWidth_ == columnWidthBefore &&
                            (!expanded_ || areEqual(*shieldAdjustedExpandedItems_, *itemsBefore)) &&
                            areEqual(*shieldAjustedSummaryItem_, *summaryBefore);
  if (!looksTheSame) notifyDelegate();
}

Size RVTransitIncidentDataSource::preferredContentSizeForExpanded(bool /*expanded*/,
                                                                  const Size& maxSize) const {
  const std::size_t rows = _numberOfRowInFirstSectionForExpandedState(expanded_);
  return {maxSize.width, rowHeight_ * static_cast<double>(rows)};
}

std::shared_ptr<const RVTransitListItem> RVTransitIncidentDataSource::builtListItem(
    const Analytics& analytics) const {
  if (!transitLineItemResult_) return nullptr;
  const auto builder = RVTransitDataSourceBuilderForResult(*transitLineItemResult_, maxNumberOfRows_,
                                                           artworkCache_, analytics);
  return builder ? builder->listItem() : nullptr;
}

bool RVTransitIncidentDataSource::_sanatizedExpandedValue(bool expanded,
                                                          const RVTransitListItem* forListItem) {
  if (!expanded || (forListItem && forListItem->hasExpandedItems())) return expanded;
  logError(kExpandingRefused, {forListItem ? forListItem->description() : "(null)"});
  return false;
}

void RVTransitIncidentDataSource::notifyDelegate() {
  if (const auto listener = delegate()) listener->dataSourceDidUpdateContent(*this);
}

// ---- The artwork column ----

/// The summary is fitted last, so its column width also applies to the expanded rows.
void RVTransitIncidentDataSource::_updateAdjustedShieldItemsAndColumnWidth() {
  if (!shieldAdjustedExpandedItems_) {
    shieldAdjustedExpandedItems_ =
        fittedIntoColumn(listItem_ ? listItem_->expandedItems().value_or(TransitItems{}) : TransitItems{});
  }
  if (!shieldAjustedSummaryItem_) shieldAjustedSummaryItem_ = summaryFittedIntoColumn();
}

void RVTransitIncidentDataSource::dropAdjustedItems() {
  shieldAdjustedExpandedItems_.reset();
  shieldAjustedSummaryItem_.reset();
}

TransitItems RVTransitIncidentDataSource::fittedIntoColumn(const TransitItems& items) {
  return artworkColumnCalculator().itemsFromItems(items, _sizeParameters(), &artworkColumnWidth_,
                                                  withArtwork);
}

SummaryItem RVTransitIncidentDataSource::summaryFittedIntoColumn() {
  if (!listItem_) return {};
  const auto* item = std::get_if<SharedTransitItem>(&listItem_->summaryItem());
  return item ? SummaryItem(fittedIntoColumn({*item}).front()) : listItem_->summaryItem();
}

ArtworkWidthCalculatorSizeParameter RVTransitIncidentDataSource::_sizeParameters() const {
  const double room = availableWidth_ - kWidthBesideArtwork;
  ArtworkWidthCalculatorSizeParameter parameter;
  parameter.defaultArtworkViewWidth = kDefaultArtworkViewWidth;
  // A width that is not a number stays so.
  parameter.maxArtworkViewWidth = room < kDefaultArtworkViewWidth ? kDefaultArtworkViewWidth : room;
  parameter.artworkInsets.right = kArtworkTrailingInset;
  return parameter;
}

RVTransitItemArtworkColumnCalculator& RVTransitIncidentDataSource::artworkColumnCalculator() {
  if (!artworkColumnCalculator_) {
    artworkColumnCalculator_ = std::make_unique<RVTransitItemArtworkColumnCalculator>();
  }
  return *artworkColumnCalculator_;
}

// ---- Rows ----

std::size_t RVTransitIncidentDataSource::numberOfSectionsInTableView(ui::TableView&) { return 1; }

std::size_t RVTransitIncidentDataSource::tableViewNumberOfRowsInSection(ui::TableView&, std::size_t) {
  return _numberOfRowInFirstSectionForExpandedState(expanded_);
}

std::size_t RVTransitIncidentDataSource::_numberOfRowInFirstSectionForExpandedState(bool expanded) const {
  if (expanded) return shieldAdjustedExpandedItems_->size();
  return std::holds_alternative<std::monostate>(*shieldAjustedSummaryItem_) ? 0 : 1;
}

SummaryItem RVTransitIncidentDataSource::_itemAtIndexPath(const ui::IndexPath& indexPath) const {
  if (indexPath.section > 0) return {};
  if (!expanded_) return *shieldAjustedSummaryItem_;
  const TransitItems& items = *shieldAdjustedExpandedItems_;
  return indexPath.row < items.size() ? SummaryItem(items[indexPath.row]) : SummaryItem();
}

namespace {

/// Makes the cell of a row.
struct CellMaker {
  ui::TableView& tableView;
  const ui::IndexPath& indexPath;
  const RVTransitIncidentDataSource& dataSource;

  std::shared_ptr<ui::TableViewCell> operator()(std::monostate) const {
    return std::make_shared<ui::TableViewCell>(ui::TableViewCellStyle::plain, kPlainCellIdentifier);
  }
  std::shared_ptr<ui::TableViewCell> operator()(const SharedTransitItem& item) const {
    auto cell = dequeue<RVTransitItemFixedHeightCell>();
    cell->setTransitItem(item);
    cell->setTrailingArtworkColumnWidth(dataSource.artworkColumnWidth());
    cell->setRowHeight(dataSource.rowHeight());
    return cell;
  }
  std::shared_ptr<ui::TableViewCell> operator()(
      const std::shared_ptr<const RVTransitSummaryItem>& item) const {
    auto cell = dequeue<RVTransitSummaryCell>();
    cell->setArtworkCache(dataSource.artworkCache());
    cell->setItem(item);
    cell->setRowHeight(dataSource.rowHeight());
    return cell;
  }

  /// Makes a new cell when the table was not configured and has no cells of this class.
  template <class Cell>
  std::shared_ptr<Cell> dequeue() const {
    const std::string identifier(Cell::kReuseIdentifier);
    const auto cell = tableView.dequeueReusableCell(identifier, indexPath);
    if (auto reused = std::dynamic_pointer_cast<Cell>(cell)) return reused;
    return Cell::make(ui::TableViewCellStyle::plain, identifier);
  }
};

struct OpenableOfRow {
  std::shared_ptr<const RVOpenable> operator()(std::monostate) const { return nullptr; }
  std::shared_ptr<const RVOpenable> operator()(const SharedTransitItem& item) const {
    return item->openable();
  }
  std::shared_ptr<const RVOpenable> operator()(
      const std::shared_ptr<const RVTransitSummaryItem>& item) const {
    return item->userActivityData();
  }
};

}  // namespace

std::shared_ptr<ui::TableViewCell> RVTransitIncidentDataSource::tableViewCellForRowAtIndexPath(
    ui::TableView& tableView, const ui::IndexPath& indexPath) {
  auto cell = std::visit(CellMaker{tableView, indexPath, *this}, _itemAtIndexPath(indexPath));
  const bool isLast = indexPath.row + 1 == tableViewNumberOfRowsInSection(tableView, indexPath.section);
  cell->setSeparatorStyle(isLast ? ui::SeparatorStyle::none : ui::SeparatorStyle::singleLine);
  return cell;
}

double RVTransitIncidentDataSource::tableViewEstimatedHeightForRowAtIndexPath(ui::TableView&,
                                                                              const ui::IndexPath&) {
  return kEstimatedRowHeight;
}

// ---- Tapping ----

std::shared_ptr<const RVOpenable> RVTransitIncidentDataSource::_openableItemAtIndexPath(
    const ui::IndexPath& indexPath) const {
  return std::visit(OpenableOfRow{}, _itemAtIndexPath(indexPath));
}

bool RVTransitIncidentDataSource::tableViewShouldHighlightRowAtIndexPath(ui::TableView&,
                                                                         const ui::IndexPath& indexPath) {
  return _openableItemAtIndexPath(indexPath) != nullptr;
}

void RVTransitIncidentDataSource::tableViewDidSelectRowAtIndexPath(ui::TableView& tableView,
                                                                   const ui::IndexPath& indexPath) {
  tableView.deselectRow(indexPath, /*animated=*/true);
  const auto openable = _openableItemAtIndexPath(indexPath);
  const auto listener = openable ? delegate() : nullptr;
  if (listener) listener->dataSourceDidSelectOpenableItem(*this, openable, indexPath);
}

}  // namespace linewatch
