#include <charconv>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <optional>

#include "tests/campaign/Attack.h"
#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/video/AvLog.h"

using namespace Quillon::Cli;

/// Attacks the command line with seeded cases and tells which of them went wrong.

namespace {

struct CampaignOptions {
  int cases = 1000;
  std::uint64_t seed = 1;
  std::string only;  ///< an attack's name; empty: all
  int first = 0;     ///< case of the attack to begin with
  int part = 1;      ///< of `parts`, which divide the cases among processes
  int parts = 1;
  std::string keep;  ///< folder in which files of wrong cases are kept
};

constexpr const char* kUsage =
    "Usage: quillon-campaign [--cases N] [--seed N] [--only ATTACK] [--first CASE]\n"
    "                        [--part I/N] [--keep FOLDER]\n";

template <class Number>
bool Parse(const char* text, Number& number) {
  const char* const end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, number);
  return error == std::errc() && rest == end;
}

bool ParsePart(const std::string& text, CampaignOptions& options) {
  const std::size_t slash = text.find('/');
  return slash != std::string::npos && Parse(text.substr(0, slash).c_str(), options.part) &&
         Parse(text.c_str() + slash + 1, options.parts) && options.part >= 1 &&
         options.part <= options.parts;
}

bool ParseOption(const std::string& name, const char* value, CampaignOptions& options) {
  if (name == "--cases") return Parse(value, options.cases);
  if (name == "--seed") return Parse(value, options.seed);
  if (name == "--first") return Parse(value, options.first);
  if (name == "--part") return ParsePart(value, options);
  if (name == "--only") options.only = value;
  if (name == "--keep") options.keep = value;
  return name == "--only" || name == "--keep";
}

std::optional<CampaignOptions> ParseOptions(int argc, char** argv) {
  CampaignOptions options;
  for (int i = 1; i < argc; i += 2) {
    if (i + 1 == argc || !ParseOption(argv[i], argv[i + 1], options)) return std::nullopt;
  }
  return options;
}

void Keep(const CampaignOptions& options, const std::string& attack, int number,
          const ScratchFolder& folder) {
  if (options.keep.empty()) return;
  const auto to = std::filesystem::path(options.keep) / (attack + "-" + std::to_string(number));
  std::error_code ignored;
  std::filesystem::create_directories(to, ignored);
  std::filesystem::copy(folder / "", to, std::filesystem::copy_options::recursive, ignored);
}

void PrintWrong(const std::string& attack, int number, const AttackedCase& attacked) {
  std::cout << "WRONG " << attack << ' ' << number << ": " << attacked.what << '\n';
  for (const std::string& sentence : attacked.verdict.Sentences()) {
    std::cout << "  " << sentence << '\n';
  }
  std::cout << std::flush;
}

constexpr int kCasesBetweenSigns = 500;

/// Runs this process' share of one attack. How many cases went wrong.
int RunAttack(const CampaignOptions& options, const AttackShare& share, int cases) {
  const auto attack = share.make();
  std::map<int, int> exitCodes;
  int wrong = 0;
  int done = 0;
  for (int number = options.first; number < options.first + cases; ++number) {
    if (number % options.parts != options.part - 1) continue;
    Dice dice(options.seed * 1000003 + static_cast<std::uint64_t>(number));
    const ScratchFolder folder;
    const AttackedCase attacked = attack->Run(dice, folder / "");
    ++exitCodes[attacked.exitCode];
    if (++done % kCasesBetweenSigns == 0) {
      std::cerr << share.name << ": " << done << " of " << cases / options.parts << '\n';
    }
    if (attacked.verdict.IsGood()) continue;
    ++wrong;
    PrintWrong(share.name, number, attacked);
    Keep(options, share.name, number, folder);
  }
  std::cout << share.name << ": " << done << " cases, " << wrong << " wrong; exit codes";
  for (const auto& [code, count] : exitCodes) std::cout << ' ' << code << ": " << count << ',';
  std::cout << std::endl;
  return wrong;
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = ParseOptions(argc, argv);
  if (!options) {
    std::cerr << kUsage;
    return 2;
  }
  QuietAvLog();
  int wrong = 0;
  bool known = false;
  for (const AttackShare& share : AllAttacks()) {
    if (!options->only.empty() && options->only != share.name) continue;
    known = true;
    const bool all = options->only.empty();
    wrong += RunAttack(*options, share, all ? options->cases * share.share / 100 : options->cases);
  }
  if (!known) {
    std::cerr << "there is no attack '" << options->only << "'\n";
    return 2;
  }
  return wrong == 0 ? 0 : 1;
}
