#pragma once

namespace Quillon {

/// Nits to PQ code values and back for three floats in place, through process-wide tables that are
/// built on first use: the nearest lower entry, no interpolation. Encoding has 10000 entries at
/// steps of one nit, decoding 8191 over the code values from 0 to 1. Pixels with a channel beyond
/// that go through the host's transfer functions. What is not a number reads entry 0.
///
/// Deliberate: the encoding table has one entry for all light below a nit, and that is black.
void EncodePQByTable(float* pixel);
void DecodePQByTable(float* pixel);

/// Builds both tables, where they are not there yet, on this thread. False when the host has no PQ
/// functions.
bool WarmPQTables();

}  // namespace Quillon
