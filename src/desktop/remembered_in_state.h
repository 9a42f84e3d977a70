#pragma once

#include <optional>
#include <string>

#include "settings/remembered_settings.h"
#include "storage/saved_state.h"

namespace linewatch::desktop {

/// The text size and the switch of the analytics that versions without a settings file kept in the state
/// database. Main thread.
class RememberedInState final : public RememberedSettings {
 public:
  /// `saved` must outlive this.
  explicit RememberedInState(SavedState& saved) : saved_(saved) {}

  std::optional<std::string> find(const Setting& setting) const override;
  void forget(const Setting& setting) override;

 private:
  SavedState& saved_;
};

}  // namespace linewatch::desktop
