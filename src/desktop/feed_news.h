#pragma once

#include <cstddef>
#include <optional>

#include "desktop/desktop_platform.h"
#include "platform/transit_line.h"
#include "shared/error.h"
#include "status/transit_status.h"

namespace linewatch::desktop {

/// The news after a look-up that the platform's transit service has answered with `lines` or `error`, of
/// which one is given. `favorites`: the number of lines that were asked for. Any thread; waits while another
/// look-up runs.
TransitNews feedNews(DesktopPlatform& platform, std::size_t favorites, const TransitLineItems* lines,
                     const std::optional<Error>& error);

}  // namespace linewatch::desktop
