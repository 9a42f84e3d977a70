// Edits a system of constraints as the bytes say, and compares each solution with an exact search of all
// points.

#include "choices.h"
#include "require.h"
#include "ui/layout/modelled_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  constexpr int kMostEdits = 30;
  Choices choices(data, size);
  ui::ModelledSystem system([&](int low, int high) { return choices.number(low, high); });
  for (int edits = 0; edits < kMostEdits && !choices.isAtEnd(); ++edits) {
    system.edit();
    if (choices.number(0, 3) == 0) require(system.solveAndCompare().empty());
  }
  require(system.solveAndCompare().empty());
  return 0;
}
