#pragma once

#include <memory>

class QGuiApplication;

namespace linewatch::desktop {

/// Makes the application object that Qt needs for fonts and painting, in a process without windows. Needs no
/// display. Null if the process already has an application object.
std::unique_ptr<QGuiApplication> makeOffscreenApplication();

}  // namespace linewatch::desktop
