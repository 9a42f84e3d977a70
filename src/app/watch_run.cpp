#include "app/watch_run.h"

#include <memory>
#include <system_error>
#include <utility>

#include "app/run_settings.h"
#include "desktop/loop/file_watch.h"
#include "shared/failure.h"

namespace linewatch::app {

Report runWatch(Session& session, const WatchLook& look, std::function<std::optional<Date>()> nextChange) {
  std::unique_ptr<RefreshLoop> loop;
  WatchedOutput output([&loop] { loop->refreshNow(); });
  loop = std::make_unique<RefreshLoop>(
      session.platform().mainLoop(), [&](std::function<void()> done) { look(output, std::move(done)); },
      RefreshLoop::Options{.refresh = session.platform().settings().values().refresh,
                           .nextChange = std::move(nextChange)});
  QObject following;
  followRefresh(following, session.platform().settings(), *loop);
  loop->refreshNow();
  const int error = output.run();
  session.platform().stopFetching();
  return reportOfWatch(error);
}

void followRefresh(QObject& owner, UserSettings& settings, RefreshLoop& loop) {
  if (settings.file().empty()) return;
  desktop::watchFile(owner, settings.file(), [&settings, &loop] {
    if (rereadSettings(settings)) loop.setRefresh(settings.values().refresh);
  });
}

Report reportOfWatch(int error) {
  if (error == 0) return {};
  return refused(failure("standard output", "", std::generic_category().message(error)));
}

}  // namespace linewatch::app
