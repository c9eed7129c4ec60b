#pragma once

#include <vector>

#include "tests/refhost/chromant/Samples.h"

// The same pixels (red, green, blue) as OpenColorIO converts them.

std::vector<Rgb> ThroughOcioBuiltin(std::vector<Rgb> pixels, const char* style);

/// A power, odd about 0.
std::vector<Rgb> ThroughOcioPower(std::vector<Rgb> pixels, double exponent);

/// ((signal + offset) / (1 + offset)) ^ exponent, with a straight line near 0.
std::vector<Rgb> ThroughOcioMonitorCurve(std::vector<Rgb> pixels, double exponent, double offset);
