#pragma once

namespace linewatch {

class Platform;

/// The installed platform, or null when there is none. For code that also works without a platform. Any
/// thread.
Platform* installedPlatform();

}  // namespace linewatch
