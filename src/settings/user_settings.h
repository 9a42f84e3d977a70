#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/remembered_settings.h"
#include "settings/setting_table.h"
#include "settings/settings_document.h"
#include "shared/error.h"

namespace linewatch {

class IcuLocalization;

/// Bytes. A larger settings file is refused.
inline constexpr std::size_t kLargestSettingsFile = std::size_t{64} << 10;

/// Where the value of a setting comes from; a later source wins over an earlier one. The desktop can switch
/// the start at login on and off by itself; UserSettings knows nothing of that.
enum class SettingSource : std::uint8_t { usual, remembered, file, commandLine, desktop };

struct SettingValue {
  std::string text;
  SettingSource source = SettingSource::usual;

  bool operator==(const SettingValue&) const = default;
};

/// The settings in force: those of the command line, of the file, what was remembered before there was a
/// file, and the defaults. The file is read on first use; without a file nothing is parsed. Main thread.
class UserSettings {
 public:
  /// Texts by the setting's key.
  using Given = std::map<std::string, std::string, std::less<>>;

  /// `file`: the settings file; empty for a run without one. `given`: the values of the command line.
  explicit UserSettings(std::filesystem::path file, Given given = {});

  /// To be called before values are asked for that may be remembered. `remembered` may be null.
  void setRemembered(std::unique_ptr<RememberedSettings> remembered) { remembered_ = std::move(remembered); }

  const std::filesystem::path& file() const { return file_; }
  SettingValue find(const Setting& setting) const;
  /// All settings.
  Settings values() const;
  /// All settings, without those that are only remembered. To be called while the saved state is locked.
  Settings withoutRemembered() const;

  /// The mistakes in the file, one line each: "FILE:LINE:COLUMN: what is wrong". Also an error of reading it.
  std::vector<std::string> faults() const;
  /// The same in the language of the texts.
  std::vector<std::string> faults(IcuLocalization& texts) const;
  /// Whether the file can be read and is TOML, or does not exist. If not, the values of its last readable
  /// contents in this run hold; at the start the defaults, and nothing is recorded.
  bool isReadable() const;

  /// Reads the file again; true if it has changed.
  bool reread();

  /// Writes the value to the file, which is made if there is none. The setting then no longer has a value
  /// from the command line. Everything else in the file stays byte for byte. Nothing is written if the value
  /// is wrong, or if the file cannot be read or is not TOML.
  std::optional<Error> set(const Setting& setting, const std::string& text);
  /// Removes the value from the file, so that the default holds.
  std::optional<Error> unset(const Setting& setting);

 private:
  struct Contents {
    SettingsDocument document;
    std::optional<Error> error;
    bool exists = false;
  };

  Contents& contents() const;
  Contents read() const;
  const SettingsDocument& documentInForce() const;
  std::optional<SettingValue> findHere(const Setting& setting) const;
  std::optional<Error> write(const Setting& setting, const std::optional<std::string>& text);

  std::filesystem::path file_;
  Given given_;
  std::unique_ptr<RememberedSettings> remembered_;
  mutable std::optional<Contents> contents_;
  /// The last contents that were TOML, while the present ones are not.
  std::optional<SettingsDocument> lastReadable_;
};

}  // namespace linewatch
