#include "tools/quillon/io/RadianceHeader.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>
#include <string_view>

namespace Quillon::Cli {

namespace {

constexpr std::size_t kMaxLine = 4096;

/// Takes the line at `position`, which moves behind its end.
std::string NextLine(const StillSource& source, std::size_t& position) {
  const auto begin = source.bytes.begin() + static_cast<std::ptrdiff_t>(position);
  const auto end = std::find(begin, source.bytes.end(), std::uint8_t{'\n'});
  if (end == source.bytes.end()) FailDamaged(source, "its header does not end");
  const auto length = static_cast<std::size_t>(end - begin);
  if (length > kMaxLine) FailDamaged(source, "a header line is too long");
  position += length + 1;
  return {begin, end};
}

/// The numbers of a line; nothing unless there are exactly `count`, all finite.
std::optional<std::vector<double>> ParseNumbers(std::string_view text, std::size_t count) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  std::vector<double> numbers(count);
  for (double& number : numbers) {
    if (!(stream >> number) || !std::isfinite(number)) return std::nullopt;
  }
  std::string rest;
  if (stream >> rest) return std::nullopt;
  return numbers;
}

void MultiplyScale(const StillSource& source, const std::string& line, std::string_view numbers,
                   std::size_t count, RadianceHeader& header) {
  const auto factors = ParseNumbers(numbers, count);
  bool valid = factors.has_value();
  for (std::size_t i = 0; valid && i < 3; ++i) {
    header.scale[i] *= (*factors)[i % count];
    valid = header.scale[i] > 1e-30 && header.scale[i] < 1e30;
  }
  if (!valid) FailDamaged(source, "the header line \"" + line + "\" makes no sense");
}

void ReadPrimaries(const StillSource& source, const std::string& line, std::string_view numbers,
                   RadianceHeader& header) {
  const auto p = ParseNumbers(numbers, 8);
  if (!p) FailDamaged(source, "the header line \"" + line + "\" makes no sense");
  header.primaries = {
      {(*p)[0], (*p)[1]}, {(*p)[2], (*p)[3]}, {(*p)[4], (*p)[5]}, {(*p)[6], (*p)[7]}};
}

void ReadVariable(const StillSource& source, const std::string& line, RadianceHeader& header) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) return;
  const std::string_view name = std::string_view(line).substr(0, equals);
  const std::string_view value = std::string_view(line).substr(equals + 1);
  if (name == "EXPOSURE") MultiplyScale(source, line, value, 1, header);
  if (name == "COLORCORR") MultiplyScale(source, line, value, 3, header);
  if (name == "PRIMARIES") ReadPrimaries(source, line, value, header);
  if (name == "PIXASPECT") header.remarks.push_back("pixel aspect ratio ignored: " + line);
  if (name == "FORMAT" && value != "32-bit_rle_rgbe") {
    FailNotSupported(source, "the pixel format " + std::string(value) + " is not known",
                     "convert it to 32-bit_rle_rgbe");
  }
}

void ReadResolution(const StillSource& source, const std::string& line, RadianceHeader& header) {
  std::istringstream stream(line);
  stream.imbue(std::locale::classic());
  std::string yAxis;
  std::string xAxis;
  std::int64_t height = 0;
  std::int64_t width = 0;
  if (!(stream >> yAxis >> height >> xAxis >> width)) {
    FailDamaged(source, "the resolution line \"" + line + "\" makes no sense");
  }
  if (yAxis != "-Y" || xAxis != "+X") {
    FailNotSupported(source, "the orientation \"" + line + "\" is not known",
                     "turn the picture to the orientation -Y +X");
  }
  CheckDimensions(source, width, height);
  header.width = static_cast<int>(width);
  header.height = static_cast<int>(height);
}

}  // namespace

RadianceHeader ParseRadianceHeader(const StillSource& source) {
  RadianceHeader header;
  std::size_t position = 0;
  for (std::string line = NextLine(source, position); !line.empty();
       line = NextLine(source, position)) {
    ReadVariable(source, line, header);
  }
  ReadResolution(source, NextLine(source, position), header);
  header.pixelOffset = position;
  return header;
}

}  // namespace Quillon::Cli
