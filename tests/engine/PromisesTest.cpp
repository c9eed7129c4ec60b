// What holds along the whole software path.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>

#include "cpu/QuillonImpl.h"
#include "engine/Quillon.h"
#include "tests/engine/Pipeline.h"

namespace {

using pipeline::Frames;
using pipeline::MakeCopiedFrames;
using pipeline::MakeDirectFrames;
using scripted::FrameOf;
using scripted::StrongCount;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kUnsupported = static_cast<int>(0xA00F000CU);

class Promises : public scripted::HostTest {
 protected:
  int Apply(Frames& frames) {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyGamutMapping(frames.source, record, frames.destination);
  }

  /// Leaves of the tone map its gain of 2.
  void ToneMapByTheGain() {
    host.results.toneMappingApplicable = true;
    host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
  }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5);
};

/// A host call that returns a code, and the road it is on.
struct CodeCall {
  const char* operation;
  int nth;
  Frames (*makeFrames)();
  bool applicable;
};

const CodeCall kCodeCalls[] = {
    {"KS::VideoFrameManipulators::CopyFrame", 1, MakeDirectFrames, false},
    {"CHR::ConvertFrame", 1, MakeDirectFrames, true},
    {"CHR::ConvertFrame", 2, MakeDirectFrames, true},
    {"KS::CreateVideoFrame", 1, MakeCopiedFrames, true},
    {"KS::VideoFrameManipulators::CopyFrame", 1, MakeCopiedFrames, true},
    {"KS::VideoFrameManipulators::CopyFrame", 2, MakeCopiedFrames, true},
};

TEST_F(Promises, APositiveCodeOfAnyHostCallIsSuccess) {
  for (const CodeCall& call : kCodeCalls) {
    SCOPED_TRACE(std::string(call.operation) + " " + std::to_string(call.nth));
    host.Reset();
    host.results.gamutMappingApplicable = call.applicable;
    Frames frames = call.makeFrames();
    ASSERT_EQ(Apply(frames), 0);
    const scripted::Lines operations = host.Operations();

    host.Reset();
    host.results.gamutMappingApplicable = call.applicable;
    frames = call.makeFrames();
    host.FailWithCode(call.operation, 7, call.nth);
    EXPECT_GE(Apply(frames), 0);
    EXPECT_EQ(host.Operations().back(), operations.back());
    EXPECT_EQ(std::count(host.Operations().begin(), host.Operations().end(), call.operation),
              std::count(operations.begin(), operations.end(), call.operation));
    EXPECT_THAT(host.Messages(), IsEmpty());
  }
}

TEST_F(Promises, MinusOneOfAnyHostCallIsAFailureLikeAnyOther) {
  for (const CodeCall& call : kCodeCalls) {
    SCOPED_TRACE(std::string(call.operation) + " " + std::to_string(call.nth));
    std::vector<std::vector<scripted::Message>> messages;
    for (const int code : {-77, -1}) {
      host.Reset();
      host.results.gamutMappingApplicable = call.applicable;
      Frames frames = call.makeFrames();
      host.FailWithCode(call.operation, code, call.nth);
      EXPECT_EQ(Apply(frames), code);
      messages.push_back(host.Messages());
    }
    EXPECT_FALSE(messages[0].empty());
    EXPECT_EQ(messages[1], messages[0]);
  }
}

TEST_F(Promises, FramesAreOneByTheirObjectAndNotByTheirInterface) {
  host.results.gamutMappingApplicable = false;
  const Frames frames = MakeDirectFrames();
  scripted::Frame& first = FrameOf(frames.source);
  scripted::Frame& second = FrameOf(frames.destination);
  // One object behind two interfaces, then two objects behind one.
  PX::VideoFrameRef sameObject(&second, &first, nullptr);
  EXPECT_EQ(Quillon::ApplyGamutMapping(frames.source, record, sameObject), 0);
  EXPECT_THAT(host.CallsTo({"KS::"}), IsEmpty());
  PX::VideoFrameRef sameInterface(&first, &second, nullptr);
  EXPECT_EQ(Quillon::ApplyGamutMapping(frames.source, record, sameInterface), 0);
  EXPECT_EQ(host.CallsTo({"KS::VideoFrameManipulators::CopyFrame"}).size(), 1U);
}

