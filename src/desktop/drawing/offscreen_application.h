#pragma once

#include <memory>

class QGuiApplication;

namespace linewatch::desktop {

/// The application that Qt needs for fonts and painting, for a process without windows. Works without a
/// display. There is one per process: null when there is an application already.
std::unique_ptr<QGuiApplication> makeOffscreenApplication();

}  // namespace linewatch::desktop
