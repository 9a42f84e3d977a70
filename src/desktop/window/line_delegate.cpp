#include "desktop/window/line_delegate.h"

#include <QAbstractItemModel>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/qt_canvas.h"
#include "desktop/window/favorite_model.h"
#include "desktop/window/list_row.h"
#include "desktop/window/window_colors.h"
#include "ui/image.h"

namespace linewatch::desktop {

namespace {

// Points at the default text size.
constexpr double kRowGap = 12;
constexpr double kShieldColumn = 52;
constexpr double kStarSize = 22;
constexpr double kMenuSize = 28;
constexpr double kGripStep = 4;
constexpr double kDotRadius = 1.3;
constexpr double kRoomAboveHeading = 14;
constexpr double kRoomBelowHeading = 4;
constexpr double kRoomAboveText = 9;
constexpr double kLineGap = 2;
constexpr double kStroke = 1.6;
constexpr float kMenuAlpha = 0.06F;
/// How much the star and the buttons grow with the text, whose letters are less high than they are.
constexpr double kSignGrowth = 0.6;

/// Mirrors a rectangle of a left-to-right row if the interface is right-to-left.
QRectF mirrored(const QRectF& place, const QStyleOptionViewItem& option) {
  if (option.direction == Qt::LeftToRight) return place;
  const QRectF row = option.rect;
  return {row.left() + row.right() - place.right(), place.top(), place.width(), place.height()};
}

QRectF centered(const QRectF& row, double left, double size) {
  return {left, row.center().y() - size / 2, size, size};
}

QPainterPath starIn(const QRectF& place) {
  constexpr int kPoints = 5;
  constexpr double kInnerRadius = 0.42;
  QPainterPath star;
  for (int i = 0; i < 2 * kPoints; ++i) {
    const double radius = place.width() / 2 * (i % 2 == 0 ? 1 : kInnerRadius);
    const double angle = (-0.5 + double(i) / kPoints) * M_PI;
    // Half of a star's height lies above its centre's place, so it looks centred a little lower.
    const QPointF point(place.center().x() + radius * std::cos(angle),
                        place.center().y() + 0.04 * place.height() + radius * std::sin(angle));
    i == 0 ? star.moveTo(point) : star.lineTo(point);
  }
  star.closeSubpath();
  return star;
}

/// A filled star for a favourite, else its outline.
void paintStar(QPainter& painter, const QStyleOptionViewItem& option, const QRectF& place, bool isChecked) {
  const QColor color = option.palette.color(QPalette::Link);
  painter.setPen(
      QPen(color, kStroke * place.width() / kStarSize, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(isChecked ? QBrush(color) : QBrush(Qt::NoBrush));
  painter.drawPath(starIn(place.adjusted(1, 1, -1, -1)));
}

void paintDots(QPainter& painter, const QColor& color, const QRectF& place, double growth, int columns,
               int rows) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  for (int column = 0; column < columns; ++column) {
    for (int row = 0; row < rows; ++row) {
      const double x = place.center().x() + (column - (columns - 1) / 2.0) * kGripStep * growth;
      const double y = place.center().y() + (row - (rows - 1) / 2.0) * kGripStep * growth;
      painter.drawEllipse(QPointF(x, y), kDotRadius * growth, kDotRadius * growth);
    }
  }
}

void paintMenu(QPainter& painter, const QStyleOptionViewItem& option, const QRectF& place, double growth) {
  QColor color = option.palette.color(QPalette::Text);
  paintDots(painter, color, place, growth, 3, 1);
  color.setAlphaF(kMenuAlpha);
  painter.setBrush(color);
  painter.drawEllipse(place);
}

bool asksForChange(const QEvent& event) {
  if (event.type() == QEvent::MouseButtonRelease)
    return static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Space || key == Qt::Key_Select;
}

}  // namespace

LineDelegate::LineDelegate(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, double textScale,
                           Fonts fonts, QObject* parent)
    : QStyledItemDelegate(parent),
      cache_(std::move(cache)),
      step_(step),
      fonts_(std::move(fonts)),
      textGrowth_(std::max(1.0, textScale)),
      signGrowth_(1 + kSignGrowth * (textGrowth_ - 1)) {
  const double text = QFontMetricsF(fonts_.name).height() + kLineGap + QFontMetricsF(fonts_.details).height();
  lineHeight_ = static_cast<int>(std::ceil(text + 2 * kRoomAboveText));
  headingHeight_ = static_cast<int>(
      std::ceil(kRoomAboveHeading + QFontMetricsF(fonts_.heading).height() + kRoomBelowHeading));
}

LineDelegate::Places LineDelegate::placesIn(const QStyleOptionViewItem& option, bool hasMenu) const {
  const QRectF row = option.rect;
  const double starSize = kStarSize * signGrowth_, menuSize = kMenuSize * signGrowth_;
  const QRectF star = centered(row, row.right() - kRowInset - starSize, starSize);
  const QRectF menu = centered(row, star.left() - kRowGap / 2 - menuSize, menuSize);
  const QRectF shield(row.left() + kRowInset, row.top(), kShieldColumn * textGrowth_, row.height());
  const QRectF names(QPointF(shield.right() + kRowGap, row.top()),
                     QPointF((hasMenu ? menu : star).left() - kRowGap, row.bottom()));
  const QRectF grip(row.left(), row.top(), kRowInset, row.height());
  return {mirrored(grip, option), mirrored(shield, option), mirrored(names, option), mirrored(menu, option),
          mirrored(star, option)};
}

QRect LineDelegate::menuRect(const QRect& row, Qt::LayoutDirection direction) const {
  QStyleOptionViewItem option;
  option.rect = row;
  option.direction = direction;
  return placesIn(option, true).menu.toAlignedRect();
}

QSize LineDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
  return {0, index.data(FavoriteModel::kHeadingRole).toBool() ? headingHeight_ : lineHeight_};
}

void LineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  if (index.data(FavoriteModel::kHeadingRole).toBool()) {
    paintHeading(*painter, option, index);
    return painter->restore();
  }
  const bool hasMenu = index.data(FavoriteModel::kFavoriteRole).toBool();
  const Places places = placesIn(option, hasMenu);
  paintRowState(*painter, option);
  paintShield(*painter, option, index, places.shield);
  paintNames(*painter, option, index, places.names);
  // The grip has the row's inset for itself, which does not grow.
  if (index.data(FavoriteModel::kOrderedRole).toBool())
    paintDots(*painter, option.palette.color(kFaintRole), places.grip, 1, 2, 3);
  if (hasMenu) paintMenu(*painter, option, places.menu, signGrowth_);
  paintStar(*painter, option, places.star, index.data(Qt::CheckStateRole).toInt() == Qt::Checked);
  painter->restore();
}

