#include "simulation/scenario/scenario_host.h"

#include <utility>
#include <variant>

#include "simulation/scenario/scenario_snapshot.h"
#include "ui/notification_center.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::simulation {

/// Performs one step. Returns why the step cannot be performed; absent when it was.
struct ScenarioHost::Performer {
  using Fault = std::optional<std::string>;
  ScenarioHost& host;

  Fault operator()(const step::Load&) const {
    host.load();
    return std::nullopt;
  }
  Fault operator()(const step::Appear& appear) const {
    if (appear.will) host.controller_->viewWillAppear(kAnimated);
    if (appear.did) host.controller_->viewDidAppear(kAnimated);
    return std::nullopt;
  }
  Fault operator()(const step::Disappear& disappear) const {
    if (disappear.will) host.controller_->viewWillDisappear(kAnimated);
    if (disappear.did) host.controller_->viewDidDisappear(kAnimated);
    return std::nullopt;
  }
  Fault operator()(const step::Update& update) const {
    host.update(update.id);
    return std::nullopt;
  }
  Fault operator()(const step::Advance& advance) const {
    host.platform_->advance(advance.seconds);
    return std::nullopt;
  }
  Fault operator()(const step::DisplayMode& change) const {
    host.setActiveMode(change.mode);
    return std::nullopt;
  }
  Fault operator()(const step::Tap& tap) const { return host.tap(tap.row); }
  Fault operator()(const step::Resize& resize) const {
    host.resize({resize.width, resize.height});
    return std::nullopt;
  }
  Fault operator()(const step::Limits& limits) const {
    host.limit(limits.compact, limits.expanded);
    return std::nullopt;
  }
  Fault operator()(const step::Answer&) const {
    if (host.platform_->answerLookup()) return std::nullopt;
    return "no look-up waits for an answer";
  }
  Fault operator()(const step::TextSize& textSize) const {
    host.change([&](World& world) { world.textSize = textSize.category; });
    return std::nullopt;
  }
  Fault operator()(const step::MemoryWarning&) const {
    host.controller_->didReceiveMemoryWarning();
    return std::nullopt;
  }
  Fault operator()(const step::Set& set) const {
    host.change(set.change);
    return std::nullopt;
  }
  Fault operator()(const step::Snapshot&) const {
    host.platform_->transcript().record("snapshot", snapshotOf(*host.controller_));
    return std::nullopt;
  }
  Fault operator()(const step::Release&) const {
    host.controller_.reset();
    return std::nullopt;
  }
  Fault operator()(const step::Restart&) const {
    host.restart();
    return std::nullopt;
  }

  static constexpr bool kAnimated = false;
};

ScenarioHost::ScenarioHost(World world, Wrap wrap)
    : wrap_(std::move(wrap)), platform_(SimulatedPlatform::make(std::move(world))) {
  install();
}

ScenarioHost::~ScenarioHost() {
  controller_ = nullptr;
  installPlatform(nullptr);
}

std::optional<std::string> ScenarioHost::perform(const Step& step) {
  return std::visit(Performer{*this}, step);
}

void ScenarioHost::install() { installPlatform(wrap_ ? wrap_(*platform_) : platform_); }

void ScenarioHost::load() {
  controller_ =
      RVTransitIncidentsViewController::make(platform_->extensionContext(), platform_->world().host.bounds);
  controller_->setPreferredContentSizeHandler([this](const Size& size) {
    platform_->transcript().record("preferredContentSize", {{"size", Array{size.width, size.height}}});
  });
  controller_->view();
  controller_->tableView()->setReloadHandler([this](std::size_t section, ui::RowAnimation) {
    platform_->transcript().record("reload", {{"section", section}});
  });
}

void ScenarioHost::update(const std::string& id) {
  controller_->widgetPerformUpdateWithCompletionHandler([id, platform = std::weak_ptr(platform_)](
                                                            WidgetUpdateResult result) {
    const auto running = platform.lock();
    if (!running) return;
    running->transcript().record("updateResult", {{"id", id}, {"result", static_cast<std::int64_t>(result)}});
  });
}

void ScenarioHost::setActiveMode(WidgetDisplayMode mode) {
  platform_->changeWorld([mode](World& world) { world.host.activeMode = mode; });
  const WorldHost& host = platform_->world().host;
  controller_->widgetActiveDisplayModeDidChange(
      mode, mode == WidgetDisplayMode::expanded ? host.expanded : host.compact);
}

std::optional<std::string> ScenarioHost::tap(std::size_t row) {
  ui::TableView& table = *controller_->tableView();
  if (row >= table.numberOfRowsInSection(0)) return "there is no row " + std::to_string(row) + " to tap";
  table.tapRow({0, row});
  return std::nullopt;
}

void ScenarioHost::resize(const Size& size) {
  controller_->viewWillTransitionToSize(size);
  controller_->view().setFrame({0, 0, size.width, size.height});
}

/// The widget reads its limits again when the text size changes, and at few other times.
void ScenarioHost::limit(const Size& compact, const Size& expanded) {
  platform_->changeWorld([&](World& world) {
    world.host.compact = compact;
    world.host.expanded = expanded;
  });
  platform_->notificationCenter().post(ui::kTextSizeDidChangeNotification);
}

void ScenarioHost::change(const std::function<void(World&)>& change) {
  platform_->changeWorld(change);
  if (controller_) controller_->view().environmentDidChange();
}

void ScenarioHost::restart() {
  controller_ = nullptr;
  const auto former = std::exchange(platform_, SimulatedPlatform::restarted(*platform_));
  install();
}

}  // namespace linewatch::simulation
