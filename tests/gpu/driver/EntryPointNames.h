#pragma once

// The names of the driver's entry points, written down apart from the table that is looked up: a
// name that changes in one place alone is seen.

#include <string>
#include <vector>

/// Those without which there is no driver, but for cuInit.
std::vector<std::string> RequiredEntryPoints();
/// Those that a driver may lack.
std::vector<std::string> OptionalEntryPoints();
