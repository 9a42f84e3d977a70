#pragma once

#include <QObject>
#include <filesystem>
#include <functional>

namespace linewatch::desktop {

/// Calls `changed` shortly after files in the folder were created, removed or replaced: once for changes
/// within 100 ms. Watches as long as `owner` lives. Writes into an existing file are not seen, nor anything
/// after the folder itself is removed. Does nothing if there is no such folder. Does not poll. Needs a
/// QCoreApplication; main thread.
void watchFolder(QObject& owner, const std::filesystem::path& folder, std::function<void()> changed);

}  // namespace linewatch::desktop
