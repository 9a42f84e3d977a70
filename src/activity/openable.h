#pragma once

#include <memory>

#include "platform/system_controller.h"
#include "shared/object.h"

namespace linewatch {

/// Opens the companion application at a certain place. A value, compared and hashed by its content. Main
/// thread.
class RVOpenable : public Object {
 public:
  /// `context` is the widget's view controller. `completionHandler`, which may be empty, is called with the
  /// outcome during this call or later.
  virtual void openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const = 0;
};

}  // namespace linewatch
