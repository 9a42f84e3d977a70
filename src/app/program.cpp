#include "app/program.h"

#include <QCoreApplication>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

#include "app/commands.h"
#include "desktop/display.h"
#include "desktop/installation.h"

namespace linewatch::app {

namespace {

const char* variableOf(const char* name) { return std::getenv(name); }

/// Runs a command that needs a session.
struct Dispatch {
  Session& session;
  const CommonOptions& options;
  const TerminalStyle& style;

  Report operator()(const ShowCommand& command) const { return show(session, command, options, style); }
  Report operator()(const PanelCommand&) const {
    Report report = show(session, {}, options, style);
    if (report.complaint.empty()) report.complaint = "there is no display for the panel: this is its list";
    return report;
  }
  Report operator()(const FavoritesCommand& command) const { return favorites(session, command, style); }
  Report operator()(const LinesCommand& command) const { return lines(session, command, style); }
  Report operator()(const FeedCommand& command) const { return feed(session, command); }
  Report operator()(const AnalyticsCommand& command) const { return analytics(session, command); }
  Report operator()(const OpenCommand& command) const { return open(session, command); }
  // Those without a session are done before.
  template <class Other>
  Report operator()(const Other&) const {
    return {};
  }
};

/// Goes on as the program that can draw, which takes too long to load for those that do not. Gives the error
/// if that cannot be started.
Report handOver(char** argv) {
  const std::string path = desktop::installedParts() / "linewatch-screen";
  execv(path.c_str(), argv);
  return refused(desktop::failure(path, "", std::generic_category().message(errno)));
}

Report reportOf(const CommandLine& line, const TerminalStyle& style, char** argv) {
  const bool draws = std::holds_alternative<RenderCommand>(line.command) ||
                     (std::holds_alternative<PanelCommand>(line.command) && desktop::hasDisplay(variableOf));
  if (draws) return handOver(argv);
  if (const auto* const command = std::get_if<SimulateCommand>(&line.command)) return simulate(*command);
  // Qt takes its own options out of what it is given.
  int qtArgc = 1;
  const QCoreApplication application(qtArgc, argv);
  auto session = Session::open(line.common);
  if (!session) return refused(session.error());
  return std::visit(Dispatch{**session, line.common, style}, line.command);
}

void write(const std::string& text, std::FILE* stream) { std::fwrite(text.data(), 1, text.size(), stream); }

}  // namespace

Report refused(const Error& error) { return {.output = {}, .complaint = sentenceOf(error), .status = 2}; }

int finish(const Report& report) {
  write(report.output, stdout);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    write("linewatch: cannot write to standard output\n", stderr);
    return 2;
  }
  if (!report.complaint.empty()) write("linewatch: " + report.complaint + "\n", stderr);
  return report.status;
}

int run(int argc, char** argv) {
  const auto parsed = parseCommandLine(argc, argv);
  if (const auto* const answer = std::get_if<Answer>(&parsed)) {
    write(answer->text, answer->status == 0 ? stdout : stderr);
    return answer->status;
  }
  return finish(reportOf(std::get<CommandLine>(parsed), TerminalStyle::ofStandardOutput(), argv));
}

}  // namespace linewatch::app
