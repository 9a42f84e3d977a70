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

/// One run of the program: the desktop platform, which is installed for as long as the session lives.
class Session {
 public:
  using Adjustment = std::function<void(desktop::DesktopSettings&)>;

  /// `adjust` may be empty. It changes the platform's settings for the command.
  static Outcome<std::unique_ptr<Session>> open(const CommonOptions& options, const Adjustment& adjust = {});
  /// For commands that show feeds: also reads which feeds there are, and fails when that cannot be read.
  static Outcome<std::unique_ptr<Session>> openWithFeeds(const CommonOptions& options,
                                                         const Adjustment& adjust = {});
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  desktop::DesktopPlatform& platform() { return *platform_; }
  /// Fetches the favourite lines with their incidents, as the widget does, and waits for the result.
  std::shared_ptr<const RVResult> fetch();
  /// The error of the feed on the command line when it has no favourites, since nothing else would read it.
  /// Absent when the feed can be read.
  std::optional<Error> unusedFeedError();

 private:
  explicit Session(std::shared_ptr<desktop::DesktopPlatform> platform);

  std::shared_ptr<desktop::DesktopPlatform> platform_;
};

/// The user's language and region: from the options, else from the environment.
UserLocale localeOf(const CommonOptions& options);

}  // namespace linewatch::app
