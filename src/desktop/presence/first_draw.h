#pragma once

#include <QWidget>
#include <functional>

namespace linewatch::desktop {

/// Calls `action` once, when the window has drawn itself for the first time; soon if the window is hidden.
/// Keeps work that nobody waits for out of the program's start. Not called after the window has ended. Main
/// thread.
void afterFirstDraw(QWidget& window, std::function<void()> action);

}  // namespace linewatch::desktop
