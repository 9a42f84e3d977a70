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
#include "desktop/window/window_colors.h"
#include "ui/image.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kRowInset = 16;
constexpr double kRowGap = 12;
constexpr double kShieldColumn = 52;
constexpr double kMarkSize = 22;
constexpr double kRoomAboveText = 9;
constexpr double kLineGap = 2;
constexpr double kRowRadius = 8;
constexpr double kStroke = 1.6;
constexpr float kHoverAlpha = 0.06F;

/// Mirrors a rectangle of a left-to-right row if the interface is right-to-left.
QRectF mirrored(const QRectF& place, const QStyleOptionViewItem& option) {
  if (option.direction == Qt::LeftToRight) return place;
  const QRectF row = option.rect;
  return {row.left() + row.right() - place.right(), place.top(), place.width(), place.height()};
}

QRectF placeOfShield(const QRectF& row) {
  return {row.left() + kRowInset, row.top(), kShieldColumn, row.height()};
}

QRectF placeOfMark(const QRectF& row) {
  return {row.right() - kRowInset - kMarkSize, row.center().y() - kMarkSize / 2, kMarkSize, kMarkSize};
}

void paintState(QPainter& painter, const QStyleOptionViewItem& option) {
  const QRectF row = QRectF(option.rect).adjusted(4, 1, -4, -1);
  if (option.state & QStyle::State_MouseOver) {
    QColor color = option.palette.color(QPalette::Text);
    color.setAlphaF(kHoverAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(row, kRowRadius, kRowRadius);
  }
  if (!(option.state & QStyle::State_HasFocus)) return;
  painter.setPen(QPen(option.palette.color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(row, kRowRadius, kRowRadius);
}

/// A tick in a filled circle, or a plus in an empty one.
void paintMark(QPainter& painter, const QStyleOptionViewItem& option, const QRectF& place, bool isChecked) {
  const QColor color = option.palette.color(QPalette::Link);
  painter.setPen(isChecked ? QPen(Qt::NoPen) : QPen(color, kStroke));
  painter.setBrush(isChecked ? QBrush(color) : QBrush(Qt::NoBrush));
  painter.drawEllipse(place.adjusted(1, 1, -1, -1));
  const auto at = [&](double x, double y) {
    return QPointF(place.left() + x * place.width(), place.top() + y * place.height());
  };
  QPainterPath sign(isChecked ? at(0.28, 0.52) : at(0.5, 0.28));
  sign.lineTo(isChecked ? at(0.44, 0.67) : at(0.5, 0.72));
  if (!isChecked) sign.moveTo(at(0.28, 0.5));
  sign.lineTo(isChecked ? at(0.72, 0.35) : at(0.72, 0.5));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(isChecked ? option.palette.color(QPalette::Base) : color, kStroke, Qt::SolidLine,
                      Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(sign);
}

bool asksForChange(const QEvent& event) {
  if (event.type() == QEvent::MouseButtonRelease)
    return static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Space || key == Qt::Key_Select;
}

}  // namespace

LineDelegate::LineDelegate(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step,
                           const QFont& nameFont, const QFont& detailsFont, QObject* parent)
    : QStyledItemDelegate(parent),
      cache_(std::move(cache)),
      step_(step),
      nameFont_(nameFont),
      detailsFont_(detailsFont) {}

QSize LineDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
  const double text = QFontMetricsF(nameFont_).height() + kLineGap + QFontMetricsF(detailsFont_).height();
  return {0, static_cast<int>(std::ceil(text + 2 * kRoomAboveText))};
}

void LineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const QRectF row = option.rect;
  paintState(*painter, option);
  if (!(index.flags() & Qt::ItemIsEnabled)) painter->setOpacity(0.6);
  const QRectF shield = placeOfShield(row);
  const QRectF mark = placeOfMark(row);
  paintShield(*painter, option, index, mirrored(shield, option));
  const QRectF names(QPointF(shield.right() + kRowGap, row.top()),
                     QPointF(mark.left() - kRowGap, row.bottom()));
  paintNames(*painter, option, index, mirrored(names, option));
  paintMark(*painter, option, mirrored(mark, option), index.data(Qt::CheckStateRole).toInt() == Qt::Checked);
  painter->restore();
}

/// A shield that does not fit its column gets a smaller size.
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
  painter.save();
  painter.setClipRect(place);
  QtCanvas canvas(painter, appearanceOf(option.palette), scale);
  const double x = place.center().x() - image->size().width / 2;
  const double y = place.center().y() - image->size().height / 2;
  image->draw(canvas, {std::max(x, place.left()), y, image->size().width, image->size().height});
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
  const double nameHeight = QFontMetricsF(nameFont_).height();
  const double top = hasDetails ? place.top() + kRoomAboveText : place.center().y() - nameHeight / 2;
  const double next = paintText(Qt::DisplayRole, nameFont_, QPalette::Text, top);
  if (hasDetails) paintText(kDetailsRole, detailsFont_, kFaintRole, next);
}

bool LineDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem&,
                               const QModelIndex& index) {
  constexpr Qt::ItemFlags kNeeded = Qt::ItemIsEnabled | Qt::ItemIsUserCheckable;
  if ((index.flags() & kNeeded) != kNeeded || !asksForChange(*event)) return false;
  const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  return model->setData(index, static_cast<int>(isChecked ? Qt::Unchecked : Qt::Checked), Qt::CheckStateRole);
}

}  // namespace linewatch::desktop
