// Lays out a list row: an image in a trailing column and two wrapped labels below each other.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "simulation/simulated_platform.h"
#include "ui/sample_row.h"

namespace linewatch::ui {
namespace {

struct InstalledPlatform {
  InstalledPlatform() { installPlatform(simulation::SimulatedPlatform::make()); }
  ~InstalledPlatform() { installPlatform(nullptr); }
};

void RowFromNewText(benchmark::State& state) {
  const InstalledPlatform installed;
  SampleRow row;
  const std::string texts[] = {"No trains between Central Station and Harbour",
                               "Delays of up to 20 minutes on the whole line until further notice",
                               "Buses replace trains"};
  std::size_t next = 0;
  for (auto _ : state) {
    row.primary->setText(texts[next % 3]);
    row.secondary->setText(texts[(next + 1) % 3]);
    row.layOutAtWidth(359);
    ++next;
  }
}
BENCHMARK(RowFromNewText);

void RowThatDidNotChange(benchmark::State& state) {
  const InstalledPlatform installed;
  SampleRow row;
  row.primary->setText("No trains between Central Station and Harbour");
  row.secondary->setText("Buses replace trains");
  for (auto _ : state) row.layOutAtWidth(359);
}
BENCHMARK(RowThatDidNotChange);

void NewRow(benchmark::State& state) {
  const InstalledPlatform installed;
  for (auto _ : state) {
    SampleRow row;
    row.primary->setText("No trains between Central Station and Harbour");
    row.layOutAtWidth(359);
    if (!(row.primary->frame().height > 0)) state.SkipWithError("the row has no text");
  }
}
BENCHMARK(NewRow);

}  // namespace
}  // namespace linewatch::ui
