#include "settings/setting_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include "notices/weekly_hours.h"
#include "shared/failure.h"
#include "shared/nearest_name.h"
#include "shared/shell_words.h"

namespace linewatch {

namespace {

constexpr std::array<std::string_view, 3> kAppearances = {"auto", "light", "dark"};
constexpr std::array<std::string_view, 4> kTrayChoices = {"ask", "keep", "quit", "off"};
constexpr std::array<std::string_view, 2> kToggles = {"true", "false"};

/// Puts the value into its member unless it is absent.
template <class T>
bool put(std::optional<T> value, T& member) {
  if (!value) return false;
  member = *std::move(value);
  return true;
}

template <bool Settings::*member>
bool takeToggle(const std::string& text, Settings& settings) {
  settings.*member = text == "true";
  return std::ranges::find(kToggles, text) != kToggles.end();
}

bool takeLanguage(const std::string& text, Settings& settings) {
  settings.language = text == "auto" ? std::nullopt : UserLocale::parse(text);
  return text == "auto" || settings.language;
}

bool takeTextSize(const std::string& text, Settings& settings) {
  return put(ui::textSizeCategoryNamed(text), settings.textSize);
}

/// `choices` are the names of the enumeration's values, in their order.
template <auto& choices, auto member>
bool takeChoice(const std::string& text, Settings& settings) {
  const auto* const found = std::ranges::find(choices, text);
  if (found == choices.end()) return false;
  using Choice = std::remove_reference_t<decltype(settings.*member)>;
  settings.*member = static_cast<Choice>(found - choices.begin());
  return true;
}

bool takeRefresh(const std::string& text, Settings& settings) {
  return put(parseRefresh(text), settings.refresh);
}

bool takeCompanion(const std::string& text, Settings& settings) {
  auto words = shellWords(text);
  if (!words) return false;
  settings.companion = *std::move(words);
  return true;
}

bool takeQuietHours(const std::string& text, Settings& settings) {
  settings.quietHours.reset();
  if (text.empty()) return true;
  auto hours = notices::WeeklyHours::parse(text);
  if (!hours) return false;
  settings.quietHours = *std::move(hours);
  return true;
}

bool takeCatalogue(const std::string& text, Settings& settings) {
  settings.catalogue = text;
  return !text.empty();
}

using Kind = Setting::Kind;

constexpr std::array<Setting, 12> kTable{{
    {"language",
     Kind::text,
     {},
     "\"auto\", or a language such as \"de\" or \"pt-BR\"",
     "auto",
     "Language of all texts; auto: the language of the system",
     takeLanguage},
    {"text-size", Kind::choice, ui::kTextSizeCategoryNames,
     "one of XS, S, M, L, XL, XXL, XXXL, AX1, AX2, AX3, AX4, AX5", "L", "Text size of the panel",
     takeTextSize},
    {"appearance", Kind::choice, kAppearances, "one of auto, light, dark", "auto",
     "Light or dark; auto: the same as the desktop", takeChoice<kAppearances, &Settings::appearance>},
    {"refresh",
     Kind::text,
     {},
     "a time from 30s to 30m, such as \"90s\" or \"2m\"",
     "2m",
     "How often the panel asks for news",
     takeRefresh},
    {"on-top", Kind::toggle, kToggles, "true or false", "false",
     "Whether the panel stays in front of other windows", takeToggle<&Settings::staysOnTop>},
    {"frameless", Kind::toggle, kToggles, "true or false", "false",
     "Whether the panel has no title bar and no frame", takeToggle<&Settings::isFrameless>},
    {"companion",
     Kind::text,
     {},
     "a command, or nothing",
     "",
     "A command that opens rows instead of LineWatch's own windows",
     takeCompanion},
    {"analytics", Kind::toggle, kToggles, "true or false", "true",
     "Whether the use of the widget is recorded, on this machine only",
     takeToggle<&Settings::recordsAnalytics>},
    {"catalogue",
     Kind::text,
     {},
     "a file or a URL",
     kPublicCatalogue,
     "The catalogue in which feeds are searched, a CSV file",
     takeCatalogue},
    {"tray", Kind::choice, kTrayChoices, "one of ask, keep, quit, off", "ask",
     "Whether a closed panel stays in the tray; off: no icon there",
     takeChoice<kTrayChoices, &Settings::tray>},
    {"quiet-hours",
     Kind::text,
     {},
     "hours such as \"22 to 7\" or \"weekdays 22 to 7\", or nothing",
     "",
     "Hours without notifications; one summary ends them",
     takeQuietHours},
    {"autostart", Kind::toggle, kToggles, "true or false", "false",
     "Whether the desktop starts the panel at login, in the tray", takeToggle<&Settings::startsAtLogin>},
}};

}  // namespace

const Setting& kLanguageSetting = kTable[0];
const Setting& kTextSizeSetting = kTable[1];
const Setting& kRefreshSetting = kTable[3];
const Setting& kAnalyticsSetting = kTable[7];
const Setting& kTraySetting = kTable[9];
const Setting& kQuietHoursSetting = kTable[10];
const Setting& kAutostartSetting = kTable[11];

bool Setting::isAllowed(const std::string& text) const {
  Settings ignored;
  return take(text, ignored);
}

std::string Setting::refusal(const std::string& text) const {
  const auto words = shellWords(text);
  if (take == takeCompanion && !words) return sentenceOf(words.error());
  const auto hours = notices::WeeklyHours::parse(text);
  if (take == takeQuietHours && !hours) return sentenceOf(hours.error());
  return "\"" + text + "\" is not " + std::string(allowed);
}

std::span<const Setting> settingTable() { return kTable; }

const Setting* settingWithKey(std::string_view key) {
  const auto* const found = std::ranges::find(kTable, key, &Setting::key);
  return found == kTable.end() ? nullptr : found;
}

std::optional<std::string_view> nearestSettingKey(std::string_view key) {
  std::vector<std::string_view> keys;
  for (const Setting& setting : kTable) keys.push_back(setting.key);
  return nearestName(key, keys);
}

std::string usualText(const Setting& setting, const std::string& text) {
  if (setting.kind != Setting::Kind::toggle) return text;
  if (text == "on" || text == "yes") return "true";
  if (text == "off" || text == "no") return "false";
  return text;
}

std::optional<Seconds> parseRefresh(std::string_view text) {
  const bool isMinutes = text.ends_with('m');
  if (isMinutes || text.ends_with('s')) text.remove_suffix(1);
  std::uint32_t count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, trouble] = std::from_chars(text.data(), end, count);
  if (trouble != std::errc() || stop != end) return std::nullopt;
  const Seconds interval{static_cast<double>(count) * (isMinutes ? 60 : 1)};
  return interval >= Seconds(30) && interval <= Seconds(1800) ? std::optional(interval) : std::nullopt;
}

std::string_view nameOf(AppearanceChoice choice) { return kAppearances.at(static_cast<std::size_t>(choice)); }

std::string_view nameOf(TrayChoice choice) { return kTrayChoices.at(static_cast<std::size_t>(choice)); }

}  // namespace linewatch
