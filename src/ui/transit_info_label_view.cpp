#include "ui/transit_info_label_view.h"

#include <algorithm>
#include <utility>

#include "platform/platform.h"
#include "ui/interface_settings.h"

namespace linewatch::ui {

namespace {

/// Points. Longer than any display is wide, so that a row of very many items stays cheap.
constexpr double kLongestRow = 4096;
/// Points. A width that exceeds the limit by no more than this still fits.
constexpr double kWidthTolerance = 1e-6;

/// The widget places this row at a fixed distance below a text; a larger row would touch that text.
constexpr TextSizeCategory kLargestRow = TextSizeCategory::XXL;

constexpr Size kNothing{0, 0};

bool isIcon(const TransitArtworkDataSource& artwork) {
  return artwork.artworkSourceType == kArtworkSourceIcon;
}

double usable(double length) { return std::max(0.0, sanitizedLength(length)); }

}  // namespace

// ---- Properties ----

void TransitInfoLabelView::contentDidChange() {
  row_.reset();
  invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

void TransitInfoLabelView::setLabelItems(Items items) {
  if (items == items_) return;
  items_ = std::move(items);
  contentDidChange();
}

void TransitInfoLabelView::setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> cache) {
  if (cache == cache_) return;
  cache_ = std::move(cache);
  contentDidChange();
}

void TransitInfoLabelView::setShieldSize(std::int64_t size) {
  if (std::exchange(shieldSize_, size) != size) contentDidChange();
}

void TransitInfoLabelView::setIconSize(std::int64_t size) {
  if (std::exchange(iconSize_, size) != size) contentDidChange();
}

void TransitInfoLabelView::setSpaceBetweenShields(double space) {
  const double wanted = usable(space);
  if (std::exchange(space_, wanted) != wanted) contentDidChange();
}

void TransitInfoLabelView::setMaximumWidth(std::optional<double> width) {
  if (width) width = usable(*width);
  if (std::exchange(maximumWidth_, width) != width) contentDidChange();
}

void TransitInfoLabelView::setTruncationText(TruncationText text) {
  truncationText_ = std::move(text);
  contentDidChange();
}

void TransitInfoLabelView::setTextColor(const Color& color) {
  textColor_ = color;
  setNeedsDisplay();
}

// ---- The row ----

TextSizeCategory TransitInfoLabelView::rowTextSize() {
  return std::min(platform().interfaceSettings().textSizeCategory(), kLargestRow);
}

const TransitInfoLabelView::Row& TransitInfoLabelView::row() {
  const bool isUsable = row_ && row_->scale == displayScale() && row_->direction == layoutDirection() &&
                        row_->textSize == rowTextSize();
  if (!isUsable) row_ = makeRow();
  return *row_;
}

TransitInfoLabelView::Row TransitInfoLabelView::makeRow() {
  Row row;
  row.scale = displayScale();
  row.direction = layoutDirection();
  row.textSize = rowTextSize();
  if (items_.empty() || !cache_) return row;
  const double limit = std::min(maximumWidth_.value_or(kLongestRow), kLongestRow);
  addPieces(row, limit);
  if (row.pieces.size() < items_.size() && truncationText_) makeRoomForText(row, limit);
  setHeights(row);
  return row;
}

std::shared_ptr<const Image> TransitInfoLabelView::imageOf(const SharedArtwork& item,
                                                           TextSizeCategory textSize) const {
  if (!item) return nullptr;
  return cache_->image(*item,
                       {isIcon(*item) ? iconSize_ : shieldSize_, displayScale(), artworkGrowth(textSize)});
}

// Images are made only for items up to the limit.
void TransitInfoLabelView::addPieces(Row& row, double limit) {
  for (const SharedArtwork& item : items_) {
    std::shared_ptr<const Image> image = imageOf(item, row.textSize);
    const Size size = image ? image->size() : kNothing;
    const double leading = row.pieces.empty() ? 0 : row.width + space_;
    const double trailing = leading + usable(size.width);
    if (trailing > limit + kWidthTolerance) return;
    row.pieces.push_back({std::move(image), leading, {usable(size.width), usable(size.height)}});
    row.width = trailing;
  }
}

// Removes items until the text fits. The text changes each time, as it counts the items left out.
void TransitInfoLabelView::makeRoomForText(Row& row, double limit) {
  while (true) {
    row.text = truncationText_(items_.size() - row.pieces.size());
    row.textLeading = row.pieces.empty() ? 0 : row.width + space_;
    const double room = limit - row.textLeading;
    row.textLayout = layOutText(row, kLongestLength);
    if (row.textLayout->size.width <= room + kWidthTolerance) break;
    if (row.pieces.empty()) {
      row.textLayout = layOutText(row, room);
      break;
    }
    row.pieces.pop_back();
    row.width = row.pieces.empty() ? 0 : row.pieces.back().leading + row.pieces.back().size.width;
  }
  row.width = row.textLeading + row.textLayout->size.width;
}

std::shared_ptr<const TextLayout> TransitInfoLabelView::layOutText(const Row& row, double width) const {
  TextLayoutRequest request;
  request.width = width;
  request.maximumNumberOfLines = 1;
  request.lineBreakMode = LineBreakMode::truncatingTail;
  request.alignment = TextAlignment::left;
  request.direction = layoutDirection();
  request.scale = displayScale();
  return platform().textEngine().shape(AttributedText(row.text), fontAt(row.textSize))->layOut(request);
}

// Capital letters are centred on the shields. Rows with and without text are equally high, so that shields
// are in the same place in both.
void TransitInfoLabelView::setHeights(Row& row) const {
  const FontMetrics metrics = platform().textEngine().metrics(fontAt(row.textSize));
  double half = std::max(metrics.ascent - metrics.capHeight / 2, metrics.descent + metrics.capHeight / 2);
  for (const Row::Piece& piece : row.pieces) half = std::max(half, piece.size.height / 2);
  row.height = ceiledToPixel(2 * half, displayScale());
  row.baseline = snappedToPixel((row.height + metrics.capHeight) / 2);
}

std::size_t TransitInfoLabelView::shownItemCount() { return row().pieces.size(); }

const std::string& TransitInfoLabelView::shownText() { return row().text; }

// ---- As a view ----

std::optional<double> TransitInfoLabelView::intrinsicWidth() {
  return ceiledToPixel(row().width, displayScale());
}

std::optional<double> TransitInfoLabelView::intrinsicHeight(double /*width*/) { return row().height; }

std::optional<double> TransitInfoLabelView::firstBaselineFromTop() { return row().baseline; }

double TransitInfoLabelView::lastBaselineFromBottom() { return row().height - row().baseline; }

void TransitInfoLabelView::draw(Canvas& canvas) {
  const Row& shown = row();
  const bool mirrored = layoutDirection() == LayoutDirection::rightToLeft;
  const auto left = [&](double leading, double width) {
    return snappedToPixel(mirrored ? frame().width - leading - width : leading);
  };
  for (const Row::Piece& piece : shown.pieces) {
    if (!piece.image) continue;
    const double top = snappedToPixel((shown.height - piece.size.height) / 2);
    piece.image->draw(canvas,
                      {left(piece.leading, piece.size.width), top, piece.size.width, piece.size.height});
  }
  if (!shown.textLayout || shown.textLayout->lines.empty()) return;
  const double top = shown.baseline - shown.textLayout->firstBaseline();
  canvas.drawText(*shown.textLayout, {left(shown.textLeading, shown.textLayout->size.width), top},
                  textColor_);
}

}  // namespace linewatch::ui
