#include "desktop/drawing/offscreen_application.h"

#include <QGuiApplication>

namespace linewatch::desktop {

std::unique_ptr<QGuiApplication> makeOffscreenApplication() {
  if (QCoreApplication::instance() != nullptr) return nullptr;
  static char name[] = "linewatch";
  static char option[] = "-platform";
  static char value[] = "offscreen";
  static char* arguments[] = {name, option, value, nullptr};
  static int count = 3;
  return std::make_unique<QGuiApplication>(count, arguments);
}

}  // namespace linewatch::desktop