TEST_F(Promises, NoReferenceIsHeldLongerThanItsStepLasts) {
  ToneMapByTheGain();
  // The strong counts of source and destination at the first call of an operation.
  std::map<std::string, std::pair<int, int>> counts;
  const auto run = [&](Frames frames) {
    counts.clear();
    host.results.onCall = [&](const std::string& operation) {
      if (!frames.source.IsUsable() || !frames.destination.IsUsable()) return;
      counts.try_emplace(operation, StrongCount(frames.source), StrongCount(frames.destination));
    };
    EXPECT_EQ(Apply(frames), 0);
    host.results.onCall = [](const std::string&) {};
    EXPECT_EQ(StrongCount(frames.source), 1);
    EXPECT_EQ(StrongCount(frames.destination), 1);
  };
  using Counts = std::pair<int, int>;
  run(MakeDirectFrames());
  EXPECT_EQ(counts["source.GetBounds"], Counts(1, 1)) << "the tests for a GPU";
  EXPECT_EQ(counts["CHR::IsGamutMappingApplicable"], Counts(1, 1));
  EXPECT_EQ(counts["CHR::ConvertFrame"], Counts(3, 3)) << "two views of each";
  EXPECT_EQ(counts["SubExecutor.Queue"], Counts(1, 6)) << "the working frame, with two views twice";
  EXPECT_EQ(counts["destination.SetColorSpace"], Counts(1, 2)) << "the working frame";

  run(MakeCopiedFrames());
  EXPECT_EQ(counts["KS::CreateVideoFrame"], Counts(1, 1));
  EXPECT_EQ(counts["KS::VideoFrameManipulators::CopyFrame"], Counts(1, 1));
  EXPECT_EQ(counts["SubExecutor.Queue"], Counts(1, 1));
  EXPECT_EQ(counts["created.DisposeObject"], Counts(1, 1));
}

TEST_F(Promises, TheDestinationStaysAsAFailedEngineLeftIt) {
  record.toneMapSettings.algorithmType = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(7);
  host.results.toneMappingApplicable = true;
  host.results.convertFrame = [](const scripted::Conversion& conversion) {
    if (conversion.height == 2) std::fill_n(conversion.destination, 16, 0.375F);
  };
  Frames frames = MakeDirectFrames();
  EXPECT_EQ(Apply(frames), kUnsupported);
  EXPECT_THAT(FrameOf(frames.destination).Pixels(), Each(0.375F));
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame(source.pixels", "CHR::ConvertFrame(destination",
                            "KS::", "destination.SetColorSpace"}),
              ElementsAre(testing::StartsWith("CHR::ConvertFrame(source.pixels")));
}

TEST_F(Promises, FormatsAreComparedBeforeTheDestinationsBoundsAreRead) {
  Frames frames = MakeDirectFrames();
  frames.destination =
      scripted::MakeFrame({.name = "destination", .format = pipeline::kOtherFormat});
  host.Reset();
  EXPECT_EQ(
      Quillon::QuillonImpl().GenerateToneMappedFrame(frames.source, record, frames.destination),
      static_cast<int>(0xA00F000EU));
  EXPECT_THAT(host.CallsTo({"destination.GetPixelFormat", "source.GetBounds"}),
              ElementsAre("source.GetBounds()", "destination.GetPixelFormat()"));
  EXPECT_THAT(host.CallsTo({"destination.GetBounds"}), IsEmpty());
}

TEST_F(Promises, TheWorkingCopyHasTheRecordsFlag) {
  for (const bool flag : {true, false}) {
    record.toneMapSettings.reserved = flag;
    int seen = 0;
    host.results.seeToneMapSettings = [&](const PX::ToneMappingUtils::ToneMapSettings& settings) {
      EXPECT_NE(&settings, &record.toneMapSettings);
      EXPECT_EQ(settings.reserved, flag);
      ++seen;
    };
    Frames frames = MakeDirectFrames();
    EXPECT_EQ(Apply(frames), 0);
    EXPECT_EQ(seen, 1);
  }
}

/// The bits of the destination after a call, and its result.
struct Outcome {
  int result;
  std::vector<std::uint32_t> bits;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

TEST_F(Promises, PixelsAndResultsAreTheSameWithTracingOnAndOff) {
  std::int32_t changeCount = 500;
  for (const int toneMap : {1, 2, 3, 4, 5, 6, 7}) {
    for (const int gamut : {0, 1, 2, 3}) {
      std::vector<Outcome> outcomes;
      std::vector<std::size_t> messages;
      for (const bool traced : {true, false}) {
        host.Reset();
        host.results.traceEnabled = traced;
        host.results.traceChangeCount = ++changeCount;
        host.results.toneMappingApplicable = true;
        host.results.gamutCompressionApplicable = gamut != 0;
        host.results.convertFrame = [peak = 1.0F](const scripted::Conversion& c) mutable {
          if (c.width == 1) c.destination[0] = 3.0F;
          if (c.width == 2 && c.height == 1) c.destination[4] = peak -= 0.25F;
        };
        record = scripted::MakeRecord(toneMap, gamut);
        Frames frames = MakeDirectFrames();
        std::vector<float>& pixels = FrameOf(frames.destination).Pixels();
        for (std::size_t i = 0; i < pixels.size(); ++i)
          pixels[i] = 0.3F * static_cast<float>(i) - 1;
        Outcome outcome{Apply(frames), {}};
        for (const float value : FrameOf(frames.destination).Pixels()) {
          outcome.bits.push_back(std::bit_cast<std::uint32_t>(value));
        }
        outcomes.push_back(outcome);
        messages.push_back(host.Messages().size());
      }
      EXPECT_EQ(outcomes[0], outcomes[1]) << toneMap << ", " << gamut;
      EXPECT_EQ(messages[1], 0U);
      EXPECT_EQ(messages[0] > 0, outcomes[0].result < 0) << toneMap << ", " << gamut;
    }
  }
}

}  // namespace
