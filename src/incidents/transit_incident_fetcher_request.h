#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "incidents/result.h"

namespace linewatch {

/// A fetch in flight, for those who want its result. Any thread.
class RVTransitIncidentFetcherRequest {
 public:
  using Handler = std::function<void(const std::shared_ptr<RVResult>& result)>;

  virtual ~RVTransitIncidentFetcherRequest() = default;

  /// Calls `handler` with the result: at once on this thread when the fetch has ended, otherwise when it
  /// ends, after the handlers added before. Each handler is called exactly once; an empty one is ignored.
  virtual void addHandler(Handler handler) = 0;
  /// Null until the fetch has ended.
  virtual std::shared_ptr<RVResult> result() const = 0;
};

namespace detail {

/// The request as the fetcher sees it.
class RVTransitIncidentFetcherRequest final : public linewatch::RVTransitIncidentFetcherRequest {
 public:
  explicit RVTransitIncidentFetcherRequest(Handler completionHandler);

  void addHandler(Handler handler) override;
  std::shared_ptr<RVResult> result() const override;
  /// A copy of the handlers in order of addition; they stay after they were called.
  std::vector<Handler> handlers() const;

  /// Ends the fetch: keeps the result and then calls every handler, outside the lock so that a handler may
  /// add others.
  void setResultAndInvokeCompletionHandlers(const std::shared_ptr<RVResult>& result);

 private:
  mutable std::mutex mutex_;
  std::vector<Handler> handlers_;
  std::shared_ptr<RVResult> result_;
};

}  // namespace detail

}  // namespace linewatch
