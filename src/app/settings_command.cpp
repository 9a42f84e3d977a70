#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/commands.h"
#include "app/text_table.h"
#include "machine/terminal_line.h"
#include "settings/user_settings.h"
#include "shared/failure.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

using nlohmann::ordered_json;

/// Where the value comes from, as a key of the JSON object.
std::string nameOf(SettingSource source) {
  switch (source) {
    case SettingSource::usual:
      return "default";
    case SettingSource::remembered:
      return "remembered";
    case SettingSource::file:
      return "file";
    case SettingSource::commandLine:
      return "commandLine";
  }
  return {};
}

std::string inWords(SettingSource source) {
  switch (source) {
    case SettingSource::usual:
      return "default";
    case SettingSource::remembered:
      return "chosen earlier in the panel or by a command";
    case SettingSource::file:
      return "settings file";
    case SettingSource::commandLine:
      return "command line";
  }
  return {};
}

ordered_json jsonValue(const Setting& setting, std::string_view text) {
  if (setting.kind == Setting::Kind::toggle) return text == "true";
  return std::string(text);
}

ordered_json jsonOf(const Setting& setting, const SettingValue& value) {
  ordered_json form{{"key", setting.key},
                    {"value", jsonValue(setting, value.text)},
                    {"source", nameOf(value.source)},
                    {"default", jsonValue(setting, setting.defaultText)}};
  if (setting.kind == Setting::Kind::choice) form["choices"] = setting.choices;
  form["about"] = setting.about;
  return form;
}

std::string textOf(const ordered_json& form) {
  return form.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

/// The status of a command that prints settings of this file. Each fault has its line in the log.
Report reportOn(const UserSettings& settings) {
  Report report;
  report.status = settings.isReadable() ? 0 : 2;
  return report;
}

Report list(const UserSettings& settings, bool isJson, const TerminalStyle& style) {
  Report report = reportOn(settings);
  if (isJson) {
    ordered_json form{
        {"version", 1}, {"file", settings.file().string()}, {"settings", ordered_json::array()}};
    for (const Setting& setting : settingTable())
      form["settings"].push_back(jsonOf(setting, settings.find(setting)));
    form["faults"] = settings.faults();
    report.output = textOf(form);
    return report;
  }
  std::vector<std::vector<TableCell>> rows;
  for (const Setting& setting : settingTable()) {
    const SettingValue value = settings.find(setting);
    const std::string shown = value.text.empty() ? "\"\"" : terminalLine(value.text);
    rows.push_back({{.text = std::string(setting.key)},
                    {.text = shown},
                    {.text = inWords(value.source), .isFaint = true}});
  }
  report.output = textTable(rows, style);
  if (!settings.file().empty())
    report.output += paragraph("The file: " + terminalLine(settings.file().string()), 2, style);
  return report;
}

Report print(const UserSettings& settings, const Setting& setting, bool isJson) {
  Report report = reportOn(settings);
  const SettingValue value = settings.find(setting);
  report.output = isJson ? textOf(jsonOf(setting, value)) : terminalLine(value.text) + "\n";
  return report;
}

Report unknownSetting(const std::string& key) {
  const auto nearest = nearestSettingKey(key);
  return refused(failure(FailureCode::notFound, "setting \"" + key + "\"", "",
                         nearest ? "there is no such setting; did you mean " + std::string(*nearest) + "?"
                                 : "there is no such setting; linewatch settings lists them all"));
}

}  // namespace

Report settings(Session& session, const SettingsCommand& command, const TerminalStyle& style) {
  UserSettings& settings = session.platform().settings();
  if (command.key.empty()) return list(settings, command.json, style);
  const Setting* const setting = settingWithKey(command.key);
  if (!setting) return unknownSetting(command.key);
  if (command.unsets && command.value)
    return refused(failure(FailureCode::invalid, command.key, "", "--unset takes no value"));
  if (command.unsets || command.value) {
    const auto error = command.unsets ? settings.unset(*setting)
                                      : settings.set(*setting, usualText(*setting, *command.value));
    if (error) return refused(*error);
  }
  if (command.json || (!command.unsets && !command.value)) return print(settings, *setting, command.json);
  const std::string text = settings.find(*setting).text;
  return Report::of(command.key + " is " + (text.empty() ? "empty" : terminalLine(text)) +
                    (command.unsets ? ", the default\n" : "\n"));
}

}  // namespace linewatch::app
