#include <map>
#include <sstream>

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"
#include "tests/vectors/Table.h"

namespace {

using orvmediatypes::color::ColorSpace;
using vectors::SameBits;

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

/// Tone-map algorithms whose curve is bound, and no tone map at all.
bool IsBound(int toneMap) { return toneMap == 0 || toneMap == 5; }

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
    const std::vector<float>& expected = c.lines.at(expectedLine);
    ASSERT_EQ(expected.size(), memory.size());
    for (std::size_t place = 0; place < memory.size(); ++place) {
      ASSERT_TRUE(SameBits(memory[place], expected[place]))
          << "float " << place << ": " << std::hexfloat << memory[place] << " instead of "
          << expected[place];
    }
  }
};

TEST_F(FrameVectors, AreMappedAsExpectedInBandsAndInline) {
  const std::vector<Case> cases = ReadCases();
  int run = 0;
  for (const Case& c : cases) {
    if (!IsBound(c.Integer("tone"))) continue;
    Run(c, "bands", true, scripted::TaskOrder::AsQueued);
    Run(c, "bands", true, scripted::TaskOrder::Reversed);
    Run(c, "inline", false, scripted::TaskOrder::AsQueued);
    ++run;
  }
  EXPECT_EQ(cases.size(), 17U);
  EXPECT_EQ(run, 11);
}

}  // namespace
