#pragma once

#include <optional>

#include "platform/system_controller.h"
#include "shared/error.h"

namespace linewatch {

/// The domain of the error that says that the running process has no bundle record (code 0).
inline constexpr const char* kRovaActivityErrorDomain = "RovaActivityErrorDomain";

/// The application that the running process is, or is a plug-in of; none when it is neither. `error`, when
/// given, is set only when the process has no record at all.
std::optional<ApplicationRecord> _rova_containingApplicationProxy(std::optional<Error>* error = nullptr);

}  // namespace linewatch
