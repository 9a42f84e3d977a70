#include "app/screen/panel_tray.h"

#include <QApplication>
#include <QDBusConnection>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/window/portal_setting.h"
#include "notices/notice_rules.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "settings/setting_table.h"
#include "settings/user_settings.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// How long a panel that was started in the tray waits for one.
constexpr Seconds kTrayPatience{60};

bool isMutedLonger(const notices::NoticeRules& rules, const notices::Mute& mute) {
  return std::ranges::any_of(rules.mutes, [&mute](const notices::Mute& other) {
    return other.subject == mute.subject && other.until > mute.until;
  });
}

}  // namespace

PanelTray::PanelTray(Panel& panel, desktop::DesktopPlatform& platform, PanelPresence& presence,
                     const UserLocale& locale)
    : panel_(panel),
      platform_(platform),
      presence_(presence),
      locale_(locale),
      texts_(std::make_shared<const desktop::WindowTexts>(locale)),
      notices_(makeNotices()) {
  panel_.settingsDidChange = [this] { applySettings(); };
  panel_.window().installEventFilter(this);
  // Without the check for a bus Qt would try to start one, which blocks.
  if (const auto bus = desktop::sessionBus())
    trayWatch_ = std::make_unique<desktop::TrayWatch>(*bus, [this] { showIcon(); });
  applySettings();
  trayPatience_ = platform_.mainLoop().scheduleTimer(kTrayPatience, false, [this] {
    if (!icon_ && !isClosed_) panel_.window().show();
  });
  listening_ = presence_.news().listen([this](const TransitStatus& status) { statusDidChange(status); });
  if (presence_.news().status()) statusDidChange(*presence_.news().status());
}

PanelTray::~PanelTray() {
  panel_.settingsDidChange = [] {};
  QApplication::setQuitOnLastWindowClosed(true);
  queue_.finish();
  if (notices_) notices_->finish();
}

std::unique_ptr<desktop::RiderNotices> PanelTray::makeNotices() {
  const auto bus = desktop::sessionBus();
  if (!bus || !platform_.saved()) return nullptr;
  return std::make_unique<desktop::RiderNotices>(
      *bus, texts_, platform_.saved()->notices(), platform_.mainLoop(),
      desktop::RiderNotices::Services{
          .inBackground = [this](std::function<void()> work) { queue_.post(std::move(work)); },
          .open = [this](const notices::Notice& notice, const std::string& token) { open(notice, token); }});
}

void PanelTray::statusDidChange(const TransitStatus& status) {
  if (icon_) icon_->setStatus(status, platform_.mainLoop().now());
  if (notices_) notices_->take(status);
}

// ---- Settings ----

void PanelTray::applySettings() {
  const Settings before = std::exchange(settings_, platform_.settings().values());
  if (notices_) notices_->setQuietHours(settings_.quietHours);
  if (!icon_ || settings_.tray != before.tray) showIcon();
}

/// Shows the icon, if there is a tray. A panel that is hidden in the tray would be out of reach without it.
void PanelTray::showIcon() {
  const bool isWanted = settings_.tray != TrayChoice::off;
  if (!isWanted || !trayWatch_ || !trayWatch_->hasTray()) {
    const bool wasShown = std::exchange(icon_, nullptr) != nullptr;
    if ((wasShown || !isWanted) && !isClosed_) panel_.window().show();
  } else if (!icon_) {
    icon_ = std::make_unique<desktop::TrayIcon>(texts_, locale_, trayActions());
    if (presence_.news().status()) icon_->setStatus(*presence_.news().status(), platform_.mainLoop().now());
  }
  panelVisibilityDidChange();
}

desktop::TrayIcon::Actions PanelTray::trayActions() {
  desktop::TrayIcon::Actions actions{.togglePanel = [this] { togglePanel(); },
                                     .refresh = [this] { panel_.refreshNews(); },
                                     .mute = {},
                                     .showSettings = [this] { panel_.showSettings(); },
                                     // Unlike quit(), this asks no window for its consent.
                                     .quit = [] { QApplication::exit(); }};
  if (notices_) actions.mute = [this](Seconds time) { muteAll(time); };
  return actions;
}

