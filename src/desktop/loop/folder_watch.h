#pragma once

#include <QObject>
#include <filesystem>
#include <functional>

namespace linewatch::desktop {

/// Calls `changed` soon after files in the folder have come, gone or been replaced, once for what happens
/// together, as long as `owner` lives. Of what is only written into a file, and after the folder itself has
/// gone, it tells nothing; nor when there is no such folder. Sleeps in between. Needs a QCoreApplication;
/// main thread.
void watchFolder(QObject& owner, const std::filesystem::path& folder, std::function<void()> changed);

}  // namespace linewatch::desktop
