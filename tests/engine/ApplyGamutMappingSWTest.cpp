#include <algorithm>
#include <iterator>

#include "engine/ApplyGamutMappingSW.h"
#include "tests/engine/Pipeline.h"

namespace {

using pipeline::Frames;
using pipeline::MakeCopiedFrames;
using pipeline::MakeDirectFrames;
using scripted::FrameOf;
using scripted::Lines;
using scripted::Message;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr int kCode = -77;

class ApplyGamutMappingSW : public scripted::HostTest {
 protected:
  int Apply(Frames& frames) {
    const scripted::RecordWatch watch(record);
    return Quillon::ApplyGamutMappingSW(frames.source, record, frames.destination);
  }

  /// Texts of all messages, each of which must be of level 7 in the common category.
  Lines Texts() {
    Lines texts;
    for (const Message& message : host.Messages()) {
      EXPECT_EQ(message.level, 7);
      EXPECT_EQ(message.category, "Quillon");
      texts.push_back(message.text);
    }
    return texts;
  }

  /// All calls but those for the pixel pointers, which are read while the arguments of one call
  /// are put together, in whatever order the compiler likes.
  Lines CallsWithoutData() {
    Lines calls;
    std::copy_if(host.Calls().begin(), host.Calls().end(), std::back_inserter(calls),
                 [](const std::string& call) { return !call.ends_with(".GetData()"); });
    return calls;
  }

  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5, 1);
};

/// What the engine asks for on a 2 by 2 frame that is both its source and its destination, when
/// neither step applies.
Lines EngineCalls(const std::string& frame) {
  return {frame + ".QueryInterface(KS::IVideoFrameMemoryAccess)",
          frame + ".QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
          frame + ".QueryInterface(KS::IVideoFrameMemoryAccess)",
          frame + ".QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
          frame + ".GetBounds()",
          frame + ".GetRowBytes2D()",
          frame + ".GetRowBytes2D()",
          frame + ".GetPixelFormat()",
          frame + ".GetPixelFormat()",
          frame + ".GetBounds()",
          "CHR::IsGamutCompressionApplicable(record)",
          "CHR::IsToneMappingApplicable(copy)",
          "orvcore::threads::CreateCPUBoundExecutor()",
          "orvcore::threads::CreateSubExecutor(executor, 2)",
          "AsyncExecutor.Release()",
          "SubExecutor.Release()"};
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TEST_F(ApplyGamutMappingSW, OnlyCopiesWhenNoMappingApplies) {
  Frames frames = MakeDirectFrames();
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(frames), 0);
  EXPECT_THAT(
      host.Calls(),
      ElementsAre("ToneMapControls::GetVersion(3)", "CHR::IsGamutMappingApplicable(record)",
                  "KS::VideoFrameManipulators::CopyFrame(source, destination, 4, white 100)"));
}

TEST_F(ApplyGamutMappingSW, TouchesNothingWhenNoMappingAppliesAndTheFramesAreOne) {
  Frames frames = MakeDirectFrames();
  frames.destination = frames.source;
  host.Reset();
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(frames), 0);
  EXPECT_THAT(host.Calls(), ElementsAre("ToneMapControls::GetVersion(3)",
                                        "CHR::IsGamutMappingApplicable(record)"));
}

TEST_F(ApplyGamutMappingSW, TracesAFailedCopyAndReturnsItsCode) {
  Frames frames = MakeDirectFrames();
  host.results.gamutMappingApplicable = false;
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", kCode);
  EXPECT_EQ(Apply(frames), kCode);
  EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingSW : No operation Copy frame failed\r\n"));
}

