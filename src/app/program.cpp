#include "app/program.h"

#include <QCoreApplication>
#include <cstdio>

#include "app/commands.h"

namespace linewatch::app {

namespace {

struct Dispatch {
  Session& session;
  const CommonOptions& options;
  const TerminalStyle& style;

  Report operator()(const ShowCommand& command) const { return show(session, command, options, style); }
  Report operator()(const FavoritesCommand& command) const { return favorites(session, command, style); }
  Report operator()(const LinesCommand& command) const { return lines(session, command, style); }
  Report operator()(const FeedCommand& command) const { return feed(session, command); }
  Report operator()(const OpenCommand& command) const { return open(session, command); }
};

Report reportOf(const CommandLine& line, const TerminalStyle& style) {
  auto session = Session::open(line.common);
  if (!session) return refused(session.error());
  return std::visit(Dispatch{**session, line.common, style}, line.command);
}

void write(const std::string& text, std::FILE* stream) { std::fwrite(text.data(), 1, text.size(), stream); }

}  // namespace

Report refused(const Error& error) { return {.output = {}, .complaint = sentenceOf(error), .status = 2}; }

int run(int argc, char** argv) {
  const auto parsed = parseCommandLine(argc, argv);
  if (const auto* const answer = std::get_if<Answer>(&parsed)) {
    write(answer->text, answer->status == 0 ? stdout : stderr);
    return answer->status;
  }
  // Qt takes its own options out of these.
  int qtArgc = 1;
  const QCoreApplication application(qtArgc, argv);
  const Report report = reportOf(std::get<CommandLine>(parsed), TerminalStyle::ofStandardOutput());
  write(report.output, stdout);
  if (std::fflush(stdout) != 0) {
    write("linewatch: cannot write to standard output\n", stderr);
    return 2;
  }
  if (!report.complaint.empty()) write("linewatch: " + report.complaint + "\n", stderr);
  return report.status;
}

}  // namespace linewatch::app
