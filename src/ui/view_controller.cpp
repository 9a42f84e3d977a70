#include "ui/view_controller.h"

#include <utility>

#include "ui/view.h"

namespace linewatch::ui {

ViewController::ViewController() = default;
ViewController::~ViewController() = default;

View& ViewController::view() { return *sharedView(); }

const std::shared_ptr<View>& ViewController::sharedView() {
  if (!view_) {
    view_ = loadView();
    viewDidLoad();
  }
  return view_;
}

std::shared_ptr<View> ViewController::loadView() { return std::make_shared<View>(); }

void ViewController::setPreferredContentSize(const Size& size) {
  preferredContentSize_ = size;
  if (preferredContentSizeHandler_) preferredContentSizeHandler_(size);
}

void ViewController::setPreferredContentSizeHandler(std::function<void(const Size& size)> handler) {
  preferredContentSizeHandler_ = std::move(handler);
}

}  // namespace linewatch::ui
