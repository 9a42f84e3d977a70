#include "settings/settings_document.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::size_t kLongestShownValue = 80;

/// The value as it stands in the file, for a message.
std::string shownValue(std::string_view text, const TomlEntry& entry) {
  const TextRange& range = entry.valueRange;
  std::string_view value = text.substr(range.begin, range.end - range.begin);
  value = value.substr(0, value.find('\n'));
  if (value.size() <= kLongestShownValue) return std::string(value);
  std::size_t end = kLongestShownValue;
  while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0U) == 0x80U) --end;
  return std::string(value.substr(0, end)) + "…";
}

/// The value's text if it has the kind of the setting. Seconds need no quotes.
std::optional<std::string> textOfValue(const Setting& setting, const TomlEntry& entry) {
  const bool isToggle = setting.kind == Setting::Kind::toggle;
  if (const auto* const value = std::get_if<bool>(&entry.value); value && isToggle)
    return *value ? "true" : "false";
  if (const auto* const value = std::get_if<std::string>(&entry.value); value && !isToggle) return *value;
  if (const auto* const value = std::get_if<std::int64_t>(&entry.value);
      value && setting.key == kRefreshSetting.key)
    return std::to_string(*value);
  return std::nullopt;
}

/// `shown`: the value as it stands in the file.
SettingsFault wrongValue(const Setting& setting, const std::string& shown, TextPlace place) {
  const bool isAnalytics = &setting == &kAnalyticsSetting;
  const std::string entry = std::string(setting.key) + " = " + shown;
  return {.place = place,
          .reason = entry + " is not allowed; write " + std::string(setting.allowed) +
                    (isAnalytics ? "; for now nothing is recorded" : "; for now the default holds"),
          .key = setting.key,
          .textKey = isAnalytics ? "LineWatch_Failure_SettingWrongOff" : "LineWatch_Failure_SettingWrong",
          .arguments = {entry}};
}

SettingsFault unknownKey(const std::string& key, TextPlace place) {
  SettingsFault fault{.place = place,
                      .reason = "there is no setting \"" + key + "\"",
                      .textKey = "LineWatch_Failure_SettingUnknown",
                      .arguments = {key}};
  if (const auto nearest = nearestSettingKey(key)) {
    fault.reason += "; did you mean " + std::string(*nearest) + "?";
    fault.textKey = "LineWatch_Failure_SettingUnknownNearest";
    fault.arguments.emplace_back(*nearest);
  }
  return fault;
}

SettingsFault notToml(const TomlFault& fault) {
  struct Words {
    std::string_view english, textKey;
  };
  // In the order of the kinds.
  constexpr Words kWords[] = {
      {"the line has too many dots", "LineWatch_Failure_SettingsUnreadable"},
      {"this character cannot be here", "LineWatch_Failure_SettingsCharacter"},
      {"the quote that begins here is not closed", "LineWatch_Failure_SettingsQuote"},
      {"this key stands in the file already", "LineWatch_Failure_SettingsRepeated"},
      {"this is not of the form: key = value", "LineWatch_Failure_SettingsUnreadable"}};
  const Words& words = kWords[static_cast<std::size_t>(fault.kind)];
  return {.place = fault.place, .reason = std::string(words.english), .textKey = words.textKey};
}

std::size_t endOfLine(std::string_view text, std::size_t place) {
  return std::min(text.find('\n', place), text.size());
}

std::size_t startOfLine(std::string_view text, std::size_t place) {
  const std::size_t before = place == 0 ? std::string_view::npos : text.rfind('\n', place - 1);
  return before == std::string_view::npos ? 0 : before + 1;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

std::string lineOf(const Setting& setting, const std::string& value) {
  const bool isToggle = setting.kind == Setting::Kind::toggle;
  return std::string(setting.key) + " = " + (isToggle ? value : tomlString(value));
}

}  // namespace

SettingsDocument::SettingsDocument(std::string text) : text_(std::move(text)) {
  if (isBlank(text_)) return;
  auto parsed = parseToml(text_);
  if (const auto* const fault = std::get_if<TomlFault>(&parsed)) {
    isWellFormed_ = false;
    faults_.push_back(notToml(*fault));
    return;
  }
  entries_ = std::get<std::vector<TomlEntry>>(std::move(parsed));
  for (const TomlEntry& entry : entries_) readEntry(entry);
}

