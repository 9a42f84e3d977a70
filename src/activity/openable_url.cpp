#include "activity/openable_url.h"

#include <functional>

#include "platform/platform.h"
#include "platform/user_session.h"
#include "ui/view_controller.h"

namespace linewatch {

void OpenableURL::openInContext(const std::shared_ptr<Object>& context, OpenHandler completionHandler) const {
  const auto controller = std::dynamic_pointer_cast<ui::ViewController>(context);
  if (!controller) return;
  UserSession& session = platform().userSession();
  session.shareSession();
  const URL punchOut = session.sharedSessionPunchOutURL(url_.absoluteString);
  const auto host = controller->extensionContext();
  if (!host) return;
  host->openURL(punchOut, [handler = std::move(completionHandler)](bool success) {
    if (handler) handler(success, std::nullopt);
  });
}

bool OpenableURL::isEqual(const Object& other) const {
  const auto* openable = dynamic_cast<const OpenableURL*>(&other);
  return openable != nullptr && openable->url_ == url_;
}

std::size_t OpenableURL::hash() const { return std::hash<std::string>{}(url_.absoluteString); }

}  // namespace linewatch
