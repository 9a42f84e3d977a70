#include "presentation/dynamic_type_wizard.h"

#include <utility>

#include "platform/platform.h"
#include "ui/interface_settings.h"
#include "ui/notification_center.h"

namespace linewatch {

namespace {

void refreshLabel(ui::Label& label, const FontProvider& fontProvider) {
  if (const auto font = fontProvider()) label.setFont(*font);
}

void scaleStackView(ui::StackView& stackView, const DynamicTypeValue& value) {
  stackView.setSpacing(stackView.snappedToPixel(value.scaledValue()));
}

/// A copy of the objects registered now, because a font provider may register others meanwhile.
template <class Key, class Value, class Operation>
void forEachEntry(const WeakKeyTable<Key, Value>& table, Operation operation) {
  for (const auto& key : table.keys()) {
    if (const auto value = table.find(key.get())) operation(*key, *value);
  }
}

}  // namespace

void ScaleConstraintToDynamicValue(ui::LayoutConstraint& constraint, const DynamicTypeValue& value) {
  const ui::LayoutItem* first = constraint.firstItem();
  const ui::LayoutBox* box = first != nullptr ? first->owningBox() : nullptr;
  const double scale = box != nullptr ? box->displayScale() : platform().interfaceSettings().displayScale();
  constraint.setConstant(ui::snappedToPixel(value.scaledValue(), scale));
}

void MakeObjectsPerformSelectorWithMap(ObjectOperationMap* map) {
  if (map == nullptr) return;
  for (const auto& object : map->keys()) {
    if (const auto operation = map->find(object.get())) (*operation)(*object);
  }
}

std::shared_ptr<DynamicTypeWizard> DynamicTypeWizard::_singletonInstance() {
  return platform().once<DynamicTypeWizard>([] {
    auto wizard = std::make_shared<DynamicTypeWizard>();
    platform().notificationCenter().addObserver(
        wizard, ui::kTextSizeDidChangeNotification,
        [self = wizard.get()] { self->_contentSizeCategoryDidChange(); });
    return wizard;
  });
}

void DynamicTypeWizard::autorefreshLabel(const std::shared_ptr<ui::Label>& label,
                                         FontProvider withFontProvider) {
  if (!label || !withFontProvider) return;
  refreshLabel(*label, withFontProvider);
  _singletonInstance()->labelToFontMap_.set(label, std::move(withFontProvider));
}

ui::SharedConstraint DynamicTypeWizard::autoscaledConstraint(const ui::SharedConstraint& constraint,
                                                             double constant, FontProvider withFontProvider) {
  if (!constraint || !withFontProvider) return constraint;
  DynamicTypeValue value(constant, std::move(withFontProvider));
  ScaleConstraintToDynamicValue(*constraint, value);
  _singletonInstance()->constraintToValueMap_.set(constraint, std::move(value));
  return constraint;
}

void DynamicTypeWizard::updateUnscaledConstantValue(double constant, FontProvider fontProvider,
                                                    const ui::SharedConstraint& forConstraint) {
  auto& values = _singletonInstance()->constraintToValueMap_;
  if (!values.find(forConstraint.get())) return;
  DynamicTypeValue value(constant, std::move(fontProvider));
  ScaleConstraintToDynamicValue(*forConstraint, value);
  values.set(forConstraint, std::move(value));
}

void DynamicTypeWizard::autoscaleStackView(const std::shared_ptr<ui::StackView>& stackView, double spacing,
                                           FontProvider withFontProvider) {
  if (!stackView || !withFontProvider) return;
  DynamicTypeValue value(spacing, std::move(withFontProvider));
  scaleStackView(*stackView, value);
  _singletonInstance()->stackToValueMap_.set(stackView, std::move(value));
}

void DynamicTypeWizard::makeObject(const std::shared_ptr<Object>& object, std::uint64_t order,
                                   ObjectOperation operation) {
  auto& orders = _singletonInstance()->orderToSelectorStringMap_;
  if (order < orders.size()) orders.at(order).set(object, std::move(operation));
}

void DynamicTypeWizard::unregisterObject(const std::shared_ptr<Object>& object) {
  for (ObjectOperationMap& map : _singletonInstance()->orderToSelectorStringMap_) map.remove(object);
}

// Fonts come first, because the later steps use them.
void DynamicTypeWizard::_contentSizeCategoryDidChange() {
  refreshLabels();
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[0]);
  scaleConstraints();
  scaleStackViews();
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[1]);
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[2]);
}

void DynamicTypeWizard::refreshLabels() { forEachEntry(labelToFontMap_, refreshLabel); }

void DynamicTypeWizard::scaleConstraints() {
  forEachEntry(constraintToValueMap_, ScaleConstraintToDynamicValue);
}

void DynamicTypeWizard::scaleStackViews() { forEachEntry(stackToValueMap_, scaleStackView); }

}  // namespace linewatch
