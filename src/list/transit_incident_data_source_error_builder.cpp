#include "list/transit_incident_data_source_error_builder.h"

#include "list/localized_text.h"
#include "platform/device.h"
#include "platform/platform.h"

namespace linewatch {

std::shared_ptr<const RVTransitListItem> RVTransitIncidentDataSourceErrorBuilder::listItem() {
  if (!listItem_) listItem_ = std::make_shared<const RVTransitListItem>(_buildErrorItem(), TransitItems{});
  return listItem_;
}

SharedTransitItem RVTransitIncidentDataSourceErrorBuilder::_buildErrorItem() {
  return std::make_shared<const RVTransitItem>(kestrowText("LineWatchLoadingError_Title"), _errorMessage(),
                                               nullptr,
                                               /*displayArtwork=*/false, nullptr);
}

std::string RVTransitIncidentDataSourceErrorBuilder::_errorMessage() {
  Device& device = platform().device();
  switch (device.diagnoseConnectionFailure()) {
    case ConnectionFailureDiagnosis::airplaneMode:
      return kestrowText(device.hasCapability("wapi") ? "LineWatchLoadingError_AirplaneMode_WLAN"
                                                      : "LineWatchLoadingError_AirplaneMode_WIFI");
    case ConnectionFailureDiagnosis::noInternetConnection:
      return kestrowText("LineWatchLoadingError_No_Internet");
    case ConnectionFailureDiagnosis::other:
    case ConnectionFailureDiagnosis::unknown:
      break;
  }
  return kestrowText("LineWatchLoadingError_Uknown");
}

}  // namespace linewatch
