#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>

#include "presentation/dynamic_type_value.h"
#include "presentation/weak_key_table.h"
#include "shared/object.h"
#include "ui/label.h"
#include "ui/layout/layout_constraint.h"
#include "ui/stack_view.h"

namespace linewatch {

/// The operation that an object registered for text size changes.
using ObjectOperation = std::function<void(Object&)>;
using ObjectOperationMap = WeakKeyTable<Object, ObjectOperation>;

/// Keeps registered views in step with the text size that the user chooses. At each change, in this order:
/// labels get their font, the operations of order 0 run, constraints and then stack views get their lengths,
/// and the operations of order 1 and then of order 2 run.
///
/// Registered objects are held weakly. A font provider lives as long as the object that it is registered for;
/// one that needs the object holds it weakly. There is one registry per platform. Main thread.
class DynamicTypeWizard final : public Object {
 public:
  /// Gives the label the provider's font now and at each change. Does nothing without a provider.
  static void autorefreshLabel(const std::shared_ptr<ui::Label>& label, FontProvider withFontProvider);
  /// Gives the constraint `constant`, scaled with the provider's font and snapped to the pixel grid, now and
  /// at each change. Does nothing without a provider. Returns the constraint.
  static ui::SharedConstraint autoscaledConstraint(const ui::SharedConstraint& constraint, double constant,
                                                   FontProvider withFontProvider);
  /// Replaces the constant and the provider of a registered constraint; ignores any other constraint.
  static void updateUnscaledConstantValue(double constant, FontProvider fontProvider,
                                          const ui::SharedConstraint& forConstraint);
  /// Like `autoscaledConstraint`, for the stack's spacing.
  static void autoscaleStackView(const std::shared_ptr<ui::StackView>& stackView, double spacing,
                                 FontProvider withFontProvider);
  /// Runs `performSelector` on the object at each change. It replaces the object's earlier operation of the
  /// same order. Orders other than 0, 1 and 2 and a null operation are ignored.
  template <class T>
  static void makeObject(const std::shared_ptr<T>& object, void (T::*performSelector)(),
                         std::uint64_t whenSizeCategoryChangesWithOrder) {
    if (performSelector == nullptr) return;
    makeObject(std::static_pointer_cast<Object>(object), whenSizeCategoryChangesWithOrder,
               [performSelector](Object& told) { (static_cast<T&>(told).*performSelector)(); });
  }
  /// Removes the object's operations of all three orders. A font, constant or spacing stays registered.
  static void unregisterObject(const std::shared_ptr<Object>& object);

 private:
  static std::shared_ptr<DynamicTypeWizard> _singletonInstance();
  static void makeObject(const std::shared_ptr<Object>& object, std::uint64_t order,
                         ObjectOperation operation);

  void _contentSizeCategoryDidChange();
  void refreshLabels();
  void scaleConstraints();
  void scaleStackViews();

  WeakKeyTable<ui::Label, FontProvider> labelToFontMap_;
  WeakKeyTable<ui::LayoutConstraint, DynamicTypeValue> constraintToValueMap_;
  WeakKeyTable<ui::StackView, DynamicTypeValue> stackToValueMap_;
  std::array<ObjectOperationMap, 3> orderToSelectorStringMap_;
};

/// Sets the constraint's constant to the value, snapped to the pixel grid of the first item's view, or of the
/// main display when the item has no view.
void ScaleConstraintToDynamicValue(ui::LayoutConstraint& constraint, const DynamicTypeValue& value);

/// Runs the operation of each object that is in the map at the time of the call and is not removed during it.
/// Does nothing for a null map.
void MakeObjectsPerformSelectorWithMap(ObjectOperationMap* map);

}  // namespace linewatch
