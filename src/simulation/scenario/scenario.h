#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/extension_context.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "simulation/world/world.h"
#include "ui/text_style.h"

namespace linewatch::simulation {

/// The steps of a scenario.
namespace step {

/// The process entry makes the controller, and its view loads.
struct Load {};
struct Appear {
  bool will = true, did = true;
};
struct Disappear {
  bool will = true, did = true;
};
/// The host asks for an update. Its result is recorded under the id.
struct Update {
  std::string id;
};
struct Advance {
  Seconds seconds{0};
};
/// The host changes the display mode and tells the widget.
struct DisplayMode {
  WidgetDisplayMode mode = WidgetDisplayMode::compact;
};
/// The user taps a row, counted from 0.
struct Tap {
  std::size_t row = 0;
};
/// The host resizes the widget's view.
struct Resize {
  double width = 0, height = 0;
};
/// The host gives the widget other largest sizes and makes it ask for them.
struct Limits {
  Size compact, expanded;
};
/// The service answers the look-up that has waited longest, of those without a delay.
struct Answer {};
struct TextSize {
  ui::TextSizeCategory category = ui::kDefaultTextSizeCategory;
};
struct MemoryWarning {};
/// The world changes.
struct Set {
  std::function<void(World&)> change;
};
/// A snapshot of the widget is recorded.
struct Snapshot {};
/// The host drops the controller.
struct Release {};
/// The process is killed and a new one starts.
struct Restart {};

}  // namespace step

using Step =
    std::variant<step::Load, step::Appear, step::Disappear, step::Update, step::Advance, step::DisplayMode,
                 step::Tap, step::Resize, step::Limits, step::TextSize, step::MemoryWarning, step::Answer,
                 step::Set, step::Snapshot, step::Release, step::Restart>;

/// A world and the steps performed in it. The steps are in a possible order: a step that needs a widget comes
/// after a `Load`.
struct Scenario {
  World world;
  std::vector<Step> steps;
};

/// Reads a scenario from its JSON text. The error is the first fault, a sentence that starts with the path to
/// it: "steps[3].seconds: must not be negative".
Outcome<Scenario> readScenario(std::string_view text);

}  // namespace linewatch::simulation
