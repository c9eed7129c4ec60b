#include <algorithm>
#include <map>
#include <sstream>

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"
#include "tests/vectors/Table.h"

namespace {

using orvmediatypes::color::ColorSpace;

struct Case {
  std::map<std::string, std::string> header;
  std::map<std::string, std::vector<float>> lines;

  int Integer(const std::string& name) const { return std::stoi(header.at(name)); }
  float Number(const std::string& name) const { return vectors::ParseNumber(header.at(name)); }
};

std::vector<Case> ReadCases() {
  std::vector<Case> cases;
  for (const std::string& line : vectors::ReadLines("frames.txt")) {
    std::istringstream words(line);
    std::string name;
    if (!(words >> name)) continue;
    if (name == "case") {
      cases.emplace_back();
      words = std::istringstream(line);
      for (std::string value; words >> name >> value;) cases.back().header[name] = value;
    } else {
      std::vector<float>& numbers = cases.at(cases.size() - 1).lines[name];
      for (std::string word; words >> word;) numbers.push_back(vectors::ParseNumber(word));
    }
  }
  return cases;
}

/// Cases that a scripted host leads the engine to; the others run on their parameters directly.
bool IsScripted(const Case& c) { return c.Integer("tone") == 0 || c.Integer("tone") == 5; }

/// How far a float may lie from what the file has. BT.2446 A subtracts 1 from a power that comes
/// near 1 in the dark, so that the last bit of the power is eight of the result; one power of the
/// file (case 11) is not the float nearest to the true value.
long long AdmissibleUlps(const Case& c) {
  if (IsScripted(c)) return 0;
  return c.Integer("tone") == 4 ? 8 : 4;
}

void ExpectMemory(const Case& c, const char* expectedLine, const std::vector<float>& memory) {
  const std::vector<float>& expected = c.lines.at(expectedLine);
  ASSERT_EQ(expected.size(), memory.size());
  for (std::size_t place = 0; place < memory.size(); ++place) {
    ASSERT_LE(vectors::UlpsApart(memory[place], expected[place]), AdmissibleUlps(c))
        << "float " << place << ": " << std::hexfloat << memory[place] << " instead of "
        << expected[place];
  }
}

/// The curves of a case and what they run on.
struct Steps {
  Quillon::ToneMapPixelFunction toneMap;
  Quillon::GamutCompressionPixelFunction compressGamut;
  Quillon::SupportVector toneMapParams;
  Quillon::SupportVector gamutParams;
  PX::GamutMappingUtils::GamutMappingSettings settings;
};

Steps StepsOf(const Case& c) {
  Steps steps;
  const auto* algorithm = Quillon::FindToneMapAlgorithm(
      static_cast<orvmediatypes::color::ToneMapAlgorithmType>(c.Integer("tone")));
  if (c.Integer("gamut") == 1) steps.compressGamut = Quillon::GamutCompressionReinhard{};
  if (c.Integer("gamut") == 2) steps.compressGamut = Quillon::GamutCompressionDesaturation{};
  const auto& toneMapParams = c.lines.at("tvec");
  const auto& gamutParams = c.lines.at("gvec");
  steps.toneMapParams.assign(toneMapParams.begin(), toneMapParams.end());
  steps.gamutParams.assign(gamutParams.begin(), gamutParams.end());
  steps.toneMap =
      algorithm->bind != nullptr ? algorithm->bind(steps.toneMapParams) : algorithm->curve;
  steps.settings.toneMapSettings.controls = {.version = 3,
                                             .peak = c.Number("peak"),
                                             .peakGain = c.Number("gain"),
                                             .colorPreservation = c.Number("cp")};
  return steps;
}

/// Runs the rows in bands of `rowsPerBand`, the last with what remains.
void RunRows(const Case& c, int bands, int rowsPerBand, const char* expectedLine) {
  SCOPED_TRACE("case " + c.header.at("case") + ", " + expectedLine);
  const Steps steps = StepsOf(c);
  std::vector<float> memory = c.lines.at("in");
  const int height = c.Integer("height");
  const int stride = c.Integer("stride");
  for (int band = 0; band < bands; ++band) {
    const int rows = band + 1 < bands ? rowsPerBand : height - band * rowsPerBand;
    Quillon::QuillonImpl().GenerateGamutMappedRows(
        steps.toneMap, steps.compressGamut,
        memory.data() + std::ptrdiff_t{band} * rowsPerBand * stride, rows, stride,
        static_cast<float>(c.Integer("width")), steps.toneMapParams, steps.gamutParams,
        steps.settings);
  }
  ExpectMemory(c, expectedLine, memory);
}

class FrameVectors : public scripted::HostTest {
 protected:
  /// Scripts the host so that the engine arrives at the case's parameters.
  PX::GamutMappingUtils::GamutMappingSettings Arrange(const Case& c) {
    host.Reset();
    auto record = scripted::MakeRecord(c.Integer("tone"), c.Integer("gamut"));
    record.toneMapSettings.controls = {.version = 2,
                                       .peak = 0.0F,
                                       .peakGain = c.Number("gain"),
                                       .colorPreservation = c.Number("cp")};
    host.results.gamutCompressionApplicable = c.Integer("gamut") != 0;
    host.results.toneMappingApplicable = c.Integer("tone") != 0;
    const std::vector<float>& gamut = c.lines.at("gvec");
    if (c.Integer("gamut") == 1) {
      host.results.convertFrame = [limit = gamut.at(0)](const scripted::Conversion& conversion) {
        conversion.destination[0] = limit;
      };
    } else if (c.Integer("gamut") == 2) {
      host.results.luminanceCoefficients = {gamut.at(0), gamut.at(1), gamut.at(2)};
    }
    if (c.Integer("tone") == 5) {
      const std::vector<float>& toneMap = c.lines.at("tvec");
      EXPECT_EQ(c.Number("gain") * c.Number("peak"), toneMap.at(0));
      record.toneMapSettings.knee = vectors::ExactQuotient(toneMap.at(1), toneMap.at(2));
      host.results.convertSignalToLinear = [sourcePeak = c.Number("peak"),
                                            destinationPeak = toneMap[2]](
                                               const ColorSpace& colorSpace, float) {
        return colorSpace.Description() == scripted::kHLG ? sourcePeak : destinationPeak;
      };
    }
    return record;
  }

