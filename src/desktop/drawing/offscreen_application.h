#pragma once

#include <memory>

class QGuiApplication;

namespace linewatch::desktop {

/// What fonts and painting need of Qt, for a process that shows no window: works without a display. One a
/// process; null where there is an application already.
std::unique_ptr<QGuiApplication> makeOffscreenApplication();

}  // namespace linewatch::desktop
