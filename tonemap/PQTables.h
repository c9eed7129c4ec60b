#pragma once

#include <cstddef>
#include <span>

namespace Quillon {

/// Nits to PQ code values and back for three floats in place, through process-wide tables that are
/// built on first use: the nearest lower entry, no interpolation. Encoding has 10000 entries at
/// steps of one nit, decoding 8191 over the code values from 0 to 1. Pixels with a channel beyond
/// that go through the host's transfer functions. What is not a number reads entry 0.
///
/// Deliberate: the encoding table has one entry for all light below a nit, and that is black.
void EncodePQByTable(float* pixel);
void DecodePQByTable(float* pixel);

/// The tables themselves: code values by whole nits, and nits by code value in steps of 1/8191.
std::span<const float> PQEncodeTable();
std::span<const float> PQDecodeTable();

/// The entry of the decoding table that a code value reads.
std::size_t PQDecodeIndex(float signal);

/// Whether the host's encoding function gives the bits of EncodeSt2084 in all entries of the table
/// and at a thousand places beyond it, negative, small and huge. Asked once per process; what the
/// host throws there means that it does not.
bool HostEncodesAsSt2084();

/// Builds both tables, where they are not there yet, on this thread. False when the host has no PQ
/// functions.
bool WarmPQTables();

}  // namespace Quillon
