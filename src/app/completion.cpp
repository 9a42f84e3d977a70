#include "app/completion.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "settings/setting_table.h"
#include "ui/text_style.h"

namespace linewatch::app {

namespace {

using Names = CompleteCommand::Names;

/// The names that the words of a command stand for. A word beyond the last row of its command is of the last
/// one's kind.
struct NamedWord {
  std::string_view command;
  Names names;
};
constexpr NamedWord kNamedWords[] = {
    {"favorites add", Names::lines},      {"favorites remove", Names::favorites},
    {"favorites move", Names::favorites}, {"feed key", Names::feeds},
    {"feed update", Names::feeds},        {"feed remove", Names::feeds},
    {"mute", Names::favorites},
};

/// A command line up to the word that is completed.
struct Typed {
  const CLI::App* command;
  /// "feed add"; empty without a command.
  std::string name;
  /// The words that are neither commands nor options.
  std::vector<std::string> values;
  /// The option that the completed word is a value of; null for none.
  const CLI::Option* option = nullptr;
};

const CLI::Option* optionNamed(const CLI::App* command, const std::string& name) {
  for (; command; command = command->get_parent()) {
    if (const CLI::Option* const option = command->get_option_no_throw(name)) return option;
  }
  return nullptr;
}

const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
  const auto found =
      app.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

Typed typedBefore(const CLI::App& app, const std::vector<std::string>& words) {
  Typed typed{.command = &app, .name = {}, .values = {}};
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (std::exchange(typed.option, nullptr)) continue;
    if (words[i].starts_with("-")) {
      const CLI::Option* const option = optionNamed(typed.command, words[i]);
      if (option && option->get_items_expected_max() > 0) typed.option = option;
    } else if (const CLI::App* const command = commandNamed(*typed.command, words[i])) {
      typed.command = command;
      typed.name += (typed.name.empty() ? "" : " ") + words[i];
    } else {
      typed.values.push_back(words[i]);
    }
  }
  return typed;
}

/// The first line of a text.
std::string headOf(const std::string& text) { return text.substr(0, text.find('\n')); }

void addOptions(const CLI::App* command, std::vector<CompletedWord>& words) {
  for (; command; command = command->get_parent()) {
    for (const CLI::Option* const option : command->get_options()) {
      if (option->get_group().empty()) continue;
      for (const std::string& name : option->get_lnames())
        if (std::ranges::find(words, "--" + name, &CompletedWord::word) == words.end())
          words.push_back({"--" + name, headOf(option->get_description())});
    }
  }
}

void addCommands(const CLI::App& app, std::vector<CompletedWord>& words) {
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
    words.push_back({command->get_name(), headOf(command->get_description())});
}

void addSettingWords(const Typed& typed, std::vector<CompletedWord>& words) {
  if (typed.values.empty()) {
    for (const Setting& setting : settingTable())
      words.push_back({std::string(setting.key), std::string(setting.about)});
  } else if (const Setting* const setting = settingWithKey(typed.values.front())) {
    for (const std::string_view choice : setting->choices) words.push_back({std::string(choice), ""});
    if (setting->kind == Setting::Kind::toggle) words.insert(words.end(), {{"true", ""}, {"false", ""}});
  }
}

void addNotifyWords(const Typed& typed, CompleteCommand& completion) {
  if (typed.values.empty()) completion.names = Names::favorites;
  if (typed.values.size() == 1)
    completion.words.insert(completion.words.end(), {{"on", "always"}, {"off", ""}, {"weekdays", ""}});
}

void addOptionValues(const CLI::Option& option, std::vector<CompletedWord>& words) {
  if (option.check_lname("text-size")) {
    for (const std::string_view name : ui::kTextSizeCategoryNames) words.push_back({std::string(name), ""});
  } else if (option.check_lname("format")) {
    for (const std::string_view name : kStatusFormatNames) words.push_back({std::string(name), ""});
  } else if (option.check_lname("direction")) {
    words.insert(words.end(), {{"0", ""}, {"1", ""}, {"both", ""}});
  } else if (option.check_lname("from")) {
    words.insert(words.end(), {{"info", ""}, {"warning", ""}, {"severe", ""}});
  }
}

}  // namespace

CompleteCommand completionOf(const CLI::App& app, const std::vector<std::string>& words) {
  CompleteCommand completion;
  if (!words.empty()) completion.start = words.back();
  const Typed typed = typedBefore(app, words);
  auto& found = completion.words;
  if (typed.option) {
    addOptionValues(*typed.option, found);
  } else if (completion.start.starts_with("-")) {
    addOptions(typed.command, found);
  } else {
    addCommands(*typed.command, found);
    if (typed.name == "settings") addSettingWords(typed, found);
    if (typed.name == "notify") addNotifyWords(typed, completion);
    const auto* const named = std::ranges::find(kNamedWords, typed.name, &NamedWord::command);
    if (named != std::end(kNamedWords)) completion.names = named->names;
  }
  std::erase_if(
      found, [&completion](const CompletedWord& each) { return !each.word.starts_with(completion.start); });
  return completion;
}

}  // namespace linewatch::app
