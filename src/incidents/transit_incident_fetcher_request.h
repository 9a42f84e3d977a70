#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "incidents/result.h"
#include "shared/mutex.h"

namespace linewatch {

/// A fetch in flight and the handlers that wait for its result. Any thread.
class RVTransitIncidentFetcherRequest {
 public:
  using Handler = std::function<void(const std::shared_ptr<RVResult>& result)>;

  virtual ~RVTransitIncidentFetcherRequest() = default;

  /// Calls `handler` exactly once with the result: at once and on this thread when the fetch has ended, else
  /// when it ends, after the handlers added earlier. An empty handler is ignored.
  virtual void addHandler(Handler handler) = 0;
  /// Null until the fetch has ended.
  virtual std::shared_ptr<RVResult> result() const = 0;
};

namespace detail {

/// The request with the operations that only the fetcher uses.
class RVTransitIncidentFetcherRequest final : public linewatch::RVTransitIncidentFetcherRequest {
 public:
  explicit RVTransitIncidentFetcherRequest(Handler completionHandler);

  void addHandler(Handler handler) override;
  std::shared_ptr<RVResult> result() const override;
  /// A copy of the handlers in order of addition. Handlers are never removed.
  std::vector<Handler> handlers() const;

  /// Ends the fetch: stores the result, then calls every handler. No lock is held during a call, so a handler
  /// may add others.
  void setResultAndInvokeCompletionHandlers(const std::shared_ptr<RVResult>& result);

 private:
  mutable Mutex mutex_;
  std::vector<Handler> handlers_ LINEWATCH_GUARDED_BY(mutex_);
  std::shared_ptr<RVResult> result_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace detail

}  // namespace linewatch
