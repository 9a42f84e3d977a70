#pragma once

#include <QObject>
#include <filesystem>
#include <functional>

namespace linewatch::desktop {

/// Calls `changed` after the file is made, written to, replaced or deleted; also if its folder is made only
/// later, and if the file is a link and its target changes. Calls it once for all changes within 0.1 s. Ends
/// with `owner`. Needs a QCoreApplication; main thread.
void watchFile(QObject& owner, const std::filesystem::path& file, std::function<void()> changed);

}  // namespace linewatch::desktop
