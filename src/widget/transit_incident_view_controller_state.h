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

/// The saved state of the widget: the last fetch result and whether the widget was expanded. Immutable.
///
///     keys of the archive          present
///     "lineItemResultSuccess"      with a success object: a list of `TransitStorageLineItem`
///     "lineItemResultError"        without a success object but with an error: the error
///     "expanded"                   always: a bool
class RVTransitIncidentViewControllerState final : public Object, public Archivable {
 public:
  static constexpr std::string_view kArchiveClassName = "RVTransitIncidentViewControllerState";
  /// The class name in old archives: read, never written.
  static constexpr std::string_view kFormerArchiveClassName = "RVTransitListItemData";

  /// `lineItemsResult` is shared, not copied, and may be null.
  RVTransitIncidentViewControllerState(std::shared_ptr<RVResult> lineItemsResult, bool expanded);

  const std::shared_ptr<RVResult>& lineItemsResult() const { return lineItemsResult_; }
  bool expanded() const { return expanded_; }

  std::string_view archiveClassName() const override { return kArchiveClassName; }
  void encodeWithCoder(KeyedCoder& coder) const override;
  /// Null when the archive holds no result.
  static std::shared_ptr<const RVTransitIncidentViewControllerState> makeWithDecoder(KeyedDecoder& decoder);

  /// The state in the archive; null when the bytes are not an archive, hold no state or cannot be decoded.
  /// `error` is set only in the last case.
  static std::shared_ptr<const RVTransitIncidentViewControllerState> unarchiveFromData(
      const Bytes& data, std::optional<Error>& error);

  std::string description() const override;

 private:
  std::shared_ptr<RVResult> lineItemsResult_;
  bool expanded_;
};

}  // namespace linewatch
