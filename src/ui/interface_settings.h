#pragma once

#include "ui/layout/geometry.h"
#include "ui/text_style.h"

namespace linewatch::ui {

/// The user's and the display's settings for everything that is shown. Main thread.
class InterfaceSettings {
 public:
  virtual ~InterfaceSettings() = default;

  /// A change is announced by kTextSizeDidChangeNotification.
  virtual TextSizeCategory textSizeCategory() const = 0;
  virtual LayoutDirection layoutDirection() const = 0;
  /// Pixels per point on the main display.
  virtual double displayScale() const = 0;
};

}  // namespace linewatch::ui
