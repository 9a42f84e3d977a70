#include "desktop/window/control_style.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include "desktop/window/focus_ring.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kLeastMark = 16;
constexpr int kStopPadding = 7;
// Shares of a text's or a mark's height.
constexpr double kMarkHeight = 0.9;
constexpr double kBoxRadius = 0.2;
constexpr double kRadioDot = 0.4;
constexpr double kChevron = 0.3;
constexpr double kDisabledOpacityOfMark = 0.45;

int markSize(const QFontMetrics& text) {
  return std::max(kLeastMark, static_cast<int>(std::lround(kMarkHeight * text.height())));
}

bool isChecked(const QStyleOption& option) {
  return option.state & (QStyle::State_On | QStyle::State_NoChange);
}

/// At least a pixel and a bit, so that one pixel of the outline has its full colour.
double strokeOf(const QStyleOption& option) { return std::max(1.2, option.rect.height() / 13.0); }

/// The body of a check box or a radio button: filled if it is checked, else an outline.
void preparePainter(QPainter& painter, const QStyleOption& option) {
  painter.setRenderHint(QPainter::Antialiasing);
  if (!(option.state & QStyle::State_Enabled)) painter.setOpacity(kDisabledOpacityOfMark);
  const QColor fill = option.palette.color(QPalette::Link);
  painter.setPen(QPen(isChecked(option) ? fill : option.palette.color(kFaintRole), strokeOf(option)));
  painter.setBrush(isChecked(option) ? QBrush(fill) : QBrush(Qt::NoBrush));
}

QRectF bodyOf(const QStyleOption& option) {
  const double inset = strokeOf(option) / 2;
  return QRectF(option.rect).adjusted(inset, inset, -inset, -inset);
}

void paintCheckBox(QPainter& painter, const QStyleOption& option) {
  painter.save();
  preparePainter(painter, option);
  const QRectF body = bodyOf(option);
  const double radius = body.height() * kBoxRadius;
  painter.drawRoundedRect(body, radius, radius);
  if (isChecked(option)) {
    const auto at = [&body](double x, double y) {
      return QPointF(body.left() + x * body.width(), body.top() + y * body.height());
    };
    painter.setPen(QPen(option.palette.color(QPalette::Base), body.height() / 7, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{at(0.24, 0.53), at(0.42, 0.71), at(0.76, 0.31)});
  }
  painter.restore();
}

void paintRadioButton(QPainter& painter, const QStyleOption& option) {
  painter.save();
  preparePainter(painter, option);
  const QRectF body = bodyOf(option);
  painter.drawEllipse(body);
  if (isChecked(option)) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(option.palette.color(QPalette::Base));
    const double radius = body.height() * kRadioDot / 2;
    painter.drawEllipse(body.center(), radius, radius);
  }
  painter.restore();
}

/// An outlined field with a chevron at its end.
void paintComboBox(QPainter& painter, const QStyleOption& option) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  if (!(option.state & QStyle::State_Enabled)) painter.setOpacity(kDisabledOpacityOfMark);
  paintFieldOutline(painter, option.rect, option.palette, option.state & QStyle::State_HasFocus);
  const double size = kChevron * option.fontMetrics.height();
  const double center = option.direction == Qt::LeftToRight ? option.rect.right() - kFieldInset - size
                                                            : option.rect.left() + kFieldInset + size;
  const QPointF middle(center, QRectF(option.rect).center().y());
  painter.setPen(QPen(option.palette.color(QPalette::Text), std::max(1.5, size / 4), Qt::SolidLine,
                      Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF{middle + QPointF(-size / 2, -size / 4), middle + QPointF(0, size / 4),
                                 middle + QPointF(size / 2, -size / 4)});
  painter.restore();
}

class ControlStyle final : public QProxyStyle {
 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    switch (element) {
      case PE_IndicatorCheckBox:
      case PE_IndicatorItemViewItemCheck:
        return paintCheckBox(*painter, *option);
      case PE_IndicatorRadioButton:
        return paintRadioButton(*painter, *option);
      case PE_FrameFocusRect:
        return paintFocusRing(*painter, QRectF(option->rect), option->palette);
      default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
  }
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    if (control == CC_ComboBox) return paintComboBox(*painter, *option);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
  }
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override {
    if (control != CC_ComboBox || part != SC_ComboBoxEditField)
      return QProxyStyle::subControlRect(control, option, part, widget);
    const QRect text = option->rect.adjusted(kFieldInset, 0, -kFieldInset - option->fontMetrics.height(), 0);
    return visualRect(option->direction, option->rect, text);
  }
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override {
    const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
    const int textHeight = option->fontMetrics.height();
    if (type == CT_ComboBox) return {usual.width() + 2 * kFieldInset, textHeight + 2 * kFieldInset + 2};
    if (type == CT_ItemViewItem) return {usual.width(), textHeight + 2 * kStopPadding};
    return usual;
  }
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
        if (widget != nullptr) return markSize(widget->fontMetrics());
        return QProxyStyle::pixelMetric(metric, option, widget);
      case PM_CheckBoxLabelSpacing:
      case PM_RadioButtonLabelSpacing:
        return widget != nullptr ? markSize(widget->fontMetrics()) / 2 : kLeastMark / 2;
      default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
  }
};

}  // namespace

void setControlStyle(QWidget& control) {
  // One for all controls. Like them it ends before the application, which owns it.
  static QPointer<ControlStyle> style;
  if (!style) {
    style = new ControlStyle;
    style->setParent(qApp);
  }
  control.setStyle(style);
}

}  // namespace linewatch::desktop
