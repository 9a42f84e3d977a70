#include "list/list_dictionary_form.h"

#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "activity/openable_url.h"
#include "activity/user_activity_data.h"
#include "platform/transit_record_fields.h"
#include "ui/artwork_image_source.h"
#include "wire/message_fields.h"

namespace linewatch {

namespace {

/// The fields of a shield or an icon that are set. The first field is always included, so that one with
/// default values differs from an absent one.
template <class Part>
Dictionary formOfPart(const Part& part) {
  Dictionary form = fields::dictionary(part);
  const auto& first = std::get<0>(FieldTable<Part>::fields);
  form.emplace(first.name, first.in(part));
  return form;
}

template <class Part>
void addPart(Dictionary& form, const std::optional<Part>& part) {
  if (part) form.merge(formOfPart(*part));
}

Value formOf(const SharedArtwork& artwork) { return artwork ? Value(dictionaryForm(*artwork)) : noValue(); }

Dictionary formOf(const ArtworkImageSource* source) {
  if (const auto* sized = dynamic_cast<const SizedTransitArtwork*>(source)) {
    return {{"shield", formOf(sized->artworkDataSource())}, {"size", sized->shieldSize()}};
  }
  if (const auto* image = dynamic_cast<const NamedImage*>(source)) return {{"image", image->name()}};
  return {{"image", source ? Value(source->description()) : noValue()}};
}

Value formOf(const std::shared_ptr<const RVConfiguredArtwork>& artwork) {
  if (!artwork) return noValue();
  Dictionary form = formOf(artwork->artworkSource().get());
  form.emplace("alpha", artwork->alpha());
  return form;
}

Value formOf(const Value& value, const BytesForm& formOfBytes) {
  const auto* bytes = value.get<Bytes>();
  return bytes && formOfBytes ? formOfBytes(*bytes) : value;
}

Value formOf(const std::optional<Dictionary>& userInfo, const BytesForm& formOfBytes) {
  if (!userInfo) return noValue();
  Dictionary form;
  for (const auto& [key, value] : *userInfo) form.emplace(key, formOf(value, formOfBytes));
  return form;
}

Value formOf(const RVOpenable* openable, const BytesForm& formOfBytes) {
  if (const auto* url = dynamic_cast<const OpenableURL*>(openable)) {
    return Dictionary{{"url", url->url().absoluteString}};
  }
  if (const auto* activity = dynamic_cast<const RVUserActivityData*>(openable)) {
    return Dictionary{{"activityType", valueOrNone(activity->activityType())},
                      {"userInfo", formOf(activity->userInfo(), formOfBytes)}};
  }
  return openable ? Value(openable->description()) : noValue();
}

Value formOf(const std::optional<TransitArtworks>& artworks) {
  if (!artworks) return noValue();
  Array forms;
  for (const SharedArtwork& artwork : *artworks) forms.push_back(formOf(artwork));
  return forms;
}

Value formOf(const std::optional<TransitItems>& items, const BytesForm& formOfBytes) {
  if (!items) return noValue();
  Array forms;
  forms.reserve(items->size());
  for (const SharedTransitItem& item : *items) forms.push_back(dictionaryForm(*item, formOfBytes));
  return forms;
}

}  // namespace

Dictionary dictionaryForm(const RVTransitListItem& list, const BytesForm& formOfBytes) {
  return {{"summaryItem", dictionaryForm(list.summaryItem(), formOfBytes)},
          {"expandedItems", formOf(list.expandedItems(), formOfBytes)}};
}

Dictionary dictionaryForm(const RVTransitItem& item, const BytesForm& formOfBytes) {
  return {{"kind", "item"},
          {"primaryText", valueOrNone(item.primaryText())},
          {"secondaryText", valueOrNone(item.secondaryText())},
          {"displayArtwork", item.displayArtwork()},
          {"artwork", formOf(item.artwork())},
          {"openable", formOf(item.openable().get(), formOfBytes)}};
}

Dictionary dictionaryForm(const RVTransitSummaryItem& item, const BytesForm& formOfBytes) {
  return {{"kind", "summary"},
          {"primaryText", valueOrNone(item.primaryText())},
          {"artworks", formOf(item.artworks())},
          {"openable", formOf(item.userActivityData().get(), formOfBytes)}};
}

Value dictionaryForm(const SummaryItem& item, const BytesForm& formOfBytes) {
  struct Visitor {
    const BytesForm& formOfBytes;

    Value operator()(std::monostate) const { return noValue(); }
    Value operator()(const SharedTransitItem& row) const { return dictionaryForm(*row, formOfBytes); }
    Value operator()(const std::shared_ptr<const RVTransitSummaryItem>& row) const {
      return dictionaryForm(*row, formOfBytes);
    }
  };
  return std::visit(Visitor{formOfBytes}, item);
}

Dictionary dictionaryForm(const TransitArtworkDataSource& artwork) {
  Dictionary form = fields::dictionary(artwork);
  form.erase("shieldDataSource");
  form.erase("iconDataSource");
  addPart(form, artwork.shieldDataSource);
  addPart(form, artwork.iconDataSource);
  if (const auto& fallback = artwork.iconFallbackShieldDataSource) {
    form.insert_or_assign("iconFallbackShieldDataSource", formOfPart(*fallback));
  }
  if (auto width = form.extract("intrinsicWidth")) {
    width.key() = "width";
    form.insert(std::move(width));
  }
  return form;
}

}  // namespace linewatch
