#include "tests/campaign/Attack.h"

#include <stdexcept>

#include "tests/tools/RunQuillon.h"

const std::vector<AttackShare>& AllAttacks() {
  static const std::vector<AttackShare> attacks = {
      {"clips", MakeClipAttack, 32},        {"stills", MakeStillAttack, 42},
      {"names", MakeNameAttack, 5},         {"options", MakeOptionAttack, 13},
      {"rivals", MakeRivalAttack, 2},       {"stops", MakeStopAttack, 3},
      {"full-disk", MakeFullDiskAttack, 3},
  };
  return attacks;
}

std::string CommandText(const std::vector<std::string>& words) {
  std::string text = "quillon";
  for (const std::string& word : words) {
    text += ' ';
    if (word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                               "./_-:,=%") == std::string::npos &&
        !word.empty()) {
      text += word;
      continue;
    }
    text += '\'';
    for (const char c : word) {
      if (c == '\'') {
        text += "'\\''";
      } else {
        text += c;
      }
    }
    text += '\'';
  }
  return text;
}

void MustRun(const std::vector<std::string>& words) {
  const RunResult run = RunQuillon(words);
  if (run.exitCode != 0) throw std::runtime_error(CommandText(words) + ": " + run.err);
}
