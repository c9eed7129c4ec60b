#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/quillon/Choice.h"
#include "tools/quillon/MapOptions.h"

/// Options that several commands have, by the same names. The references live as long as `app`.

/// The value of a name. Throws CLI::ValidationError, which names the option, for other names.
template <class Value, std::size_t Count>
Value ParseChoice(const std::string& option, const std::array<Choice<Value>, Count>& choices,
                  const std::string& text) {
  for (const auto& choice : choices) {
    if (choice.name == text) return choice.value;
  }
  throw CLI::ValidationError(option, "'" + text + "' is none of " + ChoiceNames(choices));
}

/// An option that takes one of the named values and refuses all others.
template <class Value, std::size_t Count>
CLI::Option* AddChoice(CLI::App& app, const std::string& name,
                       const std::array<Choice<Value>, Count>& choices, Value& value,
                       const std::string& help) {
  const auto assign = [&choices, &value, name](const std::string& text) {
    value = ParseChoice(name, choices, text);
  };
  return app.add_option_function<std::string>(name, assign, help)->type_name(ChoiceNames(choices));
}

/// Refuses all but numbers from `least` to `most`, as CLI11's own check does, and "nan", which that
/// one lets through.
CLI::Validator NumberIn(double least, double most);

/// Whether the text is a finite number above 0, which `nits` then is.
bool ParseNits(const std::string& text, double& nits);

/// --to, --to-cicp, --from, --from-cicp; `fromHelp` says what `--from` is for.
void AddColorSpaceOptions(CLI::App& app, MapOptions& options, const std::string& fromHelp);

/// --from and --from-cicp, with `suffix` after their names.
void AddSourceOptions(CLI::App& app, std::optional<orvmediatypes::color::ColorDescription>& source,
                      bool& tellsMatrix, const std::string& suffix, const std::string& help);

/// --peak as a number of nits and nothing else.
void AddPeakNumberOption(CLI::App& app, MapOptions& options, const std::string& help);

/// --target-peak and --white.
void AddTargetOptions(CLI::App& app, MapOptions& options);

/// --algorithm, once, and --gamut.
void AddAlgorithmOptions(CLI::App& app, MapOptions& options);

/// --knee, --gain and --preserve.
void AddDialOptions(CLI::App& app, MapOptions& options);

/// --device.
void AddDeviceOption(CLI::App& app, MapOptions& options);

/// --overwrite and --quiet.
void AddOutputOptions(CLI::App& app, MapOptions& options);
void AddOutputOptions(CLI::App& app, bool& overwrite, bool& quiet);
