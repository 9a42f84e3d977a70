#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "incidents/result.h"
#include "shared/error.h"
#include "shared/object.h"
#include "shared/value.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

/// What the widget keeps for its next showing: the last fetch result and whether it was expanded. Immutable.
///
///     keys of the archive          present
///     "lineItemResultSuccess"      the result has a success object: a list of `TransitStorageLineItem`
///     "lineItemResultError"        else, the result has an error: the error
///     "expanded"                   always: a bool
class RVTransitIncidentViewControllerState final : public Object, public Archivable {
 public:
  static constexpr std::string_view kArchiveClassName = "RVTransitIncidentViewControllerState";
  /// A class name of states in archives of old; it is read, never written.
  static constexpr std::string_view kFormerArchiveClassName = "RVTransitListItemData";

  /// `lineItemsResult` is kept as it is, and may be null.
  RVTransitIncidentViewControllerState(std::shared_ptr<RVResult> lineItemsResult, bool expanded);

  const std::shared_ptr<RVResult>& lineItemsResult() const { return lineItemsResult_; }
  bool expanded() const { return expanded_; }

  std::string_view archiveClassName() const override { return kArchiveClassName; }
  void encodeWithCoder(KeyedCoder& coder) const override;
  /// Null when the parts hold no result.
  static std::shared_ptr<const RVTransitIncidentViewControllerState> makeWithDecoder(KeyedDecoder& decoder);

  /// The state in the archive. Null when the bytes are no archive or hold no state, and when something in an
  /// archive could not be decoded; only then `error` is set.
  static std::shared_ptr<const RVTransitIncidentViewControllerState> unarchiveFromData(
      const Bytes& data, std::optional<Error>& error);

  std::string description() const override;

 private:
  std::shared_ptr<RVResult> lineItemsResult_;
  bool expanded_;
};

}  // namespace linewatch
