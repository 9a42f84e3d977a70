#pragma once

#include <memory>

#include "platform/extension_context.h"
#include "platform/object.h"

namespace linewatch::ui {

/// Manages one view of a host. Main thread.
class ViewController : public Object {
 public:
  /// The way to the host; null when the controller is not hosted.
  virtual std::shared_ptr<ExtensionContext> extensionContext() const = 0;
};

}  // namespace linewatch::ui
