#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "localization/user_locale.h"
#include "notices/weekly_hours.h"
#include "shared/date.h"
#include "ui/text_style.h"

namespace linewatch {

/// The public catalogue of feeds, a CSV file.
inline constexpr std::string_view kPublicCatalogue = "https://files.mobilitydatabase.org/feeds_v2.csv";

enum class AppearanceChoice : std::uint8_t { automatic, light, dark };

/// What the icon in the desktop's tray is for: whether the closed panel stays in it.
enum class TrayChoice : std::uint8_t {
  ask,   // the first time the panel is closed, the user is asked
  keep,  // the panel stays in the tray
  quit,  // the program ends
  off,   // no icon
};

/// The user's settings. Without any choice of the user they are these.
struct Settings {
  /// Absent: the language of the environment.
  std::optional<UserLocale> language = {};
  ui::TextSizeCategory textSize = ui::kDefaultTextSizeCategory;
  /// Automatic: the same as the desktop.
  AppearanceChoice appearance = AppearanceChoice::automatic;
  /// The time between two updates of the panel, 30 s to 30 min.
  Seconds refresh{120};
  bool staysOnTop = false;
  bool isFrameless = false;
  /// The words of the command that opens rows; empty: the program's own windows open them.
  std::vector<std::string> companion = {};
  bool recordsAnalytics = true;
  /// The catalogue of feeds: a file or a URL.
  std::string catalogue = std::string(kPublicCatalogue);

  TrayChoice tray = TrayChoice::ask;
  /// The hours without notifications; absent: none.
  std::optional<notices::WeeklyHours> quietHours = {};
  /// Whether the desktop starts the panel at login.
  bool startsAtLogin = false;

  bool operator==(const Settings&) const = default;
};

}  // namespace linewatch
