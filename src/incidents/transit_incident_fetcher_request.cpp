#include "incidents/transit_incident_fetcher_request.h"

#include <utility>

namespace linewatch::detail {

RVTransitIncidentFetcherRequest::RVTransitIncidentFetcherRequest(Handler completionHandler) {
  if (completionHandler) handlers_.push_back(std::move(completionHandler));
}

void RVTransitIncidentFetcherRequest::addHandler(Handler handler) {
  if (!handler) return;
  std::shared_ptr<RVResult> result;
  {
    const MutexLock lock(mutex_);
    if (!result_) {
      handlers_.push_back(std::move(handler));
      return;
    }
    result = result_;
  }
  handler(result);
}

std::shared_ptr<RVResult> RVTransitIncidentFetcherRequest::result() const {
  const MutexLock lock(mutex_);
  return result_;
}

std::vector<RVTransitIncidentFetcherRequest::Handler> RVTransitIncidentFetcherRequest::handlers() const {
  const MutexLock lock(mutex_);
  return handlers_;
}

void RVTransitIncidentFetcherRequest::setResultAndInvokeCompletionHandlers(
    const std::shared_ptr<RVResult>& result) {
  std::vector<Handler> snapshot;
  {
    const MutexLock lock(mutex_);
    result_ = result;
    snapshot = handlers_;
  }
  for (const Handler& handler : snapshot) handler(result);
}

}  // namespace linewatch::detail