void SettingsDocument::readEntry(const TomlEntry& entry) {
  const Setting* const setting = settingWithKey(entry.key);
  if (!setting) {
    faults_.push_back(unknownKey(entry.key, entry.keyPlace));
    return;
  }
  auto value = textOfValue(*setting, entry);
  if (value && setting->isAllowed(*value)) {
    values_.emplace(setting->key, *std::move(value));
  } else {
    faults_.push_back(wrongValue(*setting, shownValue(text_, entry), entry.valuePlace));
  }
}

std::optional<std::string> SettingsDocument::valueOf(const Setting& setting) const {
  const auto value = values_.find(setting.key);
  return value == values_.end() ? std::nullopt : std::optional(value->second);
}

bool SettingsDocument::hasWrongValue(const Setting& setting) const {
  return std::ranges::find(faults_, setting.key, &SettingsFault::key) != faults_.end();
}

const TomlEntry* SettingsDocument::entryOf(const Setting& setting) const {
  const auto entry = std::ranges::find(entries_, setting.key, &TomlEntry::key);
  return entry == entries_.end() ? nullptr : &*entry;
}

Outcome<std::string> SettingsDocument::with(const Setting& setting, const std::string& value) const {
  const TomlEntry* const entry = entryOf(setting);
  std::string changed = text_;
  const std::string line = lineOf(setting, value);
  if (entry) {
    const std::string literal = line.substr(line.find('=') + 2);
    changed.replace(entry->valueRange.begin, entry->valueRange.end - entry->valueRange.begin, literal);
  } else {
    changed = withNewLine(line);
  }
  return checked(setting, std::move(changed), value);
}

Outcome<std::string> SettingsDocument::without(const Setting& setting) const {
  const TomlEntry* const entry = entryOf(setting);
  if (!entry) return checked(setting, text_, std::nullopt);
  std::string changed = text_;
  std::size_t end = endOfLine(text_, entry->valueRange.end);
  const std::string_view rest =
      std::string_view(text_).substr(entry->valueRange.end).substr(0, end - entry->valueRange.end);
  std::size_t begin = entry->keyBegin;
  if (isBlank(rest)) {
    begin = startOfLine(text_, begin);
    end = std::min(end + 1, text_.size());
  } else {
    // A comment behind the value stays.
    end = entry->valueRange.end + rest.find_first_not_of(" \t");
  }
  changed.erase(begin, end - begin);
  return checked(setting, std::move(changed), std::nullopt);
}

/// The new line goes behind the last "key = value" that is in no section, or before the first section.
std::string SettingsDocument::withNewLine(const std::string& line) const {
  const std::string lineEnd = text_.find("\r\n") == std::string::npos ? "\n" : "\r\n";
  const auto section = std::ranges::find(entries_, true, &TomlEntry::isSection);
  std::string changed = text_;
  if (section != entries_.begin() && !entries_.empty()) {
    const std::size_t end = endOfLine(text_, std::prev(section)->end);
    if (end < text_.size()) return changed.insert(end + 1, line + lineEnd);
  } else if (section != entries_.end()) {
    return changed.insert(startOfLine(text_, section->keyBegin), line + lineEnd + lineEnd);
  }
  if (!changed.empty() && !changed.ends_with('\n')) changed += lineEnd;
  return changed + line + lineEnd;
}

/// An error unless the changed text is the old one but for this value.
Outcome<std::string> SettingsDocument::checked(const Setting& setting, std::string changed,
                                               const std::optional<std::string>& value) const {
  if (!isWellFormed_) {
    const SettingsFault& fault = faults_.front();
    return failure(FailureCode::malformed,
                   std::to_string(fault.place.line) + ":" + std::to_string(fault.place.column), "",
                   fault.reason);
  }
  const SettingsDocument after(changed);
  if (after.valueOf(setting) == value && (value || !after.entryOf(setting)) &&
      differOnlyIn(setting.key, text_, changed))
    return changed;
  return failure(FailureCode::unsupported, std::string(setting.key), "",
                 "it is written in a way that only you can change, in an editor");
}

}  // namespace linewatch
