#pragma once

#include <optional>

#include "platform/system_controller.h"
#include "shared/error.h"

namespace linewatch {

/// The domain of the error for a process without a bundle record (code 0).
inline constexpr const char* kRovaActivityErrorDomain = "RovaActivityErrorDomain";

/// The application that contains the running process: itself, or the application of its plug-in; none
/// otherwise. `error` may be null; it is set only when the process has no bundle record.
std::optional<ApplicationRecord> _rova_containingApplicationProxy(std::optional<Error>* error = nullptr);

}  // namespace linewatch
