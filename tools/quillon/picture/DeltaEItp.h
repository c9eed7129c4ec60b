#pragma once

namespace Quillon::Cli {

/// ICtCp of a pixel in BT.2020 display light in nits (ITU-R BT.2100-2, PQ form); double precision.
/// Components below 0 count as 0.
struct ICtCp {
  double i = 0.0;
  double ct = 0.0;
  double cp = 0.0;
};
ICtCp ICtCpOfNits(double red, double green, double blue);

/// Delta-E ITP (ITU-R BT.2124-0, Annex 1): 720 x sqrt(dI^2 + 0.25 dCt^2 + dCp^2).
double DeltaEItp(const ICtCp& a, const ICtCp& b);

}  // namespace Quillon::Cli
