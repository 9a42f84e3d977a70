// Lays out a list row: an image in a trailing column and two wrapped labels that stand on baselines.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "platform/ui/image_view.h"
#include "platform/ui/label.h"
#include "platform/ui/stack_view.h"
#include "platform/ui/table_view.h"
#include "platform/ui/visual_effect_view.h"
#include "simulation/simulated_platform.h"

namespace linewatch::ui {
namespace {

class EffectLabel : public VisualEffectView {
 public:
  EffectLabel(const std::shared_ptr<Label>& label, VibrancyEffect effect)
      : VisualEffectView(effect), label_(label) {
    label->setLaidOutByConstraints(true);
    label->setNumberOfLines(0);
    contentView().addSubview(label);
    LayoutConstraint::activate({label->leadingAnchor().constraintEqualTo(leadingAnchor()),
                                label->trailingAnchor().constraintEqualTo(trailingAnchor()),
                                label->topAnchor().constraintEqualTo(topAnchor()),
                                label->bottomAnchor().constraintEqualTo(bottomAnchor())});
  }
  View& viewForFirstBaselineLayout() override { return *label_; }
  View& viewForLastBaselineLayout() override { return *label_; }

 private:
  std::shared_ptr<Label> label_;
};

/// A cell with the constraints of a list row.
class Row {
 public:
  Row() {
    primary->setFont(Font(TextStyle::headline, {true, false}));
    secondary->setFont(Font(TextStyle::subheadline));
    View& content = cell->contentView();
    stack->setLaidOutByConstraints(true);
    stack->setBaselineRelativeArrangement(true);
    stack->setSpacing(21);
    stack->addArrangedSubview(std::make_shared<EffectLabel>(primary, VibrancyEffect::primary));
    stack->addArrangedSubview(std::make_shared<EffectLabel>(secondary, VibrancyEffect::secondary));
    image->setLaidOutByConstraints(true);
    image->setImage(platform().imageSource().imageNamed("shield"));
    cell->addLayoutGuide(guide);
    content.addLayoutGuide(gutter);
    content.addSubview(stack);
    content.addSubview(image);
    constrain(content);
    cell->setFrame({0, 0, 359, 110});
  }

  void layOut() {
    cell->systemLayoutSizeFittingSize({359, 0}, kRequiredPriority, kFittingSizePriority);
    cell->layoutIfNeeded();
  }

  std::shared_ptr<Label> primary = std::make_shared<Label>();
  std::shared_ptr<Label> secondary = std::make_shared<Label>();
  std::shared_ptr<TableViewCell> cell = std::make_shared<TableViewCell>(TableViewCellStyle::plain, "row");

 private:
  void constrain(View& content) {
    LayoutConstraint::activate(
        {content.heightAnchor().constraintEqualToConstant(110),
         guide->centerYAnchor().constraintEqualTo(content.centerYAnchor()),
         guide->leadingAnchor().constraintEqualTo(content.leadingAnchor(), 16),
         guide->trailingAnchor().constraintEqualTo(content.trailingAnchor(), -16),
         guide->topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor()),
         guide->bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor()),
         gutter->topAnchor().constraintEqualTo(guide->topAnchor()),
         gutter->bottomAnchor().constraintEqualTo(guide->bottomAnchor()),
         gutter->trailingAnchor().constraintEqualTo(guide->trailingAnchor()),
         gutter->widthAnchor().constraintEqualToConstant(73),
         primary->firstBaselineAnchor().constraintEqualTo(guide->topAnchor(), 12),
         guide->bottomAnchor().constraintEqualTo(stack->lastBaselineAnchor()),
         stack->leadingAnchor().constraintEqualTo(guide->leadingAnchor()),
         stack->trailingAnchor().constraintEqualTo(gutter->leadingAnchor()),
         image->trailingAnchor().constraintEqualTo(gutter->trailingAnchor()),
         image->centerYAnchor().constraintEqualTo(guide->centerYAnchor()),
         image->topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor(), 8),
         image->bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor(), -8)});
  }

  std::shared_ptr<StackView> stack = std::make_shared<StackView>(Axis::vertical);
  std::shared_ptr<ImageView> image = std::make_shared<ImageView>();
  std::shared_ptr<LayoutGuide> guide = std::make_shared<LayoutGuide>();
  std::shared_ptr<LayoutGuide> gutter = std::make_shared<LayoutGuide>();
};

struct InstalledPlatform {
  InstalledPlatform() { installPlatform(simulation::SimulatedPlatform::make()); }
  ~InstalledPlatform() { installPlatform(nullptr); }
};

void RowFromNewText(benchmark::State& state) {
  const InstalledPlatform installed;
  Row row;
  const std::string texts[] = {"No trains between Central Station and Harbour",
                               "Delays of up to 20 minutes on the whole line until further notice",
                               "Buses replace trains"};
  std::size_t next = 0;
  for (auto _ : state) {
    row.primary->setText(texts[next % 3]);
    row.secondary->setText(texts[(next + 1) % 3]);
    row.layOut();
    ++next;
  }
}
BENCHMARK(RowFromNewText);

void RowThatDidNotChange(benchmark::State& state) {
  const InstalledPlatform installed;
  Row row;
  row.primary->setText("No trains between Central Station and Harbour");
  row.secondary->setText("Buses replace trains");
  for (auto _ : state) row.layOut();
}
BENCHMARK(RowThatDidNotChange);

void NewRow(benchmark::State& state) {
  const InstalledPlatform installed;
  for (auto _ : state) {
    Row row;
    row.primary->setText("No trains between Central Station and Harbour");
    row.layOut();
    benchmark::DoNotOptimize(row);
  }
}
BENCHMARK(NewRow);

}  // namespace
}  // namespace linewatch::ui
