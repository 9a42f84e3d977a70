#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/autostart.h"
#include "app/commands.h"
#include "app/rider_texts.h"
#include "app/text_table.h"
#include "machine/terminal_line.h"
#include "settings/user_settings.h"
#include "shared/environment.h"
#include "shared/failure.h"
#include "shared/value.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

/// The settings of a run, with the entry by which the desktop starts the panel.
struct SettingsOfRun {
  UserSettings& user;
  Autostart autostart;

  SettingValue find(const Setting& setting) const { return autostart.find(user, setting); }
};

/// The source of a value in the JSON object.
std::string_view sourceName(SettingSource source) {
  constexpr std::array<std::string_view, 5> kNames = {"default", "remembered", "file", "commandLine",
                                                      "desktop"};
  return kNames.at(static_cast<std::size_t>(source));
}

std::string sourceInWords(SettingSource source, const RiderTexts& texts) {
  constexpr std::array<std::string_view, 5> kNames = {"SettingDefault", "SettingRemembered", "SettingInFile",
                                                      "SettingOnCommandLine", "SettingByDesktop"};
  return texts(kNames.at(static_cast<std::size_t>(source)));
}

Value valueForm(const Setting& setting, std::string_view text) {
  return setting.kind == Setting::Kind::toggle ? Value(text == "true") : Value(text);
}

Dictionary settingForm(const Setting& setting, const SettingValue& value) {
  Array choices;
  for (const std::string_view choice : setting.choices) choices.push_back(valueForm(setting, choice));
  return {{"key", setting.key},
          {"value", valueForm(setting, value.text)},
          {"source", sourceName(value.source)},
          {"default", valueForm(setting, setting.defaultText)},
          {"choices", std::move(choices)},
          {"about", setting.about}};
}

Dictionary settingsForm(const SettingsOfRun& settings) {
  Array forms;
  for (const Setting& setting : settingTable()) forms.push_back(settingForm(setting, settings.find(setting)));
  Array faults;
  for (const std::string& fault : settings.user.faults()) faults.push_back(fault);
  return {{"version", 1},
          {"file", settings.user.file().empty() ? noValue() : Value(settings.user.file().string())},
          {"settings", std::move(forms)},
          {"faults", std::move(faults)}};
}

/// Where a value comes from. A file that cannot be read turns the recording off, which has to be said.
std::string originInWords(const UserSettings& settings, const SettingValue& value, const RiderTexts& texts) {
  const bool isLost = value.source == SettingSource::file && !settings.isReadable();
  return isLost ? texts("SettingUnreadable") : sourceInWords(value.source, texts);
}

std::string settingsText(const SettingsOfRun& settings, const RiderTexts& texts, const TerminalStyle& style) {
  std::vector<std::vector<TableCell>> rows;
  for (const Setting& setting : settingTable()) {
    const SettingValue value = settings.find(setting);
    const std::string shown = value.text.empty() ? "\"\"" : terminalLine(value.text);
    rows.push_back({{.text = std::string(setting.key)},
                    {.text = shown},
                    {.text = originInWords(settings.user, value, texts), .isFaint = true}});
  }
  const std::string file = settings.user.file().string();
  return textTable(rows, style) + (file.empty() ? "" : paragraph(texts("SettingsFile", {file}), 2, style));
}

Report printSettings(const SettingsOfRun& settings, const Setting* setting, bool isJson,
                     const RiderTexts& texts, const TerminalStyle& style) {
  Report report;
  // The log names the mistakes.
  report.status = settings.user.isReadable() ? 0 : 2;
  if (isJson) {
    report.output =
        jsonText(setting ? settingForm(*setting, settings.find(*setting)) : settingsForm(settings)) + "\n";
  } else {
    report.output =
        setting ? terminalLine(settings.find(*setting).text) + "\n" : settingsText(settings, texts, style);
  }
  return report;
}

Report unknownSetting(const RiderTexts& texts, const std::string& key) {
  const auto nearest = nearestSettingKey(key);
  const std::string refusal = texts("NoSuchSetting", {key});
  return refusedWith(nearest ? texts("DidYouMean", {RiderTexts::Phrase{refusal}, std::string(*nearest)})
                             : refusal);
}

/// The allowed values, e.g. "true, false". They are words of the settings file, so they are not translated.
std::string allowedValues(const RiderTexts& texts, const Setting& setting) {
  if (&setting == &kRefreshSetting) return "30s – 30m";
  if (&setting == &kLanguageSetting) return texts.list(std::vector<std::string>{"auto", "de", "pt-BR", "…"});
  const std::vector<std::string> choices(setting.choices.begin(), setting.choices.end());
  return texts.list(choices);
}

Report refusedValue(const RiderTexts& texts, const Setting& setting, const std::string& text) {
  const std::string allowed = allowedValues(texts, setting);
  if (allowed.empty()) return refused(failure(FailureCode::invalid, setting.key, "", setting.refusal(text)));
  return refusedWith(texts("SettingRefused", {std::string(setting.key), text, RiderTexts::Phrase{allowed}}));
}

Report changeSetting(const SettingsOfRun& settings, const Setting& setting, const SettingsCommand& command,
                     const RiderTexts& texts, const TerminalStyle& style) {
  const std::string text = command.unsets ? std::string() : usualText(setting, *command.value);
  if (!command.unsets && !setting.isAllowed(text)) return refusedValue(texts, setting, text);
  // The log has named the mistake.
  if (!settings.user.isReadable()) return {.output = {}, .complaint = {}, .status = 2};
  if (&setting == &kAutostartSetting) {
    if (const auto failed = settings.autostart.apply(text == "true")) return refused(*failed);
  }
  const auto error = command.unsets ? settings.user.unset(setting) : settings.user.set(setting, text);
  if (error) return refused(*error);
  if (command.json) return printSettings(settings, &setting, true, texts, style);
  const std::string now = settings.find(setting).text;
  return Report::of(paragraph(texts(command.unsets ? "SettingIsDefault" : "SettingIs",
                                    {command.key, now.empty() ? texts("SettingEmpty") : now}),
                              kMessageIndent, style));
}

}  // namespace

Report settings(Session& session, const SettingsCommand& command, const CommonOptions& options,
                const TerminalStyle& style) {
  const SettingsOfRun settings{session.platform().settings(),
                               Autostart(processEnvironment, options.stateDir)};
  const RiderTexts& texts = session.texts();
  const Setting* const setting = settingWithKey(command.key);
  if (!setting && !command.key.empty()) return unknownSetting(texts, command.key);
  if (!setting || (!command.unsets && !command.value))
    return printSettings(settings, setting, command.json, texts, style);
  if (command.unsets && command.value)
    return refused(failure(FailureCode::invalid, command.key, "", "--unset takes no value"));
  return changeSetting(settings, *setting, command, texts, style);
}

}  // namespace linewatch::app
