#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/command_line.h"
#include "app/rider_texts.h"
#include "desktop/desktop_platform.h"
#include "incidents/result.h"
#include "shared/failure.h"
#include "shared/outcome.h"

namespace linewatch::app {

/// One run of the program. The desktop platform is installed while the session lives.
class Session {
 public:
  using Adjustment = std::function<void(desktop::DesktopSettings&)>;

  /// `adjust` changes the platform's settings for the command; may be empty.
  static Outcome<std::unique_ptr<Session>> open(const CommonOptions& options, const Adjustment& adjust = {});
  /// For commands that show feeds. Reads which feeds there are; an error if that fails.
  static Outcome<std::unique_ptr<Session>> openWithFeeds(const CommonOptions& options,
                                                         const Adjustment& adjust = {});
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  desktop::DesktopPlatform& platform() { return *platform_; }
  /// The texts in the user's language.
  const RiderTexts& texts() const { return texts_; }
  const UserLocale& locale() const { return locale_; }
  /// Fetches the favourite lines with their incidents, like the widget, and waits for the result.
  std::shared_ptr<const RVResult> fetch();
  /// Without favourites nothing reads the feed on the command line. This reads it, and returns its error;
  /// absent if it can be read.
  std::optional<Error> unusedFeedError();

 private:
  Session(std::shared_ptr<desktop::DesktopPlatform> platform, const UserLocale& locale);

  std::shared_ptr<desktop::DesktopPlatform> platform_;
  UserLocale locale_;
  RiderTexts texts_;
};

/// The user's language and region, from the options, the settings or the environment.
UserLocale localeOf(const CommonOptions& options);

}  // namespace linewatch::app
