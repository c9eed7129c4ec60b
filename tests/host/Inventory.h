#pragma once

#include <atomic>
#include <iosfwd>

namespace scripted {

/// What the scripted host has given out and not yet got back.
struct Inventory {
  long frames = 0;
  long controlBlocks = 0;
  long colorSpaces = 0;
  long colorManagementSettings = 0;
  long converterParams = 0;
  long executors = 0;
  long subExecutors = 0;
  long devices = 0;
  long argumentSets = 0;
  long recyclerBlocks = 0;
  long recyclerBytes = 0;
  friend bool operator==(const Inventory&, const Inventory&) = default;
};

std::ostream& operator<<(std::ostream& out, const Inventory& inventory);

Inventory TakeInventory();

/// Kinds of objects that count themselves.
enum class Counted {
  Frame,
  ControlBlock,
  ColorSpace,
  ColorManagementSettings,
  ConverterParams,
  Executor,
  SubExecutor,
  Device,
  ArgumentSet,
  Count
};

void Count(Counted kind, int change) noexcept;

/// Member or base that counts one live object of a kind.
template <Counted kind>
struct Live {
  Live() noexcept { Count(kind, 1); }
  Live(const Live&) noexcept { Count(kind, 1); }
  Live& operator=(const Live&) noexcept = default;
  ~Live() { Count(kind, -1); }
};

}  // namespace scripted
