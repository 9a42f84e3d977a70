// Parses any text as the settings file, and changes every setting in it. A change keeps all other values, and
// can be taken back.

#include <cstddef>
#include <cstdint>
#include <string>

#include "require.h"
#include "settings/settings_document.h"

namespace {

using namespace linewatch;

/// Another allowed value than the present one.
std::string otherValue(const Setting& setting, const SettingsDocument& document) {
  const std::string usual(setting.defaultText);
  if (document.valueOf(setting) != usual) return usual;
  if (!setting.choices.empty()) return std::string(setting.choices[setting.choices.front() == usual ? 1 : 0]);
  return &setting == &kRefreshSetting ? "90s" : &setting == &kLanguageSetting ? "pt-BR" : "a \"word\"";
}

void requireOthersStay(const Setting& changed, const SettingsDocument& before,
                       const SettingsDocument& after) {
  for (const Setting& setting : settingTable())
    require(&setting == &changed || before.valueOf(setting) == after.valueOf(setting));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const SettingsDocument document(std::string(reinterpret_cast<const char*>(data), size));
  require(document.isWellFormed() || document.faults().size() == 1);
  for (const SettingsFault& fault : document.faults()) requireOneLine(fault.reason);
  for (const Setting& setting : settingTable()) {
    const std::string value = otherValue(setting, document);
    const auto changed = document.with(setting, value);
    require(document.isWellFormed() || !changed);
    if (!changed) continue;
    const SettingsDocument after(*changed);
    require(after.valueOf(setting) == value);
    requireOthersStay(setting, document, after);
    if (const auto before = document.valueOf(setting)) {
      const auto restored = after.with(setting, *before);
      require(restored && SettingsDocument(*restored).valueOf(setting) == before);
    }
    const auto without = after.without(setting);
    if (without) requireOthersStay(setting, document, SettingsDocument(*without));
  }
  return 0;
}
