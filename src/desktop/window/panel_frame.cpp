#include "desktop/window/panel_frame.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

#include "desktop/window/window_colors.h"

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

struct FreeLater {
  void operator()(void* answer) const { std::free(answer); }
};
template <class Answer>
using XcbAnswer = std::unique_ptr<Answer, FreeLater>;

xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name) {
  const auto question =
      xcb_intern_atom(connection, /*only_if_exists=*/1, static_cast<std::uint16_t>(name.size()), name.data());
  const XcbAnswer<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, question, nullptr));
  if (!answer) return XCB_ATOM_NONE;
  return answer->atom;
}

/// Whether windows may be translucent. On X11 that needs a compositing manager.
bool isComposited() {
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* const connection = x11 == nullptr ? nullptr : x11->connection();
  if (connection == nullptr) return true;
  // The manager of the first screen owns this selection; Qt's windows are on that screen.
  const xcb_atom_t manager = atomNamed(connection, "_NET_WM_CM_S0");
  if (manager == XCB_ATOM_NONE) return false;
  const XcbAnswer<xcb_get_selection_owner_reply_t> answer(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, manager), nullptr));
  return answer && answer->owner != XCB_WINDOW_NONE;
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
