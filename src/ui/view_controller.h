#pragma once

#include <functional>
#include <memory>

#include "platform/extension_context.h"
#include "shared/object.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

class View;

/// Manages one view of a host, which calls what is said here when the view comes and goes. Main thread.
class ViewController : public Object {
 public:
  ViewController();
  ~ViewController() override;

  /// The way to the host; null when the controller is not hosted.
  virtual std::shared_ptr<ExtensionContext> extensionContext() const = 0;

  /// Made and loaded when it is first asked for.
  View& view();
  const std::shared_ptr<View>& sharedView();
  bool isViewLoaded() const { return view_ != nullptr; }

  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewWillDisappear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}
  /// The host is about to give the view the size.
  virtual void viewWillTransitionToSize(const Size& /*size*/) {}
  virtual void didReceiveMemoryWarning() {}

  const Size& preferredContentSize() const { return preferredContentSize_; }
  /// Asks the host, if there is one, to give the view the size; also when it is the size asked for before.
  void setPreferredContentSize(const Size& size);
  /// The host's: told every size that the controller asks for.
  void setPreferredContentSizeHandler(std::function<void(const Size& size)> handler);

 protected:
  /// The controller's view before anything is in it; a plain one by default. Never null.
  virtual std::shared_ptr<View> loadView();

 private:
  std::shared_ptr<View> view_;
  Size preferredContentSize_;
  std::function<void(const Size&)> preferredContentSizeHandler_;
};

}  // namespace linewatch::ui
