#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/command_line.h"
#include "desktop/desktop_platform.h"
#include "incidents/result.h"
#include "shared/failure.h"
#include "shared/outcome.h"

namespace linewatch::app {

/// A run of the program: the desktop platform, installed for as long as the session lives.
class Session {
 public:
  using Adjustment = std::function<void(desktop::DesktopSettings&)>;

  /// `adjust`, which may be empty, adds what the command needs of the platform.
  static Outcome<std::unique_ptr<Session>> open(const CommonOptions& options, const Adjustment& adjust = {});
  /// For what needs to know which feeds are shown: an error when that cannot be read.
  static Outcome<std::unique_ptr<Session>> openWithFeeds(const CommonOptions& options,
                                                         const Adjustment& adjust = {});
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  desktop::DesktopPlatform& platform() { return *platform_; }
  /// Fetches the favourites with their incidents, as the widget does, and waits for the result.
  std::shared_ptr<const RVResult> fetch();
  /// What is wrong with the feed that the command line names, where there are no favourites to fetch it for.
  std::optional<Error> faultOfUnusedFeed();

 private:
  explicit Session(std::shared_ptr<desktop::DesktopPlatform> platform);

  std::shared_ptr<desktop::DesktopPlatform> platform_;
};

/// The user's language and region: the option's, else the environment's.
UserLocale localeOf(const CommonOptions& options);

}  // namespace linewatch::app
