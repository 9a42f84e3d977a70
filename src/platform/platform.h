#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <typeindex>

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

/// The world around the system: one object a role. Each role's header says what it promises. The objects live
/// as long as the platform.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual Log& log() = 0;
  virtual MainLoop& mainLoop() = 0;
  virtual RandomSource& randomSource() = 0;
  virtual Localization& localization() = 0;
  virtual IncidentStringProvider& incidentStringProvider() = 0;
  virtual KeyedArchiver& keyedArchiver() = 0;
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

  /// The library's, unless a platform has one of its own.
  virtual Compressor& compressor();

  /// A new store object on the named suite.
  virtual std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) = 0;
  /// A new way to the companion application's favourites, and a new container over one.
  virtual std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() = 0;
  virtual std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) = 0;

  /// New managers that draw icons and shields; neither keeps an atlas of what it drew.
  virtual std::shared_ptr<IconManager> makeIconManager() = 0;
  virtual std::shared_ptr<ShieldManager> makeShieldManager() = 0;

  /// The one T of this platform, made by `make` when it is first asked for. Any thread.
  template <class T>
  std::shared_ptr<T> once(const std::function<std::shared_ptr<T>()>& make) {
    return std::static_pointer_cast<T>(
        onceOfType(typeid(T), [&]() -> std::shared_ptr<void> { return make(); }));
  }

 private:
  std::shared_ptr<void> onceOfType(std::type_index type, const std::function<std::shared_ptr<void>()>& make);

  std::mutex onceMutex_;
  std::map<std::type_index, std::shared_ptr<void>> once_;
};

/// Makes `platform` the one that the system reaches, in place of the one before. The process entry calls this
/// before it makes anything of the system; null takes the platform away again.
void installPlatform(std::shared_ptr<Platform> platform);

/// The installed platform. Calling this without one is a programming error and ends the process.
Platform& platform();

}  // namespace linewatch
