#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace linewatch {

/// One row of the table of settings, from which the file is parsed and written, and from which the command's
/// list, its help and the window's page are made. Every value has a text; in the file a toggle is a boolean,
/// and all others are strings.
struct Setting {
  enum class Kind { toggle, choice, text };

  std::string_view key;
  Kind kind;
  /// The allowed values of a choice, in the order to show them; empty for other kinds.
  std::span<const std::string_view> choices;
  /// The allowed values in words.
  std::string_view allowed;
  std::string_view defaultText;
  /// What it is for, for the help.
  std::string_view about;
  /// Puts the value into the settings; false if it is not allowed.
  bool (*take)(const std::string& text, Settings& settings);

  bool isAllowed(const std::string& text) const;
  /// Why a text is not allowed, and what is.
  std::string refusal(const std::string& text) const;
};

/// All settings, in the order to show them.
std::span<const Setting> settingTable();

// The rows that code names.
extern const Setting& kLanguageSetting;
extern const Setting& kTextSizeSetting;
extern const Setting& kRefreshSetting;
extern const Setting& kAnalyticsSetting;
extern const Setting& kTraySetting;
extern const Setting& kQuietHoursSetting;
extern const Setting& kAutostartSetting;

/// Null for an unknown key.
const Setting* settingWithKey(std::string_view key);
/// The key that a misspelt one most likely stands for.
std::optional<std::string_view> nearestSettingKey(std::string_view key);

/// A value as the user may write it on the command line, in its usual form: "on" is "true". Other texts stay.
std::string usualText(const Setting& setting, const std::string& text);

/// Parses a whole number of seconds ("90", "90s") or minutes ("2m") from 30 s to 30 min; absent for anything
/// else.
std::optional<Seconds> parseRefresh(std::string_view text);

std::string_view nameOf(AppearanceChoice choice);
std::string_view nameOf(TrayChoice choice);

}  // namespace linewatch
