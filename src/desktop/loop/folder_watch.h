#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace linewatch::desktop {

/// Calls `changed` after a file in the folder is made, deleted or replaced, or after one of `files` is
/// written to. Calls it once for all changes within 0.1 s. Ends with `owner`, or when the folder is deleted.
/// Does nothing without the folder. Needs a QCoreApplication; main thread.
void watchFolder(QObject& owner, const std::filesystem::path& folder, const std::vector<std::string>& files,
                 std::function<void()> changed);

}  // namespace linewatch::desktop