  void Run(const Case& c, const char* expectedLine, bool hasSubExecutor,
           scripted::TaskOrder order) {
    SCOPED_TRACE("case " + c.header.at("case") + ", " + expectedLine);
    const auto record = Arrange(c);
    host.results.hasSubExecutor = hasSubExecutor;
    host.results.taskOrder = order;
    const scripted::RecordWatch watch(record);
    std::vector<float> memory = c.lines.at("in");
    const int height = c.Integer("height");
    const int stride = c.Integer("stride");
    ASSERT_EQ(memory.size(), static_cast<std::size_t>(height * stride));
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(
                  memory.data(), memory.data(), height, c.Integer("width"), stride, stride, record),
              0);
    ExpectMemory(c, expectedLine, memory);
  }
};

TEST_F(FrameVectors, AreMappedAsExpectedInBandsAndInline) {
  const std::vector<Case> cases = ReadCases();
  int run = 0;
  for (const Case& c : cases) {
    if (!IsScripted(c)) continue;
    Run(c, "bands", true, scripted::TaskOrder::AsQueued);
    Run(c, "bands", true, scripted::TaskOrder::Reversed);
    Run(c, "inline", false, scripted::TaskOrder::AsQueued);
    ++run;
  }
  EXPECT_EQ(cases.size(), 17U);
  EXPECT_EQ(run, 11);
}

TEST_F(FrameVectors, RowsAreMappedAsExpectedByTheCurvesWithPowers) {
  int run = 0;
  for (const Case& c : ReadCases()) {
    if (IsScripted(c)) continue;
    const int height = c.Integer("height");
    const int bands = std::min(height, 16);
    RunRows(c, bands, height > bands ? height / bands : 1, "bands");
    RunRows(c, 1, height, "inline");
    ++run;
  }
  EXPECT_EQ(run, 6);
}

}  // namespace
