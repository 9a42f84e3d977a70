#include "settings/setting_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

#include "shared/failure.h"
#include "shared/nearest_name.h"
#include "shared/shell_words.h"

namespace linewatch {

namespace {

constexpr std::array<std::string_view, 3> kAppearances = {"auto", "light", "dark"};
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

bool takeAppearance(const std::string& text, Settings& settings) {
  const auto* const found = std::ranges::find(kAppearances, text);
  if (found == kAppearances.end()) return false;
  settings.appearance = static_cast<AppearanceChoice>(found - kAppearances.begin());
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

bool takeCatalogue(const std::string& text, Settings& settings) {
  settings.catalogue = text;
  return !text.empty();
}

using Kind = Setting::Kind;

constexpr std::array<Setting, 9> kTable{{
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
     "Light or dark; auto: the same as the desktop", takeAppearance},
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
}};

}  // namespace

const Setting& kLanguageSetting = kTable[0];
const Setting& kTextSizeSetting = kTable[1];
const Setting& kRefreshSetting = kTable[3];
const Setting& kAnalyticsSetting = kTable[7];

bool Setting::isAllowed(const std::string& text) const {
  Settings ignored;
  return take(text, ignored);
}

std::string Setting::refusal(const std::string& text) const {
  const auto words = shellWords(text);
  if (take == takeCompanion && !words) return sentenceOf(words.error());
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

}  // namespace linewatch