void LineDelegate::paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
  const QRectF place = QRectF(option.rect).adjusted(kRowInset, kRoomAboveHeading, -kRowInset, 0);
  painter.setFont(fonts_.heading);
  painter.setPen(option.palette.color(kFaintRole));
  const QString text =
      QFontMetricsF(fonts_.heading).elidedText(index.data().toString(), Qt::ElideRight, place.width());
  painter.drawText(place, static_cast<int>(Qt::AlignLeading | Qt::AlignTop), text);
}

/// A shield that does not fit its column gets a smaller size, and is drawn smaller if none fits.
void LineDelegate::paintShield(QPainter& painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index, const QRectF& place) const {
  const auto artwork = index.data(kArtworkRole).value<SharedArtwork>();
  const double scale = painter.device()->devicePixelRatioF();
  std::shared_ptr<const ui::Image> image;
  for (std::int64_t step = step_; artwork && step >= 0; --step) {
    image = cache_->image(*artwork, {step, scale});
    if (!image || image->size().width <= place.width()) break;
  }
  if (!image) return;
  const auto [width, height] = image->size();
  const double fit = std::min(1.0, place.width() / width);
  painter.save();
  painter.translate(place.center());
  painter.scale(fit, fit);
  painter.translate(-place.center());
  QtCanvas canvas(painter, appearanceOf(option.palette), scale);
  image->draw(canvas, {place.center().x() - width / 2, place.center().y() - height / 2, width, height});
  painter.restore();
}

void LineDelegate::paintNames(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                              const QRectF& place) const {
  const auto paintText = [&](int role, const QFont& font, QPalette::ColorRole color, double top) {
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    painter.setPen(option.palette.color(color));
    const QString text = metrics.elidedText(index.data(role).toString(), Qt::ElideRight, place.width());
    painter.drawText(QRectF(place.left(), top, place.width(), metrics.height()),
                     static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), text);
    return top + metrics.height() + kLineGap;
  };
  const bool hasDetails = !index.data(kDetailsRole).toString().isEmpty();
  const double nameHeight = QFontMetricsF(fonts_.name).height();
  const double top = hasDetails ? place.top() + kRoomAboveText : place.center().y() - nameHeight / 2;
  const double next = paintText(Qt::DisplayRole, fonts_.name, QPalette::Text, top);
  if (hasDetails) paintText(kDetailsRole, fonts_.details, kFaintRole, next);
}

bool LineDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                               const QModelIndex& index) {
  constexpr Qt::ItemFlags kNeeded = Qt::ItemIsEnabled | Qt::ItemIsUserCheckable;
  if ((index.flags() & kNeeded) != kNeeded || !asksForChange(*event)) return false;
  if (event->type() == QEvent::MouseButtonRelease && index.data(FavoriteModel::kFavoriteRole).toBool()) {
    const auto& click = static_cast<const QMouseEvent&>(*event);
    if (showMenu_ && placesIn(option, true).menu.contains(click.position())) {
      showMenu_(index);
      return true;
    }
  }
  const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  return model->setData(index, static_cast<int>(isChecked ? Qt::Unchecked : Qt::Checked), Qt::CheckStateRole);
}

}  // namespace linewatch::desktop
