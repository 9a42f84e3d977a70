#include "widget/transit_incident_view_controller_state.h"

#include <utility>
#include <variant>

#include "platform/platform.h"
#include "platform/transit_storage_line_item.h"
#include "shared/rova_map.h"

namespace linewatch {

namespace {

using State = RVTransitIncidentViewControllerState;
using SharedState = std::shared_ptr<const State>;

constexpr std::string_view kSuccessKey = "lineItemResultSuccess";
constexpr std::string_view kErrorKey = "lineItemResultError";
constexpr std::string_view kExpandedKey = "expanded";

ArchivedList storageItems(const TransitLineItems& items) {
  return RovaMap(items, [](const SharedLineItem& item, std::size_t) -> std::optional<ArchivedObject> {
    if (!item) return std::nullopt;
    return ArchivedObject{std::make_shared<const TransitStorageLineItem>(*item)};
  });
}

SharedLineItem lineItemIn(const ArchivedObject& object) {
  const auto* archivable = std::get_if<std::shared_ptr<const Archivable>>(&object.contents);
  return archivable ? std::dynamic_pointer_cast<const TransitStorageLineItem>(*archivable) : nullptr;
}

std::shared_ptr<RVResult> decodeSuccess(KeyedDecoder& decoder) {
  const AllowedClasses allowed{std::string(kArchivedArrayClass),
                               std::string(TransitStorageLineItem::kArchiveClassName)};
  const auto decoded = decoder.decodeObject(kSuccessKey, allowed);
  const auto* list = decoded ? std::get_if<ArchivedList>(&decoded->contents) : nullptr;
  if (list == nullptr) return nullptr;
  return std::make_shared<RVResult>(std::make_shared<const TransitLineItems>(
      RovaMap(*list, [](const ArchivedObject& object, std::size_t) { return lineItemIn(object); })));
}

std::shared_ptr<RVResult> decodeFailure(KeyedDecoder& decoder) {
  const auto decoded = decoder.decodeObject(kErrorKey, {std::string(kArchivedErrorClass)});
  const auto* error = decoded ? std::get_if<Error>(&decoded->contents) : nullptr;
  return error ? std::make_shared<RVResult>(*error) : nullptr;
}

std::shared_ptr<RVResult> decodeResult(KeyedDecoder& decoder) {
  if (decoder.containsValueForKey(kSuccessKey)) return decodeSuccess(decoder);
  if (decoder.containsValueForKey(kErrorKey)) return decodeFailure(decoder);
  return nullptr;
}

/// The decoded state. A record without a result gives an empty state, because null would count as a decoding
/// failure.
SharedState stateOrEmpty(KeyedDecoder& decoder) {
  auto state = State::makeWithDecoder(decoder);
  return state ? state : std::make_shared<const State>(nullptr, false);
}

SharedState stateIn(const std::optional<ArchivedObject>& root) {
  const auto* archivable = root ? std::get_if<std::shared_ptr<const Archivable>>(&root->contents) : nullptr;
  auto state = archivable ? std::dynamic_pointer_cast<const State>(*archivable) : nullptr;
  return state && state->lineItemsResult() ? state : nullptr;
}

std::string resultText(const RVResult* result) {
  if (result == nullptr) return "(null)";
  if (const auto& items = result->successObject()) return std::to_string(items->size()) + " line items";
  return result->error() ? result->error()->description() : "nothing";
}

}  // namespace

RVTransitIncidentViewControllerState::RVTransitIncidentViewControllerState(
    std::shared_ptr<RVResult> lineItemsResult, bool expanded)
    : lineItemsResult_(std::move(lineItemsResult)), expanded_(expanded) {}

void RVTransitIncidentViewControllerState::encodeWithCoder(KeyedCoder& coder) const {
  if (lineItemsResult_ && lineItemsResult_->successObject()) {
    coder.encodeObject(kSuccessKey, {storageItems(*lineItemsResult_->successObject())});
  } else if (lineItemsResult_ && lineItemsResult_->error()) {
    coder.encodeObject(kErrorKey, {*lineItemsResult_->error()});
  }
  coder.encodeBool(kExpandedKey, expanded_);
}

SharedState RVTransitIncidentViewControllerState::makeWithDecoder(KeyedDecoder& decoder) {
  auto result = decodeResult(decoder);
  if (!result) return nullptr;
  return std::make_shared<const State>(std::move(result), decoder.decodeBool(kExpandedKey));
}

SharedState RVTransitIncidentViewControllerState::unarchiveFromData(const Bytes& data,
                                                                    std::optional<Error>& error) {
  const auto unarchiver = platform().keyedArchiver().openForReading(data);
  if (!unarchiver) return nullptr;
  unarchiver->setFactory(std::string(TransitStorageLineItem::kArchiveClassName),
                         TransitStorageLineItem::makeWithDecoder);
  AllowedClasses allowed;
  for (const std::string_view name : {kArchiveClassName, kFormerArchiveClassName}) {
    unarchiver->setFactory(std::string(name), stateOrEmpty);
    allowed.emplace(name);
  }
  const auto root = unarchiver->decodeTopLevelObject(allowed, error);
  unarchiver->finishDecoding();
  return error ? nullptr : stateIn(root);
}

std::string RVTransitIncidentViewControllerState::description() const {
  return "<" + classNameOf(*this) + " | result: " + resultText(lineItemsResult_.get()) +
         " | expanded: " + (expanded_ ? "YES" : "NO") + ">";
}

}  // namespace linewatch
