#include "app/autostart.h"

#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "desktop/bus_name.h"
#include "settings/setting_table.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "shared/installation.h"

namespace linewatch::app {

namespace {

/// Marks the entries that this program may change.
constexpr std::string_view kMark = "X-LineWatch-Setting=autostart";

std::filesystem::path autostartFolder(const Environment& environment) {
  const std::filesystem::path configuration = valueOf(environment, "XDG_CONFIG_HOME");
  if (configuration.is_absolute()) return configuration / "autostart";
  const std::filesystem::path home = valueOf(environment, "HOME");
  return home.is_absolute() ? home / ".config" / "autostart" : std::filesystem::path();
}

/// An argument of an entry's Exec key. The string rules of entries and the quoting rules of Exec both apply.
std::string execArgument(const std::string& argument) {
  std::string quoted = "\"";
  for (const char c : argument) {
    if (c == '\\') quoted += R"(\\\)";
    if (c == '"' || c == '`' || c == '$') quoted += R"(\\)";
    if (c == '%') quoted += '%';
    quoted += c;
  }
  return quoted + "\"";
}

/// Whether the desktop starts what the entry describes. Desktops switch an entry off by one of two keys.
bool isOnIn(const std::string& entry) {
  std::istringstream lines(entry);
  for (std::string line; std::getline(lines, line);) {
    std::erase_if(line, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
    if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false") return false;
  }
  return true;
}

}  // namespace

Autostart::Autostart(const Environment& environment, std::optional<std::string> stateFolder)
    : stateFolder_(std::move(stateFolder)) {
  const std::filesystem::path folder = autostartFolder(environment);
  const std::string name =
      stateFolder_ ? desktop::busNameFor(*stateFolder_, environment) : desktop::kApplicationId;
  if (!folder.empty() && !name.empty()) file_ = folder / (name + ".desktop");
}

/// Desktops skip the entry once the program of `TryExec` is gone, e.g. with its package.
std::string Autostart::entry() const {
  const std::string program = (installationRoot() / "bin" / "linewatch").string();
  std::string command = execArgument(program) + " panel --hidden";
  if (stateFolder_)
    command += " --state-dir " + execArgument(std::filesystem::absolute(*stateFolder_).string());
  return "[Desktop Entry]\nType=Application\nName=LineWatch\nIcon=org.linewatch.LineWatch\nTryExec=" +
         program + "\nExec=" + command + "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n" +
         std::string(kMark) + "\n";
}

bool Autostart::isOn() const {
  if (file_.empty()) return false;
  const auto present = contentsOf(file_);
  return present && isOnIn(*present);
}

SettingValue Autostart::find(const UserSettings& settings, const Setting& setting) const {
  SettingValue chosen = settings.find(setting);
  if (&setting != &kAutostartSetting) return chosen;
  const std::string now = isOn() ? "true" : "false";
  return chosen.text == now ? chosen : SettingValue{now, SettingSource::desktop};
}

std::optional<Error> Autostart::apply(bool isOn) const {
  if (file_.empty())
    return isOn ? std::optional(failure("autostart", "", "neither XDG_CONFIG_HOME nor HOME names a folder"))
                : std::nullopt;
  const auto present = contentsOf(file_);
  if (present && present->find(kMark) == std::string::npos) {
    if (isOnIn(*present) == isOn) return std::nullopt;
    return failure(file_.string(), "", "LineWatch has not written this file; change or remove it yourself");
  }
  if (!isOn) {
    std::error_code error;
    if (present && !std::filesystem::remove(file_, error) && error)
      return failure(failureCodeOf(error), file_.string(), "", error.message());
    return std::nullopt;
  }
  if (present && *present == entry()) return std::nullopt;
  if (auto error = makeFolders(file_.parent_path())) return error;
  return writeWhole(file_, entry());
}

}  // namespace linewatch::app
