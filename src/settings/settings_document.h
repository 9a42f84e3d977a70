#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/setting_table.h"
#include "settings/toml_text.h"
#include "shared/outcome.h"

namespace linewatch {

/// A mistake in the settings file.
struct SettingsFault {
  TextPlace place;
  /// One line: what is wrong, and what holds instead.
  std::string reason;
  /// Where the mistake is a setting's value: its key.
  std::string_view key = {};
  /// The text of the table "failure" that says the same in other languages, and its arguments.
  std::string_view textKey = {};
  std::vector<std::string> arguments = {};

  bool operator==(const SettingsFault&) const = default;
};

/// The text of a settings file, parsed. Changes keep everything else byte for byte.
class SettingsDocument {
 public:
  SettingsDocument() = default;
  explicit SettingsDocument(std::string text);

  const std::string& text() const { return text_; }
  /// Whether the text is TOML. If not, it has one fault and no values.
  bool isWellFormed() const { return isWellFormed_; }
  /// In the order of the file.
  const std::vector<SettingsFault>& faults() const { return faults_; }
  /// The value's text; absent if the file has none, or a wrong one.
  std::optional<std::string> valueOf(const Setting& setting) const;
  /// Whether the file has a value that is not allowed.
  bool hasWrongValue(const Setting& setting) const;

  /// The file's text with this value, which must be allowed. Fails when the text is not TOML, or when the
  /// setting is written in a way that only a person can change.
  Outcome<std::string> with(const Setting& setting, const std::string& value) const;
  /// The file's text without the setting; the same text if it is not there.
  Outcome<std::string> without(const Setting& setting) const;

 private:
  void readEntry(const TomlEntry& entry);
  const TomlEntry* entryOf(const Setting& setting) const;
  std::string withNewLine(const std::string& line) const;
  Outcome<std::string> checked(const Setting& setting, std::string changed,
                               const std::optional<std::string>& value) const;

  std::string text_;
  bool isWellFormed_ = true;
  std::vector<TomlEntry> entries_;
  std::vector<SettingsFault> faults_;
  std::map<std::string_view, std::string> values_;
};

}  // namespace linewatch