TEST_F(ApplyGamutMappingSW, WorksInTheDestinationWhenBothFramesAreLinearFloatBGRA) {
  Frames frames = MakeDirectFrames();
  EXPECT_EQ(Apply(frames), 0);
  const Lines before = {"ToneMapControls::GetVersion(3)",
                        "CHR::IsGamutMappingApplicable(record)",
                        "source.GetColorSpace()",
                        "destination.GetColorSpace()",
                        "source.GetColorSpace()",
                        "source.GetPixelFormat()",
                        "destination.GetPixelFormat()",
                        "source.QueryInterface(KS::IVideoFrameMemoryAccess)",
                        "source.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                        "destination.QueryInterface(KS::IVideoFrameMemoryAccess)",
                        "destination.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                        "source.GetRowBytes2D()",
                        "destination.GetRowBytes2D()",
                        "destination.GetPixelFormat()",
                        "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
                        "source.GetPixelFormat()",
                        "source.GetBounds()",
                        "CHR::ConvertFrame(source.pixels, destination.pixels, 2, 2, 9/18, BGra, "
                        "32, 9/8, BGra, 32, white 100)"};
  const Lines after = {"destination.QueryInterface(KS::IVideoFrameMemoryAccess)",
                       "destination.QueryInterface(KS::IVideoFrame2DPixelMemoryAccess)",
                       "destination.GetRowBytes2D()",
                       "destination.GetPixelFormat()",
                       "destination.GetPixelFormat()",
                       "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
                       "destination.GetBounds()",
                       "CHR::ConvertFrame(destination.pixels, in place, 2, 2, 9/8, BGra, 32, 1/1, "
                       "BGra, 32, white 100)",
                       "destination.SetColorSpace(1/1)"};
  EXPECT_THAT(CallsWithoutData(), ElementsAreArray(before + EngineCalls("destination") + after));
  EXPECT_EQ(scripted::StrongCount(frames.source), 1);
  EXPECT_EQ(scripted::StrongCount(frames.destination), 1);
}

TEST_F(ApplyGamutMappingSW, WorksInANewFrameAndCopiesItOutWhenAFormatDiffers) {
  Frames frames = MakeCopiedFrames();
  EXPECT_EQ(Apply(frames), 0);
  const Lines before = {"ToneMapControls::GetVersion(3)",
                        "CHR::IsGamutMappingApplicable(record)",
                        "source.GetColorSpace()",
                        "destination.GetColorSpace()",
                        "source.GetColorSpace()",
                        "source.GetPixelFormat()",
                        "CHR::ORVColorSpaceToEquivalentLinearColorSpace(9/18)",
                        "source.GetPixelAspectRatio()",
                        "source.GetBounds()",
                        "KS::CreateVideoFrame(none, BGra, 2, 2, 1:1, 9/8, false, false)",
                        "KS::VideoFrameManipulators::CopyFrame(source, created, 4, white 100)"};
  const Lines after = {"KS::VideoFrameManipulators::CopyFrame(created, destination, 4, white 100)",
                       "created.DisposeObject()", "created.DestroyBlock()"};
  EXPECT_THAT(CallsWithoutData(), ElementsAreArray(before + EngineCalls("created") + after));
  EXPECT_EQ(FrameOf(frames.destination).Setup().name, "destination");
}

TEST_F(ApplyGamutMappingSW, UsesDefaultColorManagementForEveryCopyAndConversionBelowVersion3) {
  record.toneMapSettings.controls.version = 2;
  Frames direct = MakeDirectFrames();
  EXPECT_EQ(Apply(direct), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}), testing::Each(testing::HasSubstr("white 203")));
  EXPECT_EQ(host.CallsTo({"CHR::ConvertFrame"}).size(), 2U);

  host.Reset();
  Frames copied = MakeCopiedFrames();
  EXPECT_EQ(Apply(copied), 0);
  EXPECT_THAT(host.CallsTo({"KS::VideoFrameManipulators"}),
              ElementsAre("KS::VideoFrameManipulators::CopyFrame(source, created, 4, white 203)",
                          "KS::VideoFrameManipulators::CopyFrame(created, destination, 4, white "
                          "203)"));

  host.Reset();
  host.results.gamutMappingApplicable = false;
  EXPECT_EQ(Apply(direct), 0);
  EXPECT_THAT(
      host.CallsTo({"KS::"}),
      ElementsAre("KS::VideoFrameManipulators::CopyFrame(source, destination, 4, white 203)"));
}

TEST_F(ApplyGamutMappingSW, GoesByTheRecordsVersionAndNotByTheAdjustedOne) {
  Frames frames = MakeDirectFrames();
  record.toneMapSettings.controls.version = 2;
  host.results.toneMappingApplicable = true;
  host.results.adjustVersion = [](int) { return 3; };
  EXPECT_EQ(Apply(frames), 0);
  const Lines conversions = host.CallsTo({"CHR::ConvertFrame(destination.pixels"});
  EXPECT_THAT(conversions, ElementsAre(testing::HasSubstr("1/1, BGra, 32, white 203")));
}

TEST_F(ApplyGamutMappingSW, TagsAnInPlaceDestinationWithItsOwnColorSpaceAgain) {
  Frames frames = MakeDirectFrames();
  PX::VideoFrameRef other = frames.destination;
  EXPECT_EQ(Apply(frames), 0);
  EXPECT_EQ(FrameOf(other).Setup().colors, scripted::kSDR);
  EXPECT_EQ(frames.destination.Object(), other.Object());
  EXPECT_EQ(scripted::StrongCount(other), 2);
}

