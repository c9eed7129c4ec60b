#include "tools/quillon/process/UnfinishedFile.h"

#include <array>
#include <climits>
#include <cstring>
#include <string>

#include <unistd.h>

namespace Quillon::Cli {

namespace {

/// A signal handler may read it at any time: no memory that could be freed meanwhile.
struct Slot {
  std::atomic<bool> taken = false;
  std::atomic<bool> named = false;
  std::array<char, PATH_MAX> path{};
};
static_assert(std::atomic<bool>::is_always_lock_free);

std::array<Slot, 8> slots;

int Take(const std::string& path) {
  if (path.size() >= PATH_MAX) return -1;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (slots.at(i).taken.exchange(true)) continue;
    std::memcpy(slots.at(i).path.data(), path.c_str(), path.size() + 1);
    slots.at(i).named = true;
    return static_cast<int>(i);
  }
  return -1;
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::filesystem::path& path) : slot_(Take(path.string())) {}

UnfinishedFile::~UnfinishedFile() {
  if (slot_ < 0) return;
  Slot& slot = slots.at(static_cast<std::size_t>(slot_));
  slot.named = false;
  slot.taken = false;
}

void RemoveUnfinishedFiles() {
  for (const Slot& slot : slots) {
    if (slot.named) unlink(slot.path.data());
  }
}

}  // namespace Quillon::Cli
