// Loads any bytes as the saved state of the widget. They are loaded, left alone, or removed; a loaded state
// can be saved and loaded again.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/companion_application.h"
#include "require.h"
#include "simulation/simulated_platform.h"
#include "widget/saved_ui_data.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  const auto platform = simulation::SimulatedPlatform::make();
  installPlatform(platform);
  Dictionary& stored = platform->preferences().suite(kCompanionAppGroupSuite);
  stored.insert_or_assign(std::string(kSavedUIDataKey), Bytes(data, data + size));
  if (const auto state = loadSavedUIData()) {
    require(state->lineItemsResult() != nullptr);
    saveUIData(state);
    const auto again = loadSavedUIData();
    require(again != nullptr && again->expanded() == state->expanded());
  }
  return 0;
}