void PanelTray::togglePanel() {
  const desktop::PanelWindow& window = panel_.window();
  if (window.isVisible() && !window.isMinimized())
    panel_.window().hide();
  else
    panel_.present();
}

void PanelTray::muteAll(Seconds time) {
  queue_.post([stored = platform_.saved()->notices(), now = platform_.mainLoop().now(), time]() mutable {
    const auto rules = stored.rules();
    std::optional<Error> error = rules ? std::nullopt : std::optional(rules.error());
    if (rules) {
      for (const notices::Subscription& subscription : rules->subscriptions) {
        const notices::Mute mute{.subject = subscription.line, .until = now + time};
        if (!error && !isMutedLonger(*rules, mute)) error = stored.mute(mute, now);
      }
    }
    if (error) logError("not muted: %@", {sentenceOf(*error)});
  });
}

/// Shows the details of the incidents that are still there, or else the panel.
void PanelTray::open(const notices::Notice& notice, const std::string& activationToken) {
  std::vector<std::uint64_t> muids;
  for (const notices::Notice::Entry& entry : notice.entries) {
    for (const notices::IncidentNews& incident : entry.incidents) muids.push_back(incident.muid);
  }
  const StoredIncidents incidents = presence_.incidents(muids);
  if (incidents.empty() || !panel_.showIncidents(incidents, activationToken)) panel_.present(activationToken);
}

// ---- Closing ----

bool PanelTray::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) isClosed_ = false;
  if (event->type() == QEvent::Show || event->type() == QEvent::Hide) panelVisibilityDidChange();
  if (event->type() != QEvent::Close) return QObject::eventFilter(watched, event);
  isClosed_ = !takeOverClose();
  if (isClosed_) return QObject::eventFilter(watched, event);
  event->ignore();
  return true;
}

/// A panel that is hidden in the tray, or waits for one, does not end when another window, such as the
/// settings, is closed. One that was closed ends with the last window.
void PanelTray::panelVisibilityDidChange() {
  const bool isShown = panel_.window().isVisible();
  QApplication::setQuitOnLastWindowClosed(isShown || isClosed_);
  if (icon_) icon_->setPanelShown(isShown);
}

bool PanelTray::takeOverClose() {
  if (!icon_ || !icon_->isShown()) return false;
  if (settings_.tray == TrayChoice::ask) {
    askAboutClosing();
    return true;
  }
  if (settings_.tray != TrayChoice::keep) return false;
  panel_.window().hide();
  return true;
}

void PanelTray::askAboutClosing() {
  if (std::exchange(isAsking_, true)) return;
  auto* const box = new QMessageBox(QMessageBox::Question, (*texts_)("Title"), (*texts_)("TrayQuestion"),
                                    QMessageBox::NoButton, &panel_.window());
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setInformativeText((*texts_)("TrayQuestionText"));
  QPushButton* const keep = box->addButton((*texts_)("TrayKeep"), QMessageBox::AcceptRole);
  QPushButton* const quit = box->addButton((*texts_)("Quit"), QMessageBox::DestructiveRole);
  box->setDefaultButton(keep);
  connect(box, &QMessageBox::finished, this, [this, box, keep, quit] {
    isAsking_ = false;
    if (box->clickedButton() == keep) chooseClosing(TrayChoice::keep);
    if (box->clickedButton() == quit) chooseClosing(TrayChoice::quit);
  });
  box->open();
}

/// The choice takes effect also if it cannot be saved; then the user is asked again next time.
void PanelTray::chooseClosing(TrayChoice choice) {
  const auto error = platform_.settings().set(kTraySetting, std::string(nameOf(choice)));
  if (error) logError("the choice is not saved: %@", {sentenceOf(*error)});
  settings_.tray = choice;
  panel_.window().close();
}

}  // namespace linewatch::app
