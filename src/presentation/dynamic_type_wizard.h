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

/// Something to be run on an object that is entered with it.
using ObjectOperation = std::function<void(Object&)>;
using ObjectOperationMap = WeakKeyTable<Object, ObjectOperation>;

/// Keeps registered views in step with the text size that the user chooses. At each change, in this order:
/// labels get their font, objects of order 0 are told, constraints and then stack views get their lengths,
/// objects of order 1 are told, and then those of order 2.
///
/// Whatever is registered is held weakly; font providers are held strongly, and should hold their view
/// weakly. There is one registry a platform. Main thread.
class DynamicTypeWizard final : public Object {
 public:
  /// Gives the label the provider's font now and at each change. Does nothing without a provider.
  static void autorefreshLabel(const std::shared_ptr<ui::Label>& label, FontProvider fontProvider);
  /// Gives the constraint `constant`, scaled with the provider's font and snapped to the pixel grid, now and
  /// at each change. Does nothing without a provider. Returns the constraint.
  static ui::SharedConstraint autoscaledConstraint(const ui::SharedConstraint& constraint, double constant,
                                                   FontProvider fontProvider);
  /// Replaces both of what a registered constraint was registered with; does nothing with another one.
  static void updateUnscaledConstantValue(double constant, FontProvider fontProvider,
                                          const ui::SharedConstraint& constraint);
  /// Like `autoscaledConstraint`, for the stack's spacing.
  static void autoscaleStackView(const std::shared_ptr<ui::StackView>& stackView, double spacing,
                                 FontProvider fontProvider);
  /// Runs `selector` on the object at each change, in place of an earlier one of the object in this order.
  /// Orders other than 0, 1 and 2 do nothing, nor does a null selector.
  template <class T>
  static void makeObject(const std::shared_ptr<T>& object, void (T::*selector)(),
                         std::uint64_t whenSizeCategoryChangesWithOrder) {
    if (selector == nullptr) return;
    makeObject(std::static_pointer_cast<Object>(object), whenSizeCategoryChangesWithOrder,
               [selector](Object& told) { (static_cast<T&>(told).*selector)(); });
  }
  /// Takes the object out of the three orders; what else it is registered for stays.
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

/// Gives the constraint the value, snapped to the pixel grid of the view that its first item is or belongs
/// to; to the main display's where there is none.
void ScaleConstraintToDynamicValue(ui::LayoutConstraint& constraint, const DynamicTypeValue& value);

/// Runs the operations of the objects that are in the map now, save of those that are taken out meanwhile. A
/// null map does nothing.
void MakeObjectsPerformSelectorWithMap(ObjectOperationMap* map);

}  // namespace linewatch
