#pragma once

#include <charconv>
#include <string>
#include <system_error>
#include <type_traits>

#include <CLI/CLI.hpp>

namespace linewatch::app {

// Options with checked values. An error has the option, the value, and the valid values.

/// The error text for an invalid value of an option.
inline std::string wrongValue(const std::string& text, const std::string& fault) {
  return '"' + text + "\" is " + fault;
}

/// Adds an option. `take` stores a value, and returns false if it is invalid. `fault` tells the user why,
/// e.g. "not a number".
template <class Take>
CLI::Option* addChecked(CLI::App& app, const std::string& name, const Take& take, const std::string& about,
                        const std::string& fault) {
  const auto check = [=](const std::string& text) {
    if (!take(text)) throw CLI::ValidationError(name, wrongValue(text, fault));
  };
  return app.add_option_function<std::string>(name, check, about);
}

/// The valid numbers of an option; `text` is the range in words.
template <class Number>
struct NumberRange {
  Number least, most;
  const char* text;
};

/// Adds an option that takes a number in a range. `number` is a Number or an optional one.
template <class Number, class Target>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Target& number,
                       const NumberRange<Number>& range, const std::string& about) {
  const auto take = [=, &number](const std::string& text) {
    Number given{};
    const auto [end, trouble] = std::from_chars(text.data(), text.data() + text.size(), given);
    const bool fits = trouble == std::errc() && end == text.data() + text.size() && given >= range.least &&
                      given <= range.most;
    if (fits) number = given;
    return fits;
  };
  const std::string kind = std::is_integral_v<Number> ? "whole number" : "number";
  return addChecked(app, name, take, about + ", " + range.text, "not a " + kind + " from " + range.text)
      ->type_name("N");
}

}  // namespace linewatch::app
