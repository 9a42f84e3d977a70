#include "ui/table_view.h"

#include <algorithm>
#include <utility>

#include "platform/log.h"

namespace linewatch::ui {

namespace {

// Points. A height of 0 would make every row visible.
constexpr double kSmallestRowHeight = 1;
// Cells kept per identifier beyond the visible rows, for rows that scroll in while others scroll out.
constexpr std::size_t kSpareCells = 4;

double usableHeight(double height) { return std::max(kSmallestRowHeight, sanitizedLength(height)); }

}  // namespace

TableView::TableView(const Rect& frame) : View(frame) { setClipsToBounds(true); }

TableView::~TableView() = default;

void TableView::setDataSource(const std::shared_ptr<TableViewDataSource>& dataSource) {
  dataSource_ = dataSource;
  measured_.clear();
  reloadData();
}

void TableView::setDelegate(const std::shared_ptr<TableViewDelegate>& delegate) {
  delegate_ = delegate;
  measured_.clear();
  reloadData();
}

// ---- Rows ----

void TableView::reloadData() {
  rowsLoaded_ = false;
  setNeedsLayout();
}

// The other sections are reloaded too.
void TableView::reloadSection(std::size_t section, RowAnimation animation) {
  reloadData();
  if (reloadHandler_) reloadHandler_(section, animation);
}

void TableView::loadRowsIfNeeded() {
  if (std::exchange(rowsLoaded_, true)) return;
  makeAllIdle();
  highlighted_.reset();
  pressed_.reset();
  sectionStarts_.assign(1, 0);
  const auto source = dataSource_.lock();
  const std::size_t sections = source ? source->numberOfSectionsInTableView(*this) : 0;
  for (std::size_t section = 0; section < sections; ++section) {
    sectionStarts_.push_back(sectionStarts_.back() + source->tableViewNumberOfRowsInSection(*this, section));
  }
  guessHeights(sectionStarts_.back());
  if (selected_ && flatRow(*selected_) >= heights_.count()) selected_.reset();
}

// Rows that were visible before keep their measured heights, so that the table does not jump. Other rows get
// the delegate's estimate.
void TableView::guessHeights(std::size_t count) {
  TableViewDelegate defaults;
  const auto delegate = delegate_.lock();
  measured_.resize(count);
  std::vector<double> heights(count);
  for (std::size_t row = 0; row < count; ++row) {
    heights[row] =
        measured_[row]
            ? heights_.heightOf(row)
            : usableHeight((delegate ? *delegate : defaults)
                               .tableViewEstimatedHeightForRowAtIndexPath(*this, indexPathOf(row)));
  }
  heights_.assign(heights);
}

std::size_t TableView::numberOfSections() {
  loadRowsIfNeeded();
  return sectionStarts_.size() - 1;
}

std::size_t TableView::numberOfRowsInSection(std::size_t section) {
  return section < numberOfSections() ? sectionStarts_[section + 1] - sectionStarts_[section] : 0;
}

// The number of rows when no row matches.
std::size_t TableView::flatRow(const IndexPath& indexPath) const {
  if (indexPath.section + 1 >= sectionStarts_.size()) return heights_.count();
  const std::size_t start = sectionStarts_[indexPath.section];
  return indexPath.row < sectionStarts_[indexPath.section + 1] - start ? start + indexPath.row
                                                                       : heights_.count();
}

IndexPath TableView::indexPathOf(std::size_t row) const {
  const auto next = std::upper_bound(sectionStarts_.begin(), sectionStarts_.end(), row);
  const auto section = static_cast<std::size_t>(next - sectionStarts_.begin()) - 1;
  return {section, row - sectionStarts_[section]};
}

Rect TableView::rectForRow(const IndexPath& indexPath) {
  loadRowsIfNeeded();
  const std::size_t row = flatRow(indexPath);
  if (row >= heights_.count()) return {};
  return {0, heights_.offsetOf(row), frame().width, heights_.heightOf(row)};
}

std::optional<IndexPath> TableView::indexPathForRowAtPoint(const Point& point) {
  loadRowsIfNeeded();
  if (point.y < 0 || point.y >= heights_.total()) return std::nullopt;
  return indexPathOf(heights_.rowAt(point.y));
}

// ---- Cells ----

void TableView::registerCell(const std::string& reuseIdentifier, CellFactory factory) {
  factories_[reuseIdentifier] = std::move(factory);
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& reuseIdentifier,
                                                              const IndexPath& indexPath) {
  std::vector<IdleCell>& idle = idle_[reuseIdentifier];
  if (!idle.empty()) {
    auto chosen = std::find_if(idle.begin(), idle.end(),
                               [&](const IdleCell& each) { return each.lastShown == indexPath; });
    if (chosen == idle.end()) chosen = std::prev(idle.end());
    std::shared_ptr<TableViewCell> cell = chosen->cell;
    idle.erase(chosen);
    return cell;
  }
  const auto factory = factories_.find(reuseIdentifier);
  if (factory != factories_.end()) {
    if (auto cell = factory->second(TableViewCellStyle::plain, reuseIdentifier)) return cell;
  } else {
    factories_[reuseIdentifier] = [](TableViewCellStyle style, const std::string& identifier) {
      return std::make_shared<TableViewCell>(style, identifier);
    };
    logError("A table has no cells for the reuse identifier %@", {reuseIdentifier});
  }
  return std::make_shared<TableViewCell>(TableViewCellStyle::plain, reuseIdentifier);
}

std::shared_ptr<TableViewCell> TableView::cellForRow(const IndexPath& indexPath) const {
  const std::size_t row = flatRow(indexPath);
  const auto shown =
      std::find_if(shown_.begin(), shown_.end(), [&](const ShownRow& each) { return each.row == row; });
  return shown != shown_.end() ? shown->cell : nullptr;
}

std::vector<IndexPath> TableView::indexPathsForVisibleRows() const {
  std::vector<IndexPath> paths;
  for (const ShownRow& shown : shown_) paths.push_back(indexPathOf(shown.row));
  return paths;
}

// The cell stays a subview until the layout has decided whether it is used again.
void TableView::makeIdle(ShownRow&& shown) {
  if (!shown.cell) return;
  idle_[shown.cell->reuseIdentifier()].push_back({indexPathOf(shown.row), std::move(shown.cell)});
}

void TableView::makeAllIdle() {
  for (ShownRow& shown : shown_) makeIdle(std::move(shown));
  shown_.clear();
}

void TableView::removeIdleCells() {
  for (auto& [identifier, cells] : idle_) {
    const bool serveAgain = factories_.contains(identifier);
    for (const IdleCell& idle : cells) idle.cell->removeFromSuperview();
    if (!serveAgain) cells.clear();
    if (cells.size() > shown_.size() + kSpareCells) cells.resize(shown_.size() + kSpareCells);
  }
}

// ---- Layout ----

void TableView::layoutSubviews() {
  View::layoutSubviews();
  layingOut_ = true;
  loadRowsIfNeeded();
  layOutRows();
  placeFooter();
  removeIdleCells();
  layingOut_ = false;
}

void TableView::descendantDidNeedLayout() {
  if (!layingOut_) setNeedsLayout();
}

// From the first visible row downwards, so that an estimate that was wrong moves only the rows below. When
// the content ends above the table's bottom, a second pass clamps the offset and adds the rows visible above.
void TableView::layOutRows() {
  for (int pass = 0; pass < 2; ++pass) {
    clampContentOffset();
    std::vector<ShownRow> before = std::exchange(shown_, {});
    const double start = offsetOnGrid();
    const double end = start + frame().height;
    std::size_t row = heights_.rowAt(start);
    // Cells that are no longer visible are reused for rows that become visible.
    for (ShownRow& each : before) {
      if (each.row < row || (each.row > row && heights_.offsetOf(each.row) >= end))
        makeIdle(std::exchange(each, {}));
    }
    for (double y = heights_.offsetOf(row); row < heights_.count() && y < end; ++row) {
      const auto cell = cellFor(row, before);
      // The data source may have reloaded the table.
      if (row >= heights_.count()) break;
      if (cell) setMeasuredHeight(row, heightOf(*cell));
      const double height = heights_.heightOf(row);
      if (cell) cell->setFrame({0, y - start, frame().width, height});
      shown_.push_back({row, cell});
      y += height;
    }
    for (ShownRow& each : before) makeIdle(std::move(each));
    if (contentOffset_ <= std::max(0.0, contentHeight() - frame().height)) return;
  }
}

std::shared_ptr<TableViewCell> TableView::cellFor(std::size_t row, std::vector<ShownRow>& before) {
  const auto kept = std::find_if(before.begin(), before.end(),
                                 [&](const ShownRow& each) { return each.cell && each.row == row; });
  if (kept != before.end()) return std::exchange(kept->cell, nullptr);
  const auto source = dataSource_.lock();
  auto cell = source ? source->tableViewCellForRowAtIndexPath(*this, indexPathOf(row)) : nullptr;
  if (!cell) return nullptr;
  showStateOf(*cell, indexPathOf(row));
  if (cell->superview() != this) insertSubview(cell, 0);
  return cell;
}

void TableView::setMeasuredHeight(std::size_t row, double height) {
  heights_.setHeight(row, height);
  measured_[row] = true;
}

double TableView::heightOf(TableViewCell& cell) {
  return usableHeight(
      cell.systemLayoutSizeFittingSize({frame().width, 0}, kRequiredPriority, kFittingSizePriority).height);
}

void TableView::placeFooter() {
  if (!footer_) return;
  footer_->setFrame({0, heights_.total() - offsetOnGrid(), frame().width, footer_->frame().height});
}

// ---- Scrolling ----

// Rows are drawn on the pixel grid. The stored offset is not rounded, so that small scroll steps add up.
double TableView::offsetOnGrid() const { return snappedToPixel(contentOffset_); }

double TableView::contentHeight() {
  loadRowsIfNeeded();
  return heights_.total() + (footer_ ? footer_->frame().height : 0);
}

void TableView::clampContentOffset() {
  contentOffset_ = std::clamp(contentOffset_, 0.0, std::max(0.0, contentHeight() - frame().height));
}

void TableView::setContentOffset(double offset) {
  const double before = contentOffset_;
  contentOffset_ = sanitizedLength(offset);
  clampContentOffset();
  if (contentOffset_ == before) return;
  setNeedsLayout();
  setNeedsDisplay();
}

bool TableView::handleScroll(double deltaY) {
  const double before = contentOffset_;
  setContentOffset(contentOffset_ + deltaY);
  return contentOffset_ != before;
}

// ---- Appearance ----

void TableView::setSeparatorInset(const EdgeInsets& inset) {
  separatorInset_ = inset;
  setNeedsDisplay();
}

void TableView::setSeparatorEffect(std::optional<VibrancyEffect> effect) {
  separatorEffect_ = effect;
  setNeedsDisplay();
}

void TableView::setTableFooterView(const std::shared_ptr<View>& view) {
  if (footer_) footer_->removeFromSuperview();
  footer_ = view;
  if (footer_) addSubview(footer_);
  setNeedsLayout();
}

// Each separator is a pixel high, at the bottom of its row.
void TableView::drawOverlay(Canvas& canvas) {
  const Color color = separatorEffect_ ? colorOf(*separatorEffect_) : Color(SemanticColor::separator);
  const double width =
      frame().width - sanitizedLength(separatorInset_.left) - sanitizedLength(separatorInset_.right);
  const double thickness = 1 / std::max(1.0, displayScale());
  for (const ShownRow& shown : shown_) {
    if (!shown.cell || shown.cell->separatorStyle() == SeparatorStyle::none || !(width > 0)) continue;
    canvas.fillRect(
        {sanitizedLength(separatorInset_.left), shown.cell->frame().maxY() - thickness, width, thickness},
        color);
  }
}

// ---- Selection ----

void TableView::showStateOf(TableViewCell& cell, const IndexPath& indexPath) const {
  cell.setHighlighted(highlighted_ == indexPath);
  cell.setSelected(selected_ == indexPath);
}

void TableView::setCellFlag(const IndexPath& indexPath, void (TableViewCell::*set)(bool), bool value) const {
  if (const auto cell = cellForRow(indexPath)) (*cell.*set)(value);
}

void TableView::highlight(std::optional<IndexPath> indexPath) {
  if (indexPath == highlighted_) return;
  if (highlighted_) setCellFlag(*highlighted_, &TableViewCell::setHighlighted, false);
  highlighted_ = indexPath;
  if (highlighted_) setCellFlag(*highlighted_, &TableViewCell::setHighlighted, true);
}

void TableView::deselectRow(const IndexPath& indexPath, bool /*animated*/) {
  if (selected_ == indexPath) selected_.reset();
  setCellFlag(indexPath, &TableViewCell::setSelected, false);
}

bool TableView::highlightsRow(const IndexPath& indexPath) {
  loadRowsIfNeeded();
  const auto delegate = delegate_.lock();
  return delegate && flatRow(indexPath) < heights_.count() &&
         delegate->tableViewShouldHighlightRowAtIndexPath(*this, indexPath);
}

bool TableView::tapRow(const IndexPath& indexPath) {
  if (!highlightsRow(indexPath)) return false;
  if (tapHandler_) tapHandler_(indexPath);
  if (selected_) deselectRow(IndexPath(*selected_), false);
  selected_ = indexPath;
  setCellFlag(indexPath, &TableViewCell::setSelected, true);
  if (const auto delegate = delegate_.lock()) delegate->tableViewDidSelectRowAtIndexPath(*this, indexPath);
  return true;
}

bool TableView::handlePointer(PointerPhase phase, const Point& point) {
  const auto under =
      bounds().contains(point) ? indexPathForRowAtPoint({point.x, point.y + contentOffset_}) : std::nullopt;
  if (phase == PointerPhase::pressed) {
    if (!under || !highlightsRow(*under)) return false;
    pressed_ = under;
    highlight(under);
    return true;
  }
  const bool onPressed = pressed_ && under == pressed_;
  const bool pressing = phase == PointerPhase::moved;
  highlight(pressing && onPressed ? pressed_ : std::nullopt);
  if (pressing) return true;
  pressed_.reset();
  if (phase == PointerPhase::released && onPressed) tapRow(*under);
  return true;
}

}  // namespace linewatch::ui
