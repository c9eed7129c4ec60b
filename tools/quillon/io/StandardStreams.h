#pragma once

#include <filesystem>
#include <vector>

namespace Quillon::Cli {

/// To be called before anything is opened: what of standard input, output and error is closed is
/// opened so that nothing can be written to it, lest a file of ours gets its number. A reader that
/// goes away makes writing fail from then on, instead of ending the program.
void PrepareStandardStreams();

/// Writes out what was printed. Throws StillError (CannotWrite) where any of it, on standard output
/// or standard error, is lost, whoever printed it; `written` are the files that are whole
/// nevertheless, which the message names.
void RequireAllPrinted(const std::vector<std::filesystem::path>& written);

}  // namespace Quillon::Cli
