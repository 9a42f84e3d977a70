#include "desktop/window/panel_frame.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <QWindow>
#include <algorithm>

#include "desktop/window/window_colors.h"
#include "desktop/window/x11_selection.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kFramelessRadius = 14;
constexpr int kShadowReach = 14;
constexpr int kShadowDrop = 4;
// Without a shadow the sides still have to be wide enough for the mouse.
constexpr int kBareSide = 4;
// The shadow's opacity beside the card.
constexpr double kShadowStrength = 0.26;
constexpr int kWidestGrip = kShadowReach;

/// Whether windows may be translucent. On X11 that needs a compositing manager.
bool isComposited() {
  xcb_connection_t* const connection = x11Connection();
  // The manager of the first screen owns this selection; Qt's windows are on that screen.
  return !connection || x11SelectionOwner(connection, x11Atom(connection, "_NET_WM_CM_S0"));
}

/// Layers of growing size add up to a shadow that fades outwards.
void paintShadow(QPainter& painter, const QRectF& card) {
  painter.setPen(Qt::NoPen);
  constexpr double kSumOfWeights = kShadowReach * (kShadowReach + 1) / 2.0;
  for (int reach = 1; reach <= kShadowReach; ++reach) {
    const int weight = kShadowReach + 1 - reach;
    QColor shade(Qt::black);
    shade.setAlphaF(static_cast<float>(kShadowStrength * weight / kSumOfWeights));
    painter.setBrush(shade);
    const QRectF layer = card.adjusted(-reach, -reach, reach, reach).translated(0, kShadowDrop);
    painter.drawRoundedRect(layer, kFramelessRadius + reach, kFramelessRadius + reach);
  }
}

}  // namespace

// The attribute must be set before the native window exists, so it is set for both kinds of frame.
PanelFrame::PanelFrame(QWidget& window) : window_(window), isComposited_(isComposited()) {
  window_.setAttribute(Qt::WA_TranslucentBackground, isComposited_);
  window_.setMouseTracking(true);
}

bool PanelFrame::isFrameless() const { return window_.windowFlags().testFlag(Qt::FramelessWindowHint); }

void PanelFrame::setFrameless(bool isFrameless) { setFlag(Qt::FramelessWindowHint, isFrameless); }

void PanelFrame::setStaysOnTop(bool staysOnTop) { setFlag(Qt::WindowStaysOnTopHint, staysOnTop); }

/// QWidget::setWindowFlag would hide a visible window; the native window takes the flag at once.
void PanelFrame::setFlag(Qt::WindowType flag, bool isSet) {
  Qt::WindowFlags flags = window_.windowFlags();
  flags.setFlag(flag, isSet);
  if (flags == window_.windowFlags()) return;
  window_.overrideWindowFlags(flags);
  if (QWindow* const native = window_.windowHandle()) native->setFlags(flags);
}

// ---- The card ----

bool PanelFrame::hasShadow() const { return isFrameless() && isComposited_; }

QMargins PanelFrame::margins() const {
  if (!isFrameless()) return {};
  if (!hasShadow()) return {kBareSide, 1, kBareSide, 1};
  return {kShadowReach, kShadowReach - kShadowDrop, kShadowReach, kShadowReach + kShadowDrop};
}

double PanelFrame::cornerRadius() const { return hasShadow() ? kFramelessRadius : 0; }

QRectF PanelFrame::cardRect() const {
  const QRectF whole(window_.rect());
  return hasShadow() ? whole.marginsRemoved(QMarginsF(margins())) : whole;
}

void PanelFrame::paint(QPainter& painter) const {
  const QPalette palette = cardPalette(window_.palette());
  const QRectF card = cardRect();
  painter.setRenderHint(QPainter::Antialiasing);
  if (hasShadow()) paintShadow(painter, card);
  painter.setPen(isFrameless() ? QPen(palette.color(kOutlineRole), 1) : QPen(Qt::NoPen));
  painter.setBrush(palette.color(QPalette::Window));
  const double outside = hasShadow() ? 0.5 : isFrameless() ? -0.5 : 0;
  painter.drawRoundedRect(card.adjusted(-outside, -outside, outside, outside), cornerRadius(),
                          cornerRadius());
}

// ---- Mouse ----

Qt::Edges PanelFrame::sideAt(const QPointF& point) const {
  if (!isFrameless()) return {};
  const int grip = std::min(kWidestGrip, margins().left());
  if (point.x() < grip) return Qt::LeftEdge;
  return point.x() >= window_.width() - grip ? Qt::RightEdge : Qt::Edges();
}

/// The window manager moves and resizes the window. Without one, the program moves it.
void PanelFrame::mousePressed(QMouseEvent& event, const QRect& header) {
  QWindow* const native = window_.windowHandle();
  if (!isFrameless() || event.button() != Qt::LeftButton || native == nullptr) return event.ignore();
  if (const Qt::Edges side = sideAt(event.position())) {
    native->startSystemResize(side);
  } else if (header.contains(event.position().toPoint()) && !native->startSystemMove()) {
    grip_ = event.globalPosition().toPoint() - window_.pos();
  }
}

void PanelFrame::mouseMoved(QMouseEvent& event) {
  if (grip_) return window_.move(event.globalPosition().toPoint() - *grip_);
  if (sideAt(event.position()))
    window_.setCursor(Qt::SizeHorCursor);
  else
    window_.unsetCursor();
}

void PanelFrame::mouseReleased() { grip_.reset(); }

}  // namespace linewatch::desktop
