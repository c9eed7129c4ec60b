#include "refhost/ironlane/RowTransfer.h"

#include <algorithm>

namespace RefHost {

namespace {

constexpr std::size_t kMostPieceBytes = std::size_t{16} << 20U;
constexpr std::size_t kLeastRows = 64;
constexpr std::size_t kRowMultiple = 32;
constexpr std::size_t kShare = 4;

/// The rows of a piece.
struct Span {
  std::size_t first;
  std::size_t last;
};

Span SpanOf(const RowPieces& pieces, std::size_t piece) {
  const std::size_t first = piece * pieces.pieceRows;
  return {first, std::min(first + pieces.pieceRows, pieces.rowCount)};
}

int Begin(const RowPieces& pieces, PieceCopier& copier, std::size_t piece) {
  const Span span = SpanOf(pieces, piece);
  const std::size_t slot = piece % RowPieces::kMostSlots;
  return copier.Begin(slot, slot * pieces.pieceRows * pieces.rowBytes, span.first * pieces.rowBytes,
                      (span.last - span.first) * pieces.rowBytes);
}

/// Waits for the pieces that may be on their way, up to a piece; the first failure.
int WaitForLast(PieceCopier& copier, std::size_t begun) {
  int result = 0;
  for (std::size_t piece = begun - std::min(begun, RowPieces::kMostSlots); piece < begun; ++piece) {
    const int waited = copier.Wait(piece % RowPieces::kMostSlots);
    if (result == 0) result = waited;
  }
  return result;
}

std::size_t PieceRows(std::size_t rowBytes, std::size_t rowCount) {
  const std::size_t wanted = std::min(kMostPieceBytes / rowBytes, rowCount / kShare);
  return std::min(std::max(wanted / kRowMultiple * kRowMultiple, kLeastRows), rowCount);
}

}  // namespace

RowPieces::RowPieces(std::size_t bytes, std::size_t count)
    : rowBytes(bytes), rowCount(count), pieceRows(PieceRows(bytes, count)) {}

int UploadPieces(const RowPieces& pieces, const RowRing& ring, PieceCopier& copier,
                 const RowsFunction& fill) {
  int result = 0;
  std::size_t begun = 0;
  for (std::size_t piece = 0; result >= 0 && piece < pieces.Count(); ++piece) {
    if (piece >= RowPieces::kMostSlots) result = copier.Wait(piece % RowPieces::kMostSlots);
    const Span span = SpanOf(pieces, piece);
    if (result >= 0) result = fill(ring, span.first, span.last);
    if (result < 0) break;
    result = Begin(pieces, copier, piece);
    if (result >= 0) begun = piece + 1;
  }
  const int waited = WaitForLast(copier, begun);
  return result < 0 ? result : waited;
}

int DownloadPieces(const RowPieces& pieces, const RowRing& ring, PieceCopier& copier,
                   const RowsFunction& take) {
  const std::size_t count = pieces.Count();
  int result = 0;
  std::size_t begun = 0;
  for (std::size_t piece = 0; result >= 0 && piece < count; ++piece) {
    for (; result >= 0 && begun < std::min(piece + 2, count); ++begun) {
      result = Begin(pieces, copier, begun);
      if (result < 0) break;
    }
    if (result >= 0) result = copier.Wait(piece % RowPieces::kMostSlots);
    const Span span = SpanOf(pieces, piece);
    if (result >= 0) result = take(ring, span.first, span.last);
  }
  if (result < 0) WaitForLast(copier, begun);
  return result < 0 ? result : 0;
}

}  // namespace RefHost
