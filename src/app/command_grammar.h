#pragma once

#include <initializer_list>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "app/command_line.h"

namespace linewatch::app {

/// The subcommands. Parsing fills the fields of the used subcommand, which `command()` then returns.
class CommandGrammar {
 public:
  explicit CommandGrammar(CLI::App& app);

  /// The panel if no subcommand was used.
  const Command& command() const { return command_; }

 private:
  template <class T>
  CLI::App* addAction(CLI::App& app, const std::string& name, const std::string& about, T& fields,
                      typename T::Action action);
  template <class T>
  void addJson(CLI::App& app, bool& json, const char* names,
               std::initializer_list<typename T::Action> printing);
  CLI::Option* addSettingOption(CLI::App& app, const std::string& key, std::optional<std::string>& value,
                                const std::string& about);
  void addPanel(CLI::App& app);
  void addShow(CLI::App& app);
  void addStatus(CLI::App& app);
  void addFavorites(CLI::App& app);
  void addLineChoice(CLI::App& adding);
  void addMove(CLI::App& favorites);
  void addLines(CLI::App& app);
  CLI::App* addFeedSearch(CLI::App& app);
  void addFeed(CLI::App& app);
  void addAnalytics(CLI::App& app);
  void addSettings(CLI::App& app);
  void addNotify(CLI::App& app);
  void addMute(CLI::App& app);
  void addOpen(CLI::App& app);
  void addRender(CLI::App& app);
  void addSimulate(CLI::App& app);

  Command command_ = PanelCommand{};
  PanelCommand panel_;
  ShowCommand show_;
  StatusCommand status_;
  FavoritesCommand favorites_;
  LinesCommand lines_;
  FeedCommand feed_;
  AnalyticsCommand analytics_;
  SettingsCommand settings_;
  NotifyCommand notify_;
  MuteCommand mute_;
  OpenCommand open_;
  RenderCommand render_;
  SimulateCommand simulate_;
};

}  // namespace linewatch::app
