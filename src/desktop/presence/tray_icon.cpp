#include "desktop/presence/tray_icon.h"

#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QStringList>
#include <QSvgRenderer>
#include <QSystemTrayIcon>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "status/status_texts.h"

// Outside the namespace, as Qt wants it.
static void keepTrayDrawings() { Q_INIT_RESOURCE(tray); }

namespace linewatch::desktop {

namespace {

using State = TransitStatus::State;

/// The sizes of icons in trays, in pixels, up to 24 at twice the scale.
constexpr std::array kTraySizes = {16, 22, 24, 32, 44, 48, 64};
constexpr std::array<std::uint64_t, 3> kMuteHours = {1, 4, 12};
/// A tooltip with more lines would not fit beside a panel.
constexpr std::size_t kMostTooltipLines = 8;

QString drawingOf(State state) {
  switch (state) {
    case State::allClear:
      return QStringLiteral(":/tray/tray-clear.svg");
    case State::incidents:
      return QStringLiteral(":/tray/tray-incidents.svg");
    case State::unknown:
    case State::noFavorites:
      break;
  }
  return QStringLiteral(":/tray/tray-unknown.svg");
}

QIcon trayIconOf(State state) {
  keepTrayDrawings();
  QSvgRenderer drawing(drawingOf(state));
  QIcon icon;
  for (const int size : kTraySizes) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace

TrayIcon::TrayIcon(SharedWindowTexts texts, const UserLocale& locale, Actions actions)
    : texts_(std::move(texts)),
      statusTexts_(std::make_unique<IcuLocalization>(locale)),
      actions_(std::move(actions)),
      menu_(std::make_unique<QMenu>()),
      icon_(std::make_unique<QSystemTrayIcon>()) {
  makeMenu();
  icon_->setContextMenu(menu_.get());
  icon_->setToolTip((*texts_)("Title"));
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, menu_.get(),
                   [this](QSystemTrayIcon::ActivationReason reason) {
                     if (reason == QSystemTrayIcon::Trigger) actions_.togglePanel();
                   });
  showState(State::unknown);
  icon_->show();
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::makeMenu() {
  const auto add = [](QMenu& menu, const QString& text, std::function<void()> action) {
    return menu.addAction(text, [action = std::move(action)] { action(); });
  };
  panelAction_ = add(*menu_, (*texts_)("TrayHide"), [this] { actions_.togglePanel(); });
  add(*menu_, (*texts_)("Update"), [this] { actions_.refresh(); });
  if (actions_.mute) {
    QMenu* const mutes = menu_->addMenu((*texts_)("TrayMute"));
    for (const std::uint64_t hours : kMuteHours)
      add(*mutes, (*texts_)("ForHours", {hours}),
          [this, hours] { actions_.mute(Seconds(static_cast<double>(hours) * 3600)); });
  }
  add(*menu_, (*texts_)("Settings"), [this] { actions_.showSettings(); });
  menu_->addSeparator();
  add(*menu_, (*texts_)("Quit"), [this] { actions_.quit(); });
}

bool TrayIcon::isShown() const { return icon_->isVisible() && QSystemTrayIcon::isSystemTrayAvailable(); }

void TrayIcon::showState(State state) {
  if (std::exchange(shownState_, state) != state) icon_->setIcon(trayIconOf(state));
}

void TrayIcon::setStatus(const TransitStatus& status, Date now) {
  showState(status.state);
  QStringList lines{QString::fromStdString(statusSummary(status, *statusTexts_))};
  for (const std::string& line : statusDetails(status, now, *statusTexts_, kMostTooltipLines))
    lines << QString::fromStdString(line);
  // Texts of feeds must not be taken for markup, which some trays show.
  icon_->setToolTip(lines.join(QLatin1Char('\n')).replace(QLatin1Char('<'), QStringLiteral("‹")));
}

void TrayIcon::setPanelShown(bool isShown) {
  panelAction_->setText((*texts_)(isShown ? "TrayHide" : "TrayShow"));
}

}  // namespace linewatch::desktop
