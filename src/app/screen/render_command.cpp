#include "app/screen/render_command.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/next_change.h"
#include "app/screen/still_host.h"
#include "app/watch_run.h"
#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/picture.h"
#include "list/list_dictionary_form.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/log.h"
#include "widget/transit_incidents_view_controller.h"
#include "wire/json_text.h"

namespace linewatch::app {

namespace {

desktop::ScreenSettings settingsOfPicture(const RenderCommand& command, const UserLocale& locale) {
  desktop::ScreenSettings settings;
  settings.category = command.textSize;
  settings.direction =
      locale.isRightToLeft() ? ui::LayoutDirection::rightToLeft : ui::LayoutDirection::leftToRight;
  settings.scale = command.scale;
  settings.language = locale.language();
  return settings;
}

/// Shows the widget and waits until its first fetch has ended.
void showUntilFetched(RVTransitIncidentsViewController& controller) {
  QEventLoop loop;
  controller.viewWillAppear(false);
  // This update joins the fetch that `viewWillAppear` has started.
  controller.widgetPerformUpdateWithCompletionHandler([&](WidgetUpdateResult) { loop.quit(); });
  loop.exec();
}

/// Asks the data source, because the widget announces its preferred size only when its list changes. Without
/// favourites it never does.
Size sizeOf(const RVTransitIncidentsViewController& controller, const Size& maximum) {
  const auto& dataSource = *controller.dataSource();
  return dataSource.preferredContentSizeForExpanded(dataSource.isExpanded(), maximum);
}

std::optional<Error> failureOf(Session& session, const RVTransitIncidentsViewController& controller) {
  const auto& result = controller.transitLineItemResult();
  return result && result->error() ? result->error() : session.unusedFeedError();
}

Report draw(RVTransitIncidentsViewController& controller, const Size& size, const RenderCommand& command) {
  const desktop::PictureStyle style{
      .size = size,
      .scale = command.scale,
      .appearance = command.dark ? ui::Appearance::dark : ui::Appearance::light};
  const auto error = desktop::savePicture(controller.view(), style, command.output);
  return error ? refused(*error) : Report();
}

/// The rows that the picture shows, as text.
std::string rowsOf(const RVTransitIncidentsViewController& controller, const CommonOptions& options) {
  const auto& result = controller.transitLineItemResult();
  if (!result) return {};
  const auto builder = RVTransitDataSourceBuilderForResult(*result, options.maxRows, nullptr, nullptr);
  const auto list = builder ? builder->listItem() : nullptr;
  return list ? jsonText(dictionaryForm(*list, [](const Bytes& bytes) { return Value(bytes.size()); })) : "";
}

/// Writes the picture again whenever its rows have changed.
class RenderWatch {
 public:
  RenderWatch(Session& session, RVTransitIncidentsViewController& controller, const Size& maximum,
              const CommonOptions& options, const RenderCommand& command)
      : session_(session), controller_(controller), maximum_(maximum), options_(options), command_(command) {}

  Report run() {
    return runWatch(
        session_, [this](WatchedOutput&, const std::function<void()>& done) { look(done); },
        [this] { return nextChange(); });
  }

 private:
  /// The first look draws the list that is there already.
  void look(const std::function<void()>& done) {
    if (!std::exchange(hasLooked_, true)) return drawChanged(done);
    controller_.widgetPerformUpdateWithCompletionHandler(
        [this, done](WidgetUpdateResult) { drawChanged(done); });
  }
  void drawChanged(const std::function<void()>& done) {
    drawChanged();
    done();
  }
  void drawChanged() {
    std::string rows = rowsOf(controller_, options_);
    if (rows == drawnRows_) return;
    const Report drawn = draw(controller_, sizeOf(controller_, maximum_), command_);
    // The next look tries again.
    if (drawn.status == 0)
      drawnRows_ = std::move(rows);
    else
      logError("%@", {drawn.complaint});
  }
  std::optional<Date> nextChange() const {
    const auto& result = controller_.transitLineItemResult();
    const auto lines = result && !result->error() ? result->successObject() : nullptr;
    return app::nextChange(lines ? *lines : TransitLineItems(), session_.platform().feeds().states(),
                           session_.platform().mainLoop().now());
  }

  Session& session_;
  RVTransitIncidentsViewController& controller_;
  Size maximum_;
  const CommonOptions& options_;
  const RenderCommand& command_;
  bool hasLooked_ = false;
  /// Absent before the first picture.
  std::optional<std::string> drawnRows_;
};

}  // namespace

Report render(const CommonOptions& options, const RenderCommand& command) {
  const auto locale = localeOf(options);
  const auto application = desktop::makeOffscreenApplication();
  const auto screen = std::make_shared<desktop::DrawingScreen>(settingsOfPicture(command, locale));
  auto session = Session::openWithFeeds(options, [&](desktop::DesktopSettings& settings) {
    settings.screen = screen;
    settings.isTimeFrozen = !command.watches;
  });
  if (!session) return refused(session.error());
  const WidgetDisplayMode mode = command.expanded ? WidgetDisplayMode::expanded : WidgetDisplayMode::compact;
  const Size compact{command.width, desktop::compactHeightAt(command.textSize)};
  const auto host = std::make_shared<StillHost>(
      compact, desktop::tallestPicture(command.width, command.scale), mode, options.maxRows);
  const auto controller = RVTransitIncidentsViewController::make(host, compact);
  showUntilFetched(*controller);
  // The widget can be expanded only after its list is known.
  const Size maximum = host->maximumSizeForDisplayMode(mode);
  controller->widgetActiveDisplayModeDidChange(mode, maximum);
  if (command.watches) return RenderWatch(**session, *controller, maximum, options, command).run();
  Report drawn = draw(*controller, sizeOf(*controller, maximum), command);
  const auto failure = failureOf(**session, *controller);
  if (drawn.status == 0 && failure) return notLoaded(*failure);
  // On standard error, because the picture may go to standard output.
  if (drawn.status == 0 && (*session)->platform().showsSampleCity())
    drawn.complaint = (*session)->texts()("SampleCity", {"linewatch feed add CITY"});
  return drawn;
}

}  // namespace linewatch::app
