#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace linewatch::desktop {

/// Calls `changed` soon after files in the folder have come, gone or been replaced, or something was written
/// into one that is named in `files`; once for changes within 0.1 s, as long as `owner` lives. Does nothing
/// without the folder, or after it has gone. Needs a QCoreApplication; main thread.
void watchFolder(QObject& owner, const std::filesystem::path& folder, const std::vector<std::string>& files,
                 std::function<void()> changed);

}  // namespace linewatch::desktop
