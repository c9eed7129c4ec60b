#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

namespace RefHost {

/// Rows on their way between the processor and a device, some at a time: row r lies where row
/// r modulo `rows` does.
struct RowRing {
  std::byte* memory = nullptr;
  std::size_t rowBytes = 0;
  std::size_t rows = 0;
};

/// Rows from `first` up to `last`, which lie one after another in the ring. 0 or a negative code,
/// which ends the transfer.
using RowsFunction = std::function<int(const RowRing& ring, std::size_t first, std::size_t last)>;

/// How a transfer is cut: up to three pieces at a time, about a quarter of the rows each but no
/// more than 16 MB, no fewer than 64 rows, and a multiple of 32; or all rows.
struct RowPieces {
  static constexpr std::size_t kMostSlots = 3;

  /// Both above 0.
  RowPieces(std::size_t rowBytes, std::size_t rowCount);

  std::size_t rowBytes;
  std::size_t rowCount;
  std::size_t pieceRows;

  std::size_t Count() const { return (rowCount + pieceRows - 1) / pieceRows; }
  std::size_t Slots() const { return std::min(Count(), kMostSlots); }
  /// What the ring takes.
  std::size_t RingBytes() const { return Slots() * pieceRows * rowBytes; }
  RowRing RingAt(void* memory) const {
    return {static_cast<std::byte*>(memory), rowBytes, Slots() * pieceRows};
  }
};

/// What a device does with one piece. 0 or a negative code each.
class PieceCopier {
 public:
  /// Begins the copy of bytes between a place in the ring and the device's memory, after all that
  /// began before.
  virtual int Begin(std::size_t slot, std::size_t ringOffset, std::size_t deviceOffset,
                    std::size_t bytes) = 0;
  /// Waits for what began last in this slot.
  virtual int Wait(std::size_t slot) = 0;

 protected:
  ~PieceCopier() = default;
};

/// Rows are filled while those before them are on their way. Returns when all have arrived, or none
/// is on its way any more.
int UploadPieces(const RowPieces& pieces, const RowRing& ring, PieceCopier& copier,
                 const RowsFunction& fill);
/// Rows are taken while the next ones are on their way. With the rows of a call those of the call
/// before are still there.
int DownloadPieces(const RowPieces& pieces, const RowRing& ring, PieceCopier& copier,
                   const RowsFunction& take);

}  // namespace RefHost
