#include "app/program.h"

#include <QCoreApplication>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <system_error>

#include <unistd.h>

#include "app/commands.h"
#include "app/refresh_signal.h"
#include "app/rider_texts.h"
#include "app/run_settings.h"
#include "app/terminal_text.h"
#include "app/text_table.h"
#include "machine/display.h"
#include "machine/terminal_line.h"
#include "shared/environment.h"
#include "shared/failure.h"
#include "shared/installation.h"

namespace linewatch::app {

namespace {

/// Replaces this process with linewatch-screen, which can draw. It is another program because loading its
/// libraries takes longer than most commands run. Returns only if it cannot be started, with the error.
Report replaceWithScreenProgram(char** argv) {
  const std::string path = installedParts() / "linewatch-screen";
  // Until the other program has its own handler, the signal must not end it.
  std::signal(kRefreshSignal, SIG_IGN);
  execv(path.c_str(), argv);
  return refused(failure(path, "", std::generic_category().message(errno)));
}

/// A command that prints once takes its time from one moment; one that goes on needs a running clock.
Session::Adjustment runningClock(bool isRunning) {
  return [isRunning](desktop::DesktopSettings& settings) { settings.isTimeFrozen = !isRunning; };
}

/// Runs a command: with a session, in linewatch-screen, or alone.
class Dispatch {
 public:
  Dispatch(const CommonOptions& options, char** argv) : options_(options), argv_(argv) {}

  Report operator()(const PanelCommand& command) const {
    if (hasDisplay(processEnvironment)) return replaceWithScreenProgram(argv_);
    if (!command.record.empty())
      return refused(
          failure(command.record, "", "nothing is recorded, because there is no display for the panel"));
    Report report = (*this)(ShowCommand{});
    if (report.complaint.empty()) report.complaint = RiderTexts(localeOf(options_))("NoDisplay");
    return report;
  }
  Report operator()(const ShowCommand& command) const {
    return inSession<Session::openWithFeeds>(
        [&](Session& session) { return show(session, command, options_, style_); },
        runningClock(command.watches));
  }
  Report operator()(const StatusCommand& command) const {
    return inSession([&](Session& session) { return status(session, command, options_); },
                     runningClock(command.watches));
  }
  Report operator()(const FavoritesCommand& command) const {
    return inSession<Session::openWithFeeds>(
        [&](Session& session) { return favorites(session, command, style_); });
  }
  Report operator()(const LinesCommand& command) const {
    return inSession<Session::openWithFeeds>(
        [&](Session& session) { return lines(session, command, style_); });
  }
  Report operator()(const FeedCommand& command) const {
    return inSession([&](Session& session) { return feed(session, command, style_); });
  }
  Report operator()(const AnalyticsCommand& command) const {
    return inSession([&](Session& session) { return analytics(session, command, style_); });
  }
  Report operator()(const SettingsCommand& command) const {
    return inSession([&](Session& session) { return settings(session, command, options_, style_); });
  }
  Report operator()(const NotifyCommand& command) const {
    return inSession<Session::openWithFeeds>(
        [&](Session& session) { return notify(session, command, style_); });
  }
  Report operator()(const MuteCommand& command) const {
    return inSession<Session::openWithFeeds>([&](Session& session) { return mute(session, command); });
  }
  Report operator()(const CompleteCommand& command) const {
    return inSession([&](Session& session) { return complete(session, command); });
  }
  Report operator()(const OpenCommand& command) const {
    return inSession([&](Session& session) { return open(session, command); });
  }
  Report operator()(const SimulateCommand& command) const {
    return drawsPicture(command) ? replaceWithScreenProgram(argv_) : simulate(command, style_);
  }
  Report operator()(const RenderCommand&) const { return replaceWithScreenProgram(argv_); }

 private:
  template <auto open = Session::open, class Work>
  Report inSession(Work work, const Session::Adjustment& adjust = {}) const {
    // The application gets only the program's name, because Qt would remove its own options from the
    // arguments.
    int qtArgc = 1;
    const QCoreApplication application(qtArgc, argv_);
    const auto session = open(options_, adjust);
    return session ? work(**session) : refused(session.error());
  }

  const CommonOptions& options_;
  char** argv_;
  TerminalStyle style_ = TerminalStyle::ofStandardOutput();
};

void write(const std::string& text, std::FILE* stream) { std::fwrite(text.data(), 1, text.size(), stream); }

/// Makes a write beyond the file size limit fail with an error; by default it would end the program. The
/// signal is handled and not ignored, because child processes inherit ignored signals.
void surviveFileSizeLimit() {
  std::signal(SIGXFSZ, [](int) {});
}

int complain(const std::string& sentence, int status) {
  write(paragraph("linewatch: " + terminalLine(sentence), kMessageIndent, TerminalStyle::ofStandardError()),
        stderr);
  return status;
}

/// The complaint in the rider's language, as far as it is known.
std::string complaintOf(const Report& report, const CommandLine* line) {
  if (report.complaint.empty() || !report.failure || !line) return report.complaint;
  return RiderTexts(localeOf(line->common)).failure(*report.failure, report.complaint);
}

}  // namespace

int runCommandLine(int argc, char** argv, const std::function<Report(const CommandLine&)>& run) {
  surviveFileSizeLimit();
  auto parsed = parseCommandLine(argc, argv);
  auto* const line = std::get_if<CommandLine>(&parsed);
  if (line) line->common.settings = settingsOfRun(*line);
  const Report report = line ? run(*line) : std::get<Report>(parsed);
  write(report.output, stdout);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return complain(sentenceOf(failure("standard output", "", std::generic_category().message(errno))), 2);
  return report.complaint.empty() ? report.status : complain(complaintOf(report, line), report.status);
}

int run(int argc, char** argv) {
  return runCommandLine(argc, argv, [argv](const CommandLine& line) {
    return std::visit(Dispatch(line.common, argv), line.command);
  });
}

}  // namespace linewatch::app