TEST_F(ApplyGamutMappingSW, ReadsRowBytesFromMemoryAccessWhereThereIsNoTwoDimensionalView) {
  Frames frames;
  frames.source = scripted::MakeFrame({.name = "source",
                                       .colors = scripted::kHLG,
                                       .rowBytes = 48,
                                       .rowBytes2D = 80,
                                       .has2D = false});
  frames.destination = scripted::MakeFrame({.name = "destination",
                                            .colors = scripted::kSDR,
                                            .rowBytes = 64,
                                            .rowBytes2D = 80,
                                            .has2D = false});
  EXPECT_EQ(Apply(frames), 0);
  EXPECT_THAT(host.CallsTo({"CHR::ConvertFrame"}),
              ElementsAre("CHR::ConvertFrame(source.pixels, destination.pixels, 2, 2, 9/18, BGra, "
                          "48, 9/8, BGra, 64, white 100)",
                          "CHR::ConvertFrame(destination.pixels, in place, 2, 2, 9/8, BGra, 64, "
                          "1/1, BGra, 64, white 100)"));
}

TEST_F(ApplyGamutMappingSW, MapsPixelsOnTheWayFromSourceToDestination) {
  Frames frames = MakeCopiedFrames();
  host.results.toneMappingApplicable = true;
  host.results.convertSignalToLinear = [](const auto&, float) { return 100.0F; };
  host.results.copyFrame = [](const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
    FrameOf(to).Pixels() = FrameOf(from).Pixels();
  };
  FrameOf(frames.source).Pixels() = {0.5F, 1.0F, 2.0F, 0.25F, 3.0F, 4.0F, 5.0F, 0.5F,
                                     6.0F, 7.0F, 8.0F, 0.75F, 9.0F, 1.5F, 2.5F, 1.0F};
  EXPECT_EQ(Apply(frames), 0);
  // The destination's peak lies above the source's: what is left of the curve is the gain of 2.
  EXPECT_THAT(FrameOf(frames.destination).Pixels(),
              ElementsAre(1.0F, 2.0F, 4.0F, 0.25F, 6.0F, 8.0F, 10.0F, 0.5F, 12.0F, 14.0F, 16.0F,
                          0.75F, 18.0F, 3.0F, 5.0F, 1.0F));
  EXPECT_THAT(FrameOf(frames.source).Pixels(),
              ElementsAre(0.5F, 1.0F, 2.0F, 0.25F, 3.0F, 4.0F, 5.0F, 0.5F, 6.0F, 7.0F, 8.0F, 0.75F,
                          9.0F, 1.5F, 2.5F, 1.0F));
}

/// One failure of a host call or of the engine, and what comes of it.
struct Failure {
  const char* name;
  bool direct;
  std::function<void(scripted::Host&, Frames&)> arrange;
  int result;
  Lines messages;
};

const std::string kLinearFailed = "GetLinearSrcAndDestFrames : failed\r\n";
const std::string kWorkingFailed = "ApplyGamutMappingSW : GetLinearSrcAndDestFrames : Failed\r\n";
const std::string kEngineFailed = "ApplyGamutMappingSW : GenerateToneMappedFrame : Failed\r\n";
const std::string kDeliveryFailed =
    "ApplyGamutMappingSW : Conversion to destination non-linear color aspace changed\r\n";

void Fail(const char* operation, scripted::Host& host, int nth) {
  host.FailWithCode(operation, kCode, nth);
}

const std::vector<Failure>& Failures() {
  static const std::vector<Failure> kFailures = {
      {"linearising into the destination",
       true,
       [](auto& host, auto&) { Fail("CHR::ConvertFrame", host, 1); },
       kCode,
       {kLinearFailed, kWorkingFailed}},
      {"making the working frame",
       false,
       [](auto& host, auto&) { Fail("KS::CreateVideoFrame", host, 1); },
       kCode,
       {kLinearFailed, kWorkingFailed}},
      {"copying into the working frame",
       false,
       [](auto& host, auto&) { Fail("KS::VideoFrameManipulators::CopyFrame", host, 1); },
       kCode,
       {kLinearFailed, kWorkingFailed}},
      {"a working frame without pixels",
       true,
       [](auto&, Frames& frames) {
         frames.destination = scripted::MakeFrame(
             {.name = "destination", .colors = scripted::kSDR, .nullPixels = true});
       },
       static_cast<int>(0xA00F000EU),
       {kEngineFailed}},
      {"an unknown gamut compression",
       true,
       [](auto& host, auto&) {
         host.results.gamutCompressionApplicable = true;
         host.FailWithNothing("orvcore::debug::Trace");  // the engine's own, in its own category
       },
       static_cast<int>(0xA00F000CU),
       {kEngineFailed}},
      {"converting in place",
       true,
       [](auto& host, auto&) { Fail("CHR::ConvertFrame", host, 2); },
       kCode,
       {kDeliveryFailed}},
      {"copying out of the working frame",
       false,
       [](auto& host, auto&) { Fail("KS::VideoFrameManipulators::CopyFrame", host, 2); },
       kCode,
       {kDeliveryFailed}},
  };
  return kFailures;
}

