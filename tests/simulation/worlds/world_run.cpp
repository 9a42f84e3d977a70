#include "world_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

#include "list/list_dictionary_form.h"
#include "list/transit_item_data_source_builder.h"
#include "list_model.h"
#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_host.h"
#include "widget/saved_ui_data.h"
#include "widget/transit_incidents_view_controller.h"
#include "widget_model.h"

namespace linewatch::worlds {

namespace {

using namespace simulation;

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += "\n    " + text;
  return all.empty() ? "\n    (none)" : all;
}

/// Objects that must be gone once nobody needs them.
class Remembered {
 public:
  void add(const char* name, const std::shared_ptr<const void>& object) {
    if (object && std::ranges::find(objects_, object, &Entry::lock) == objects_.end()) {
      objects_.push_back({name, object});
    }
  }
  void forgetGone() {
    std::erase_if(objects_, [](const Entry& entry) { return entry.object.expired(); });
  }
  std::size_t aliveCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(objects_, [](const Entry& entry) { return !entry.object.expired(); }));
  }
  /// The name of one that is alive although it is none of `needed`.
  std::optional<std::string> survivor(const std::vector<const void*>& needed) const {
    for (const Entry& entry : objects_) {
      const auto object = entry.lock();
      if (object && std::ranges::count(needed, object.get()) == 0) return entry.name;
    }
    return std::nullopt;
  }

 private:
  struct Entry {
    const char* name;
    std::weak_ptr<const void> object;

    std::shared_ptr<const void> lock() const { return object.lock(); }
  };
  std::vector<Entry> objects_;
};

class Run {
 public:
  explicit Run(World world) : host_(std::move(world)) {}

  /// Performs the step in the widget and in the model. False when it is a tap on a row that does not exist.
  bool perform(const Step& step) {
    host_.platform().transcript().clear();
    const bool isResize = std::holds_alternative<step::Resize>(step);
    const Array before = isResize ? look() : Array{};
    remember();
    openable_ = tappedOpenable(step);
    if (host_.perform(step)) return false;
    remember();
    model_.perform(step, host_.platform(), isResize && look() != before);
    return true;
  }

  std::optional<std::string> fault(const Step& step) {
    using Check = std::optional<std::string> (Run::*)(const Step&);
    constexpr std::array<Check, 7> checks = {&Run::callsFault, &Run::stateFault,   &Run::listFault,
                                             &Run::rowsFault,  &Run::openingFault, &Run::savedFault,
                                             &Run::ownerFault};
    for (const Check check : checks) {
      if (auto fault = (this->*check)(step)) return fault;
    }
    return std::nullopt;
  }

 private:
  RVTransitIncidentsViewController* controller() const { return host_.controller().get(); }
  /// The rows in the artwork column.
  Array look() const {
    const RVTransitIncidentDataSource& source = *controller()->dataSource();
    Array rows{source.artworkColumnWidth(), dictionaryForm(source.shieldAjustedSummaryItem())};
    for (const SharedTransitItem& item : source.shieldAdjustedExpandedItems()) {
      if (source.isExpanded()) rows.emplace_back(dictionaryForm(*item));
    }
    return rows;
  }

  /// One fetch at a time, every handler once, notifications and timers: all in order and on time.
  std::optional<std::string> callsFault(const Step&) {
    std::vector<std::string> made;
    for (const TranscriptEvent& event : host_.transcript().events()) {
      if (auto call = callOf(event)) made.push_back(*std::move(call));
    }
    const auto expected = model_.takeCalls();
    if (made == expected) return std::nullopt;
    return "the widget's calls differ\n  expected:" + joined(expected) + "\n  made:" + joined(made);
  }

  std::optional<std::string> stateFault(const Step&) {
    const auto& expected = model_.controller();
    if (!controller()) return expected ? std::optional<std::string>("the controller is gone") : std::nullopt;
    const RVTransitIncidentDataSource& source = *controller()->dataSource();
    const auto& updater = controller()->updater();
    if (controller()->isVisible() != expected->visible) return "its visibility is wrong";
    if ((controller()->request() != nullptr) != expected->fetching) return "its fetch in flight is wrong";
    if (source.isExpanded() != expected->expanded) return "its display state is wrong";
    if (source.rowHeight() != expected->rowHeight) return "its row height is wrong";
    if (source.maxNumberOfRows() != expected->limit) return "its row limit is wrong";
    if ((updater != nullptr) != expected->dates.has_value()) return "its updater is wrong";
    if (updater && !std::ranges::equal(updater->updateDates(), *expected->dates))
      return "its update dates are wrong";
    return std::nullopt;
  }

  std::optional<std::string> listFault(const Step&) {
    if (!controller()) return std::nullopt;
    const auto& list = controller()->dataSource()->listItem();
    if (std::exchange(list_, list) != list) form_ = formOf(list.get());
    if (form_ == model_.controller()->list) return std::nullopt;
    return "the list differs\n  expected: " + model_.controller()->list.description() +
           "\n  shown:    " + form_.description();
  }

