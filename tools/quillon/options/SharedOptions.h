#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <type_traits>

#include "tools/quillon/options/MappingOptions.h"
#include "tools/quillon/options/Numbers.h"
#include "tools/quillon/process/Choice.h"

namespace Quillon::Cli {

/// Options that several commands have, by the same names. The references live as long as `app`.

/// The value of a name. Throws CLI::ValidationError, which names the option, for other names.
template <class Choices>
auto ParseChoice(const std::string& option, const Choices& choices, const std::string& text) {
  for (const auto& choice : choices) {
    if (choice.name == text) return choice.value;
  }
  throw CLI::ValidationError(option, "'" + text + "' is none of " + ChoiceNames(choices));
}

/// What is in a `Value` or `std::optional<Value>`.
template <class Target>
struct ValueIn {
  using Type = Target;
};
template <class Value>
struct ValueIn<std::optional<Value>> {
  using Type = Value;
};

/// An option that takes one of the named values, which outlive it, and refuses all others.
template <class Target, class Value = typename ValueIn<Target>::Type>
CLI::Option* AddChoice(CLI::App& app, const std::string& name,
                       std::type_identity_t<std::span<const Choice<Value>>> choices, Target& value,
                       const std::string& help) {
  const auto assign = [choices, &value, name](const std::string& text) {
    value = ParseChoice(name, choices, text);
  };
  return app.add_option_function<std::string>(name, assign, help)->type_name(ChoiceNames(choices));
}

/// An option that takes a decimal number from `least` to `most`, whole where the target is, and
/// refuses all else. `unit` is what the help calls it. A target that is not optional has the
/// default.
template <class Target, class Number = typename ValueIn<Target>::Type>
CLI::Option* AddNumber(CLI::App& app, const std::string& name, Target& target,
                       std::type_identity_t<Number> least, std::type_identity_t<Number> most,
                       const std::string& unit, const std::string& help) {
  std::ostringstream range;
  range << least << " to " << most;
  const std::string kind = std::is_integral_v<Number> ? "whole number from " : "number from ";
  const std::string wanted = "' is not a " + kind + range.str();
  const auto assign = [&target, name, wanted, least, most](const std::string& text) {
    const auto number = ParseNumberIn<Number>(text, least, most);
    if (!number) throw CLI::ValidationError(name, "'" + text + wanted);
    target = *number;
  };
  CLI::Option* option = app.add_option_function<std::string>(name, assign, help);
  if constexpr (std::is_same_v<Target, Number>) option->default_str(std::to_string(target));
  return option->type_name(unit + " (" + range.str() + ")");
}

/// Makes the empty text no value of any option or argument of the app's commands.
void RefuseEmptyValues(CLI::App& app);

/// --to, --to-cicp, --from, --from-cicp; `fromHelp` says what `--from` is for.
void AddColorSpaceOptions(CLI::App& app, MappingOptions& options, const std::string& fromHelp);

/// --from and --from-cicp, with `suffix` after their names.
void AddSourceOptions(CLI::App& app, SourceOverride& source, const std::string& suffix,
                      const std::string& help);

/// What `ParsePeakNumber` takes, for messages.
inline constexpr const char* kPeakSyntax = "a number of nits above 0 and up to 1000000";

/// Whether the text is a peak as a number, which the options then have.
bool ParsePeakNumber(const std::string& text, PeakOptions& peak);

/// --peak as a number of nits and nothing else.
void AddPeakNumberOption(CLI::App& app, PeakOptions& peak, const std::string& help);

/// --target-peak and --white.
void AddTargetOptions(CLI::App& app, MappingOptions& options);

/// --white.
void AddWhiteOption(CLI::App& app, int& white, const std::string& help);

/// --algorithm, once, --gamut and --fit.
void AddAlgorithmOptions(CLI::App& app, MappingOptions& options);

/// --knee, --gain and --preserve.
void AddDialOptions(CLI::App& app, MappingOptions& options);

/// --max-pixels.
void AddMaxPixelsOption(CLI::App& app, std::int64_t& maxPixels);

/// --device.
void AddDeviceOption(CLI::App& app, std::string& device);

/// --overwrite and --quiet.
void AddOutputOptions(CLI::App& app, bool& overwrite, bool& quiet);

}  // namespace Quillon::Cli
