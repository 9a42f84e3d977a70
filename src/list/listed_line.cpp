#include "list/listed_line.h"

#include <utility>

#include "activity/bzip2_compression.h"
#include "activity/rova_activity.h"
#include "list/row_artwork.h"
#include "platform/transit_storage_line_item.h"
#include "platform/url_display_options.h"

namespace linewatch {

namespace {

constexpr int kMapTypeOfLine = 3;

RovaActivity activityForLine(const TransitLineItem& line) {
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(kMapTypeOfLine);
  RovaActivity activity;
  activity.setLineItem(std::make_shared<TransitStorageLineItem>(line));
  activity.setDisplayOptions(std::move(options));
  return activity;
}

}  // namespace

const std::shared_ptr<const RVConfiguredArtwork>& ListedLine::artwork() {
  if (!artwork_) artwork_ = lineArtwork(artworkStandingForLine(line_), artworkCache_);
  return artwork_;
}

const std::optional<Bytes>& ListedLine::compressedRecord() {
  if (!compressedRecord_) compressedRecord_.emplace(bzip2CompressedData(activityForLine(line_).data()));
  return *compressedRecord_;
}

std::shared_ptr<const RVUserActivityData> ListedLine::shared(
    std::shared_ptr<const RVUserActivityData> openable) {
  if (!openable_ || !openable_->isEqualToUserActivityData(*openable)) openable_ = std::move(openable);
  return openable_;
}

}  // namespace linewatch
