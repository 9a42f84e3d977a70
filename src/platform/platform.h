#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeindex>

#include "shared/mutex.h"

namespace linewatch {

class AnalyticsEventFactory;
class AnalyticsLogger;
class Compressor;
class Device;
class FavoritesContainer;
class IconManager;
class IncidentStringProvider;
class KeyedArchiver;
class Localization;
class Log;
class MainLoop;
class MapURLBuilder;
class PreferencesStore;
class RandomSource;
class RemoteFavoritesPersister;
class ShieldManager;
class SystemController;
class TransitService;
class UsageRecorder;
class UserSession;

namespace ui {
class ImageSource;
class InterfaceSettings;
class NotificationCenter;
class TextEngine;
}  // namespace ui

/// Everything outside the widget: one object for each role. The header of a role states its contract. The
/// objects live as long as the platform. Main thread, except where a comment says otherwise.
class Platform {
 public:
  virtual ~Platform() = default;

  /// Any thread.
  virtual Log& log() = 0;
  /// Any thread.
  virtual MainLoop& mainLoop() = 0;
  virtual RandomSource& randomSource() = 0;
  virtual Localization& localization() = 0;
  virtual IncidentStringProvider& incidentStringProvider() = 0;
  virtual KeyedArchiver& keyedArchiver() = 0;
  virtual Compressor& compressor() = 0;
  virtual TransitService& transitService() = 0;
  virtual UserSession& userSession() = 0;
  virtual MapURLBuilder& mapURLBuilder() = 0;
  virtual SystemController& systemController() = 0;
  virtual Device& device() = 0;
  virtual UsageRecorder& usageRecorder() = 0;
  virtual AnalyticsEventFactory& analyticsEventFactory() = 0;
  virtual AnalyticsLogger& analyticsLogger() = 0;
  virtual ui::TextEngine& textEngine() = 0;
  virtual ui::ImageSource& imageSource() = 0;
  virtual ui::InterfaceSettings& interfaceSettings() = 0;
  virtual ui::NotificationCenter& notificationCenter() = 0;

  /// A new store object of the named suite. Never null.
  virtual std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) = 0;
  /// A new reader of the companion application's favourites. Never null.
  virtual std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() = 0;
  /// A new container that reads through the persister; with a null one it has no favourites. Never null.
  virtual std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) = 0;

  /// New managers that draw icons and shields, without a cache. Never null.
  virtual std::shared_ptr<IconManager> makeIconManager() = 0;
  virtual std::shared_ptr<ShieldManager> makeShieldManager() = 0;

  /// The platform's single T. The first call makes it with `make`, which must not call `once` itself. Any
  /// thread.
  template <class T>
  std::shared_ptr<T> once(const std::function<std::shared_ptr<T>()>& make) {
    return std::static_pointer_cast<T>(
        onceOfType(typeid(T), [&]() -> std::shared_ptr<void> { return make(); }));
  }

 private:
  std::shared_ptr<void> onceOfType(std::type_index type, const std::function<std::shared_ptr<void>()>& make)
      LINEWATCH_EXCLUDES(onceMutex_);

  Mutex onceMutex_;
  std::map<std::type_index, std::shared_ptr<void>> once_ LINEWATCH_GUARDED_BY(onceMutex_);
};

/// Makes `platform` the platform that `platform()` returns, in place of the former one. The process entry
/// calls this before it makes the widget; null removes the platform. Main thread.
void installPlatform(std::shared_ptr<Platform> platform);

/// The installed platform, for the widget; other code takes the roles it needs in its constructor. Without an
/// installed platform this ends the process: that is a programming error. Any thread.
Platform& platform();

}  // namespace linewatch
