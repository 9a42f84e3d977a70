#include "settings/user_settings.h"

#include <system_error>
#include <utility>

#include "localization/failure_words.h"
#include "localization/icu_localization.h"
#include "shared/failure.h"
#include "shared/file_contents.h"

namespace linewatch {

namespace {

constexpr std::string_view kNewFile =
    "# The settings of LineWatch. `linewatch settings` lists them all, and docs/settings.md explains them.\n";

/// `reason`: what is wrong at that place.
std::string faultLine(const std::filesystem::path& file, const SettingsFault& fault,
                      const std::string& reason) {
  return file.string() + ":" + std::to_string(fault.place.line) + ":" + std::to_string(fault.place.column) +
         ": " + reason;
}

std::string inWords(const SettingsFault& fault, IcuLocalization& texts) {
  if (texts.isInFallbackLanguage()) return fault.reason;
  const std::vector<FormatArgument> arguments(fault.arguments.begin(), fault.arguments.end());
  return texts.format(texts.failureString(fault.textKey, fault.reason), arguments);
}

}  // namespace

UserSettings::UserSettings(std::filesystem::path file, Given given)
    : file_(std::move(file)), given_(std::move(given)) {}

UserSettings::Contents UserSettings::read() const {
  if (file_.empty()) return {};
  auto text = contentsOf(file_, {.bytes = kLargestSettingsFile, .time = Seconds(1)});
  if (text) return {SettingsDocument(*std::move(text)), std::nullopt, true};
  std::error_code ignored;
  if (std::filesystem::status(file_, ignored).type() == std::filesystem::file_type::not_found) return {};
  return {SettingsDocument(), text.error(), true};
}

UserSettings::Contents& UserSettings::contents() const {
  if (!contents_) contents_ = read();
  return *contents_;
}

bool UserSettings::isReadable() const { return !contents().error && contents().document.isWellFormed(); }

const SettingsDocument& UserSettings::documentInForce() const {
  return !isReadable() && lastReadable_ ? *lastReadable_ : contents().document;
}

/// The value of the command line or the file; absent if another source has to serve.
std::optional<SettingValue> UserSettings::findHere(const Setting& setting) const {
  if (const auto given = given_.find(setting.key); given != given_.end())
    return SettingValue{given->second, SettingSource::commandLine};
  const SettingsDocument& document = documentInForce();
  if (auto value = document.valueOf(setting)) return SettingValue{*std::move(value), SettingSource::file};
  // Recording is on by default. Whoever writes a value, even a wrong one, wants to change that.
  const bool mayBeOff = document.hasWrongValue(setting) || (!isReadable() && !lastReadable_);
  if (&setting == &kAnalyticsSetting && mayBeOff) return SettingValue{"false", SettingSource::file};
  if (!document.hasWrongValue(setting)) return std::nullopt;
  return SettingValue{std::string(setting.defaultText), SettingSource::usual};
}

SettingValue UserSettings::find(const Setting& setting) const {
  if (auto value = findHere(setting)) return *std::move(value);
  if (remembered_) {
    auto value = remembered_->find(setting);
    if (value && setting.isAllowed(*value)) return {*std::move(value), SettingSource::remembered};
  }
  return {std::string(setting.defaultText), SettingSource::usual};
}

Settings UserSettings::values() const {
  Settings settings;
  for (const Setting& setting : settingTable()) setting.take(find(setting).text, settings);
  return settings;
}

Settings UserSettings::withoutRemembered() const {
  Settings settings;
  for (const Setting& setting : settingTable()) {
    if (const auto value = findHere(setting)) setting.take(value->text, settings);
  }
  return settings;
}

std::vector<std::string> UserSettings::faults() const {
  std::vector<std::string> lines;
  if (contents().error) lines.push_back(sentenceOf(*contents().error));
  for (const SettingsFault& fault : contents().document.faults())
    lines.push_back(faultLine(file_, fault, fault.reason));
  return lines;
}

std::vector<std::string> UserSettings::faults(IcuLocalization& texts) const {
  std::vector<std::string> lines;
  if (const auto& error = contents().error)
    lines.push_back(failureInWords(failureCodeOf(*error), sentenceOf(*error), texts));
  for (const SettingsFault& fault : contents().document.faults())
    lines.push_back(faultLine(file_, fault, inWords(fault, texts)));
  return lines;
}

bool UserSettings::reread() {
  Contents before = std::exchange(contents(), read());
  const bool wasReadable = !before.error && before.document.isWellFormed();
  const bool hasChanged = contents_->document.text() != before.document.text() ||
                          contents_->error != before.error || contents_->exists != before.exists;
  if (isReadable()) {
    lastReadable_.reset();
  } else if (wasReadable) {
    lastReadable_ = std::move(before.document);
  }
  return hasChanged;
}

std::optional<Error> UserSettings::set(const Setting& setting, const std::string& text) {
  if (!setting.isAllowed(text))
    return failure(FailureCode::invalid, std::string(setting.key), "", setting.refusal(text));
  return write(setting, text);
}

std::optional<Error> UserSettings::unset(const Setting& setting) { return write(setting, std::nullopt); }

/// Another program may have changed the file, so that it is read again before.
std::optional<Error> UserSettings::write(const Setting& setting, const std::optional<std::string>& text) {
  if (file_.empty())
    return failure(std::string(setting.key), "", "a run without saved state has no settings to change");
  reread();
  const Contents& present = contents();
  if (present.error) return present.error;
  const SettingsDocument& document =
      present.exists || !text ? present.document : SettingsDocument(std::string(kNewFile));
  auto changed = text ? document.with(setting, *text) : document.without(setting);
  if (!changed) {
    if (present.document.isWellFormed()) return within(file_.string(), changed.error());
    return failure(FailureCode::malformed, faults().front(), "", "nothing was written");
  }
  if (*changed != present.document.text()) {
    if (auto failed = makeFolders(file_.parent_path())) return failed;
    if (auto failed = writeWhole(file_, *changed)) return failed;
    contents_ = Contents{SettingsDocument(*std::move(changed)), std::nullopt, true};
  }
  given_.erase(std::string(setting.key));
  if (remembered_) remembered_->forget(setting);
  return std::nullopt;
}

}  // namespace linewatch
