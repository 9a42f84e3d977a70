#include "activity/containing_application.h"

#include <variant>

#include "platform/platform.h"

namespace linewatch {

namespace {

struct ContainingApplication {
  std::optional<ApplicationRecord> operator()(const ApplicationRecord& application) const {
    return application;
  }
  std::optional<ApplicationRecord> operator()(const std::shared_ptr<const PlugInRecord>& plugIn) const {
    if (!plugIn || !plugIn->containingBundle) return std::nullopt;
    const auto* application = std::get_if<ApplicationRecord>(&*plugIn->containingBundle);
    return application ? std::optional(*application) : std::nullopt;
  }
  std::optional<ApplicationRecord> operator()(const OtherBundleRecord&) const { return std::nullopt; }
};

}  // namespace

std::optional<ApplicationRecord> _rova_containingApplicationProxy(std::optional<Error>* error) {
  const auto record = platform().systemController().bundleRecordOfCurrentProcess();
  if (record) return std::visit(ContainingApplication{}, *record);
  if (error != nullptr) {
    *error = {kRovaActivityErrorDomain,
              0,
              {{kDebugDescriptionKey, "no appliction proxy object for current process"}}};
  }
  return std::nullopt;
}

}  // namespace linewatch
