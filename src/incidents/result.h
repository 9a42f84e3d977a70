#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/transit_line.h"
#include "shared/error.h"

namespace linewatch {

/// The outcome of a fetch. A result with an error is a failure, even if it has a success object too. A result
/// with neither is empty, and no list is shown. Results are compared by identity. Main thread once shared.
class RVResult {
 public:
  explicit RVResult(std::shared_ptr<const TransitLineItems> successObject)
      : RVResult(std::move(successObject), std::nullopt) {}
  explicit RVResult(Error error) : RVResult(nullptr, std::move(error)) {}
  RVResult(std::shared_ptr<const TransitLineItems> successObject, std::optional<Error> error)
      : successObject_(std::move(successObject)), error_(std::move(error)) {}

  RVResult(const RVResult&) = delete;
  RVResult& operator=(const RVResult&) = delete;

  /// May be null.
  const std::shared_ptr<const TransitLineItems>& successObject() const { return successObject_; }
  void setSuccessObject(std::shared_ptr<const TransitLineItems> lineItems) {
    successObject_ = std::move(lineItems);
  }

  const std::optional<Error>& error() const { return error_; }
  void setError(std::optional<Error> error) { error_ = std::move(error); }

 private:
  std::shared_ptr<const TransitLineItems> successObject_;
  std::optional<Error> error_;
};

}  // namespace linewatch
