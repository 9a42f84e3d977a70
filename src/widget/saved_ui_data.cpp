#include "widget/saved_ui_data.h"

#include <optional>
#include <utility>

#include "incidents/companion_stores.h"
#include "platform/log.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

using SharedState = std::shared_ptr<const RVTransitIncidentViewControllerState>;

// The text is on one line, so that a search for a logged line finds it.
// clang-format off
constexpr std::string_view kParsingFailed =
    "Error parsing ViewModel data loaded from GroupSettings, removing it (key: %{private}@): %{private}@ - error: %{private}@";
// clang-format on

Value logged(const SharedState& state) { return std::shared_ptr<const Object>(state); }

}  // namespace

bool saveUIData(const SharedState& state) {
  auto data = platform().keyedArchiver().archivedData({state}, /*requiringSecureCoding=*/true);
  if (!data) {
    logDebug("Unable to cache view model to disk because it couldnt be converted to Blob: %{private}@",
             {logged(state)});
    return false;
  }
  logDebug("Saving view model to GroupSetting (key: %{private}@) : %{private}@",
           {kSavedUIDataKey, logged(state)});
  return _rova_groupUserDefaults()->setObject(*std::move(data), kSavedUIDataKey);
}

SharedState loadSavedUIData() {
  const auto value = _rova_groupUserDefaults()->objectForKey(kSavedUIDataKey);
  if (!value) {
    logDebug("No view model found in GroupSettings (key: %{private}@)", {kSavedUIDataKey});
    return nullptr;
  }
  std::optional<Error> error;
  const auto* data = value->get<Bytes>();
  auto state = data ? RVTransitIncidentViewControllerState::unarchiveFromData(*data, error) : nullptr;
  if (error) {
    logDebug(kParsingFailed, {kSavedUIDataKey, logged(state), error->description()});
    _rova_groupUserDefaults()->removeObject(kSavedUIDataKey);
    return nullptr;
  }
  logDebug("View model loaded from GroupSettings (key: %{private}@): %{private}@",
           {kSavedUIDataKey, logged(state)});
  return state;
}

}  // namespace linewatch
