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
    const ObjectOperation* entry = map->find(object.get());
    if (entry == nullptr) continue;
    // A copy, as the operation may change the map.
    const ObjectOperation operation = *entry;
    operation(*object);
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

void DynamicTypeWizard::autorefreshLabel(const std::shared_ptr<ui::Label>& label, FontProvider fontProvider) {
  if (!label || !fontProvider) return;
  refreshLabel(*label, fontProvider);
  _singletonInstance()->labelToFontMap_.set(label, std::move(fontProvider));
}

ui::SharedConstraint DynamicTypeWizard::autoscaledConstraint(const ui::SharedConstraint& constraint,
                                                             double constant, FontProvider fontProvider) {
  if (!constraint || !fontProvider) return constraint;
  DynamicTypeValue value(constant, std::move(fontProvider));
  ScaleConstraintToDynamicValue(*constraint, value);
  _singletonInstance()->constraintToValueMap_.set(constraint, std::move(value));
  return constraint;
}

void DynamicTypeWizard::updateUnscaledConstantValue(double constant, FontProvider fontProvider,
                                                    const ui::SharedConstraint& constraint) {
  DynamicTypeValue* value = _singletonInstance()->constraintToValueMap_.find(constraint.get());
  if (value == nullptr) return;
  value->setUnscaledValue(constant);
  value->setFontProvider(std::move(fontProvider));
  ScaleConstraintToDynamicValue(*constraint, *value);
}

void DynamicTypeWizard::autoscaleStackView(const std::shared_ptr<ui::StackView>& stackView, double spacing,
                                           FontProvider fontProvider) {
  if (!stackView || !fontProvider) return;
  DynamicTypeValue value(spacing, std::move(fontProvider));
  scaleStackView(*stackView, value);
  _singletonInstance()->stackToValueMap_.set(stackView, std::move(value));
}

void DynamicTypeWizard::makeObject(const std::shared_ptr<Object>& object, std::uint64_t order,
                                   ObjectOperation operation) {
  auto& orders = _singletonInstance()->orderToSelectorStringMap_;
  if (order < orders.size()) orders.at(order).set(object, std::move(operation));
}

void DynamicTypeWizard::unregisterObject(const std::shared_ptr<Object>& object) {
  for (ObjectOperationMap& map : _singletonInstance()->orderToSelectorStringMap_) map.remove(object.get());
}

// Fonts come first, so that whatever runs later sees the new ones.
void DynamicTypeWizard::_contentSizeCategoryDidChange() {
  refreshLabels();
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[0]);
  scaleConstraints();
  scaleStackViews();
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[1]);
  MakeObjectsPerformSelectorWithMap(&orderToSelectorStringMap_[2]);
}

void DynamicTypeWizard::refreshLabels() {
  for (const auto& label : labelToFontMap_.keys()) refreshLabel(*label, *labelToFontMap_.find(label.get()));
}

void DynamicTypeWizard::scaleConstraints() {
  for (const auto& constraint : constraintToValueMap_.keys()) {
    ScaleConstraintToDynamicValue(*constraint, *constraintToValueMap_.find(constraint.get()));
  }
}

void DynamicTypeWizard::scaleStackViews() {
  for (const auto& stackView : stackToValueMap_.keys()) {
    scaleStackView(*stackView, *stackToValueMap_.find(stackView.get()));
  }
}

}  // namespace linewatch