  /// Rows within the limit, and good service only of lines in the answer.
  std::optional<std::string> rowsFault(const Step&) {
    if (!controller() || !controller()->dataSource()->listItem()) return std::nullopt;
    const RVTransitIncidentDataSource& source = *controller()->dataSource();
    const TransitItems rows = source.listItem()->expandedItems().value_or(TransitItems{});
    // The limit does not apply to a single incident and the good-service row.
    if (rows.size() > std::max<std::uint64_t>(source.maxNumberOfRows(), 2)) return "more rows than the limit";
    TransitItems all = rows;
    if (const auto* row = std::get_if<SharedTransitItem>(&source.listItem()->summaryItem()))
      all.push_back(*row);
    const auto& known = source.transitLineItemResult()->successObject();
    const std::size_t count = known && !source.transitLineItemResult()->error() ? known->size() : 0;
    const bool toldTooMany = std::ranges::any_of(all, [count](const SharedTransitItem& row) {
      return row->primaryText() == "LineWatch_GoodService_Title" && linesInGoodService(*row) > count;
    });
    return toldTooMany ? std::optional<std::string>("good service of lines that are not known")
                       : std::nullopt;
  }
  static std::size_t linesInGoodService(const RVTransitItem& row) {
    const std::string text = row.secondaryText().value_or("");
    const auto bracket = text.find('(');
    return bracket == std::string::npos ? 1 : std::stoul(text.substr(bracket + 1));
  }

  /// A tap opens what the row has, once.
  std::optional<std::string> openingFault(const Step& step) {
    if (!std::holds_alternative<step::Tap>(step)) return std::nullopt;
    const World& world = host_.platform().world();
    const bool isURL = std::holds_alternative<std::string>(openable_);
    const bool isActivity = std::holds_alternative<Dictionary>(openable_);
    const bool opensActivity = isActivity && world.acceptsActivities;
    const bool opensURL = isURL && model_.controller()->hosted;
    const Transcript& transcript = host_.transcript();
    if (transcript.countOf("openURL") != (opensURL ? 1U : 0U)) return "the tap opened no URL, or too many";
    if (transcript.countOf("openUserActivity") != (opensActivity ? 1U : 0U)) {
      return "the tap opened no activity, or too many";
    }
    return std::nullopt;
  }
  using Opened = std::variant<std::monostate, std::string, Dictionary>;
  Opened tappedOpenable(const Step& step) const {
    const auto* tap = std::get_if<step::Tap>(&step);
    if (!tap || !controller()) return {};
    const Value item = dictionaryForm(controller()->dataSource()->_itemAtIndexPath({0, tap->row}));
    const auto* form = item.get<Dictionary>();
    const auto* openable = form ? form->at("openable").get<Dictionary>() : nullptr;
    if (!openable) return {};
    const auto url = openable->find("url");
    return url == openable->end() ? Opened(*openable) : Opened(url->second.description());
  }

  /// The saved state gives the list that the held result gives now.
  std::optional<std::string> savedFault(const Step& step) {
    const auto* disappear = std::get_if<step::Disappear>(&step);
    if (!disappear || !disappear->will || !host_.platform().world().archives) return std::nullopt;
    const RVTransitIncidentDataSource& source = *controller()->dataSource();
    const RVResult& held = *source.transitLineItemResult();
    const auto saved = loadSavedUIData();
    if (!held.successObject() && !held.error()) {
      return saved ? std::optional<std::string>("a state was saved without a result") : std::nullopt;
    }
    if (!saved) return "the saved state cannot be read";
    if (saved->expanded() != source.isExpanded()) return "the saved display state differs";
    const auto listFor = [&](const RVResult& result) {
      return RVTransitDataSourceBuilderForResult(result, source.maxNumberOfRows(), source.artworkCache(),
                                                 nullptr)
          ->listItem();
    };
    if (listFor(*saved->lineItemsResult())->isEqual(*listFor(held))) return std::nullopt;
    return "the saved state gives another list";
  }

  using Part = std::pair<const char*, std::shared_ptr<const void>>;
  std::vector<Part> partsOfController() const {
    if (!controller()) return {};
    return {{"the controller", host_.controller()},
            {"the view", controller()->sharedView()},
            {"the table", controller()->tableView()},
            {"the data source", controller()->dataSource()},
            {"the analytics session", controller()->analyticsDelegate()},
            {"an updater", controller()->updater()}};
  }
  void remember() {
    for (const auto& [name, part] : partsOfController()) parts_.add(name, part);
    if (controller()) requests_.add("a request", controller()->request());
  }

  /// Nothing outlives its owner. An opening may keep the session until its answer, in the loop's next turn.
  std::optional<std::string> ownerFault(const Step& step) {
    if (!std::holds_alternative<step::Advance>(step)) return std::nullopt;
    std::vector<const void*> needed;
    for (const auto& [name, part] : partsOfController()) needed.push_back(part.get());
    if (auto left = parts_.survivor(needed)) return *left + " outlives its owner";
    parts_.forgetGone();
    requests_.forgetGone();
    if (requests_.aliveCount() != model_.fetchCount())
      return "a request outlives its fetch, or went before it";
    return std::nullopt;
  }

  ScenarioHost host_;
  WidgetModel model_;
  Opened openable_;
  std::shared_ptr<const RVTransitListItem> list_;
  Value form_ = noValue();
  Remembered parts_, requests_;
};

}  // namespace

std::optional<Fault> faultIn(Json& scenario) {
  auto parsed = readScenario(scenario.dump());
  if (!parsed) return Fault{0, parsed.error().description(), /*isUnreadable=*/true};
  Run run(std::move(parsed->world));
  Json performed = Json::array();
  std::optional<Fault> fault;
  for (std::size_t i = 0; i < parsed->steps.size() && !fault; ++i) {
    if (!run.perform(parsed->steps[i])) continue;
    performed.push_back(scenario["steps"][i]);
    if (auto what = run.fault(parsed->steps[i])) fault = Fault{performed.size() - 1, *std::move(what)};
  }
  scenario["steps"] = std::move(performed);
  return fault;
}

}  // namespace linewatch::worlds