TEST_F(ApplyGamutMappingSW, PassesEveryFailureOnAndTracesWhereItHappened) {
  for (const Failure& failure : Failures()) {
    SCOPED_TRACE(failure.name);
    host.Reset();
    Frames frames = failure.direct ? MakeDirectFrames() : MakeCopiedFrames();
    record.GamutCompressionSettings::algorithmType =
        static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(3);
    failure.arrange(host, frames);
    EXPECT_EQ(Apply(frames), failure.result);
    EXPECT_THAT(Texts(), ElementsAreArray(failure.messages));
    EXPECT_EQ(scripted::StrongCount(frames.source), 1);
    EXPECT_EQ(scripted::StrongCount(frames.destination), 1);
  }
}

TEST_F(ApplyGamutMappingSW, ReturnsTheSameCodesWhenNobodyListens) {
  for (const Failure& failure : Failures()) {
    SCOPED_TRACE(failure.name);
    host.Reset();
    host.results.traceEnabled = false;
    host.results.traceChangeCount = 2;
    Frames frames = failure.direct ? MakeDirectFrames() : MakeCopiedFrames();
    record.GamutCompressionSettings::algorithmType =
        static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(3);
    failure.arrange(host, frames);
    EXPECT_EQ(Apply(frames), failure.result);
    EXPECT_THAT(host.Messages(), IsEmpty());
  }
}

TEST_F(ApplyGamutMappingSW, TagsTheDestinationEvenWhenTheConversionInPlaceFailed) {
  Frames frames = MakeDirectFrames();
  host.FailWithCode("CHR::ConvertFrame", kCode, 2);
  EXPECT_EQ(Apply(frames), kCode);
  EXPECT_THAT(host.CallsTo({"destination.SetColorSpace"}),
              ElementsAre("destination.SetColorSpace(1/1)"));
  EXPECT_TRUE(frames.destination.IsUsable());
}

TEST_F(ApplyGamutMappingSW, StopsAfterAFailedWorkingFrame) {
  Frames frames = MakeCopiedFrames();
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", kCode, 1);
  EXPECT_EQ(Apply(frames), kCode);
  EXPECT_THAT(host.CallsTo({"CHR::IsGamutCompressionApplicable", "created.Get"}), IsEmpty());
  EXPECT_THAT(host.CallsTo({"created."}),
              ElementsAre("created.DisposeObject()", "created.DestroyBlock()"));
}

TEST_F(ApplyGamutMappingSW, StopsAfterAFailedEngine) {
  Frames frames = MakeDirectFrames();
  record.toneMapSettings.algorithmType = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(7);
  host.results.toneMappingApplicable = true;
  EXPECT_EQ(Apply(frames), static_cast<int>(0xA00F000CU));
  EXPECT_THAT(Texts(),
              ElementsAre("GetToneMappingSupportParams : Not implemented for input algorithms : "
                          "7\r\n",
                          kEngineFailed));
  EXPECT_THAT(host.CallsTo({"destination.SetColorSpace", "orvcore::threads"}), IsEmpty());
}

TEST_F(ApplyGamutMappingSW, TakesAPositiveCodeForSuccess) {
  Frames frames = MakeCopiedFrames();
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", 5, 1);
  host.FailWithCode("KS::VideoFrameManipulators::CopyFrame", 6, 2);
  EXPECT_EQ(Apply(frames), 6);
  EXPECT_THAT(host.Messages(), IsEmpty());
}

TEST_F(ApplyGamutMappingSW, ThrowsWhenTheWorkingFrameHasNoMemoryAccess) {
  Frames frames = MakeDirectFrames();
  frames.destination =
      scripted::MakeFrame({.name = "destination", .colors = scripted::kSDR, .hasMemory = false});
  EXPECT_THROW(Apply(frames), scripted::NullHandleException);
}

}  // namespace
