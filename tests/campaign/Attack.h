#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/campaign/Dice.h"
#include "tests/campaign/Verdict.h"

/// One attacked run.
struct AttackedCase {
  std::string what;  ///< the case in words, with the command
  int exitCode = 0;
  Verdict verdict;
};

/// A way to attack the command line. What its cases have in common is made once, when the attack is
/// made; a case depends on its dice alone.
class Attack {
 public:
  virtual ~Attack() = default;
  virtual std::string Name() const = 0;
  /// Runs one case in an empty folder.
  virtual AttackedCase Run(Dice& dice, const std::filesystem::path& folder) = 0;
};

using AttackMaker = std::unique_ptr<Attack> (*)();

std::unique_ptr<Attack> MakeClipAttack();
std::unique_ptr<Attack> MakeStillAttack();
std::unique_ptr<Attack> MakeNameAttack();
std::unique_ptr<Attack> MakeOptionAttack();
std::unique_ptr<Attack> MakeRivalAttack();
std::unique_ptr<Attack> MakeStopAttack();
std::unique_ptr<Attack> MakeFullDiskAttack();

/// All of them, with the share of a campaign that each gets.
struct AttackShare {
  const char* name;
  AttackMaker make;
  int share;
};
const std::vector<AttackShare>& AllAttacks();

/// Words as a shell takes them.
std::string CommandText(const std::vector<std::string>& words);

/// Runs the command line for what an attack needs. Throws where it fails.
void MustRun(const std::vector<std::string>& words);
