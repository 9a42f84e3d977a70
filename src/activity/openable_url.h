#pragma once

#include <string>
#include <utility>

#include "activity/openable.h"
#include "platform/url.h"

namespace linewatch {

/// A URL of the companion application, opened through the widget's host.
class OpenableURL final : public RVOpenable {
 public:
  explicit OpenableURL(URL url) : url_(std::move(url)) {}

  const URL& url() const { return url_; }

  /// Does nothing and never calls the handler when `context` is not a view controller.
  void openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const override;

  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  std::string description() const override { return url_.absoluteString; }

 private:
  URL url_;
};

}  // namespace linewatch
