#pragma once

#include <functional>
#include <list>
#include <memory>
#include <optional>

#include "desktop/presence/heard_platform.h"
#include "desktop/window/panel_updates.h"
#include "shared/date.h"
#include "status/transit_status.h"

namespace linewatch::desktop {

/// Follows the news of the favourite lines while the panel runs. While the panel is shown, the widget asks
/// and this object hears the answers. While it is hidden, e.g. in the tray, nobody else asks, so this object
/// does, by the same rules as a visible panel (see PanelUpdates).
///
/// Tray, notifications and the bus show what this object says, and fetch nothing themselves. Main thread.
class NewsWatch {
 public:
  /// Adds to an answer what the feeds say of it, which may take a while: details of incidents are not read
  /// while a feed is being fetched. Calls `done` once, on the main thread, in the order of the answers.
  using Describe =
      std::function<void(const HeardAnswer& answer, std::function<void(const TransitNews&)> done)>;
  using Listener = std::function<void(const TransitStatus&)>;

  /// Asks nothing before the first `setPanelShown`. The platform must outlive this object.
  NewsWatch(Platform& asked, Describe describe, PanelUpdates::Settings settings);
  ~NewsWatch();
  NewsWatch(const NewsWatch&) = delete;
  NewsWatch& operator=(const NewsWatch&) = delete;

  /// The platform that the widget must use for its answers to be heard. It may outlive this object.
  std::shared_ptr<Platform> platform() const { return heard_; }

  /// Whether the panel is on screen. To be called at the start and after each change.
  void setPanelShown(bool isShown);

  // Reasons to ask again at once. They count only while the panel is hidden, because the widget of a shown
  // panel asks by itself.
  void refresh();
  void favoritesDidChange();
  void connectionDidReturn();
  /// To be called when the machine may have slept, or when its clock may have been set.
  void checkClock();
  void setMetered(bool isMetered);
  /// The time between two questions.
  void setRefresh(Seconds refresh);

  /// The status at the last answer; null before the first one.
  const std::shared_ptr<const TransitStatus>& status() const { return status_; }
  /// When the last answer came; absent before the first one.
  std::optional<Date> answered() const { return answered_; }

  /// Calls `listener` after each answer, also when nothing has changed, until the result is destroyed.
  /// Listeners are called in the order of their registration. A listener may not destroy this object.
  [[nodiscard]] std::shared_ptr<void> listen(Listener listener);

 private:
  using Listeners = std::list<std::shared_ptr<Listener>>;

  void ask();
  void didHear(const HeardAnswer& answer);
  void setStatus(const TransitNews& news);

  MainLoop& mainLoop_;
  std::shared_ptr<HeardPlatform> heard_;
  Describe describe_;
  Seconds refresh_;
  PanelUpdates updates_;
  std::shared_ptr<FavoritesContainer> favorites_;
  /// Absent before the first `setPanelShown`.
  std::optional<bool> isPanelShown_;
  std::shared_ptr<const TransitStatus> status_;
  std::optional<Date> answered_;
  bool hasFailed_ = false;
  std::shared_ptr<Listeners> listeners_ = std::make_shared<Listeners>();
};

}  // namespace linewatch::desktop
