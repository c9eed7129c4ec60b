#include "tests/refhost/kestrel/Frames.h"

std::vector<std::vector<NamedFormat>> ConvertedFormats() { return {InterleavedFormats()}; }
