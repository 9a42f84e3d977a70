#pragma once

#include <memory>
#include <string>
#include <utility>

#include "list/transit_item_data_source_builder.h"
#include "shared/error.h"

namespace linewatch {

/// Builds the list for a failed fetch: one row that says that loading failed and why. The reason is the
/// device's diagnosis of the connection at the first call of `listItem`; the error is kept but not shown.
class RVTransitIncidentDataSourceErrorBuilder final : public RVTransitItemDataSourceBuilder {
 public:
  explicit RVTransitIncidentDataSourceErrorBuilder(Error error) : error_(std::move(error)) {}

  std::shared_ptr<const RVTransitListItem> listItem() override;

  const Error& error() const { return error_; }
  void setError(Error error) { error_ = std::move(error); }

 private:
  static SharedTransitItem _buildErrorItem();
  static std::string _errorMessage();

  std::shared_ptr<const RVTransitListItem> listItem_;
  Error error_;
};

}  // namespace linewatch
