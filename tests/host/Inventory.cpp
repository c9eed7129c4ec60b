#include "tests/host/Inventory.h"

#include <array>
#include <ostream>

#include "tests/host/Recycler.h"

namespace scripted {

namespace {

// Constant-initialised: the engine's own static objects count themselves before main.
constinit std::array<std::atomic<long>, static_cast<std::size_t>(Counted::Count)> live{};

long LiveCount(Counted kind) { return live[static_cast<std::size_t>(kind)].load(); }

}  // namespace

void Count(Counted kind, int change) noexcept {
  live[static_cast<std::size_t>(kind)].fetch_add(change);
}

Inventory TakeInventory() {
  Inventory inventory;
  inventory.frames = LiveCount(Counted::Frame);
  inventory.controlBlocks = LiveCount(Counted::ControlBlock);
  inventory.colorSpaces = LiveCount(Counted::ColorSpace);
  inventory.colorManagementSettings = LiveCount(Counted::ColorManagementSettings);
  inventory.converterParams = LiveCount(Counted::ConverterParams);
  inventory.executors = LiveCount(Counted::Executor);
  inventory.subExecutors = LiveCount(Counted::SubExecutor);
  inventory.devices = LiveCount(Counted::Device);
  inventory.argumentSets = LiveCount(Counted::ArgumentSet);
  inventory.recyclerBlocks = Recycler::Instance().Blocks();
  inventory.recyclerBytes = Recycler::Instance().Bytes();
  return inventory;
}

std::ostream& operator<<(std::ostream& out, const Inventory& inventory) {
  return out << "frames " << inventory.frames << ", control blocks " << inventory.controlBlocks
             << ", colour spaces " << inventory.colorSpaces << ", colour-management settings "
             << inventory.colorManagementSettings << ", converter parameters "
             << inventory.converterParams << ", executors " << inventory.executors
             << ", sub-executors " << inventory.subExecutors << ", devices " << inventory.devices
             << ", argument sets " << inventory.argumentSets << ", recycler blocks "
             << inventory.recyclerBlocks << ", recycler bytes " << inventory.recyclerBytes;
}

}  // namespace scripted
