#pragma once

#include <memory>

#include "platform/system_controller.h"
#include "shared/object.h"

namespace linewatch {

/// Something that opens the companion application at the place it stands for. A value: it compares and hashes
/// by what it opens. Main thread.
class RVOpenable : public Object {
 public:
  /// Opens, on behalf of `context` (the widget's view controller). `completionHandler`, which may be empty,
  /// is called with the outcome, at once or later.
  virtual void openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const = 0;
};

}  // namespace linewatch
