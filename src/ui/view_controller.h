#pragma once

#include <functional>
#include <memory>

#include "platform/extension_context.h"
#include "shared/object.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

class View;

/// Manages one view for a host, which calls the functions below when the view appears or disappears. Main
/// thread.
class ViewController : public Object {
 public:
  ViewController();
  ~ViewController() override;

  /// The host's context; null when the controller is not hosted.
  virtual std::shared_ptr<ExtensionContext> extensionContext() const = 0;

  /// Made and loaded at the first call.
  View& view();
  const std::shared_ptr<View>& sharedView();

  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewWillDisappear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}
  /// The host is about to resize the view.
  virtual void viewWillTransitionToSize(const Size& /*size*/) {}
  virtual void didReceiveMemoryWarning() {}

  const Size& preferredContentSize() const { return preferredContentSize_; }
  /// Asks the host for the size, even if it is the size asked for before.
  void setPreferredContentSize(const Size& size);
  /// For the host: called with every size that the controller asks for.
  void setPreferredContentSizeHandler(std::function<void(const Size& size)> handler);

 protected:
  /// The controller's view, still empty; a plain view by default. Never null.
  virtual std::shared_ptr<View> loadView();

 private:
  std::shared_ptr<View> view_;
  Size preferredContentSize_;
  std::function<void(const Size&)> preferredContentSizeHandler_;
};

}  // namespace linewatch::ui
