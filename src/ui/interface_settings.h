#pragma once

#include "ui/layout/geometry.h"
#include "ui/text_style.h"

namespace linewatch::ui {

/// What the user and the display ask of everything that is shown. Main thread.
class InterfaceSettings {
 public:
  virtual ~InterfaceSettings() = default;

  /// A change is posted as kTextSizeDidChangeNotification.
  virtual TextSizeCategory textSizeCategory() const = 0;
  virtual LayoutDirection layoutDirection() const = 0;
  /// Pixels a point on the main display.
  virtual double displayScale() const = 0;
};

}  // namespace linewatch::ui
