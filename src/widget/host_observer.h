#pragma once

#include <cstddef>
#include <memory>

#include "platform/extension_context.h"

namespace linewatch {

class RVTransitIncidentsViewController;

/// Observes the actions of the widget's host as they happen, e.g. to record them. Main thread.
class HostObserver {
 public:
  virtual ~HostObserver() = default;

  /// The host has made the controller and loaded its view, which has the size `bounds` in points. The context
  /// lives as long as the controller.
  virtual void hostDidLoad(const std::shared_ptr<RVTransitIncidentsViewController>& controller,
                           const Size& bounds) = 0;
  // Called before the host calls the controller.
  virtual void hostWillShow() = 0;
  virtual void hostWillHide() = 0;
  virtual void hostWillAskForUpdate() = 0;
  virtual void hostWillChangeMode(WidgetDisplayMode mode) = 0;
  virtual void hostWillResize(const Size& size) = 0;
  /// The user taps a row that can be tapped.
  virtual void hostWillTap(std::size_t row) = 0;
  /// The outcome of the last tap: whether something was opened. Called during the tap or later.
  virtual void hostDidOpen(bool success) = 0;
  /// The rows have changed.
  virtual void hostDidShowContent() = 0;
};

}  // namespace linewatch
