// A program of its own: it counts every allocation. On the reference host, whose PQ functions may
// be called from within a band.

#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cpu/QuillonImpl.h"
#include "refhost/orvcore/RecyclerStatistics.h"
#include "tests/cpu/AllocationCount.h"

namespace {

using Quillon::SupportVector;

TEST(RowWalk, AllocatesNothingWhereLightLiesBeyondTheTables) {
  const SupportVector params = {0.0F,       0.751827F,  0.0F, 0.5806888F, 203.0F,  0.751827F, 0.0F,
                                0.7723702F, 0.6585553F, 0.3F, 0.2126F,    0.7152F, 0.0722F};
  SupportVector leadingBeyond = params;
  leadingBeyond[6] = -0.5F;
  const SupportVector limit = {2.0F};
  PX::GamutMappingUtils::GamutMappingSettings settings;
  settings.toneMapSettings.controls.peak = 5.0F;
  settings.toneMapSettings.controls.peakGain = 1.0F;
  using orvmediatypes::color::ToneMapAlgorithmType;
  for (const auto type :
       {ToneMapAlgorithmType::ITU2390MaxRGB, ToneMapAlgorithmType::ITU2390RGBByChannel}) {
    for (const SupportVector& vector : {params, leadingBeyond}) {
      Quillon::ToneMapPixelFunction curve = Quillon::FindToneMapAlgorithm(type)->bind(vector);
      Quillon::GamutCompressionPixelFunction compress = Quillon::GamutCompressionReinhard{};
      std::vector<float> pixels(4000 * 4, 0.3F);
      for (std::size_t i = 0; i < pixels.size(); i += 5) {
        pixels[i] = (i % 2 == 0 ? 1.0F : -1.0F) * static_cast<float>(i);
      }
      const int rows = 40;
      RefHost::ResetRecyclerPeak();
      const long heap = AllocationCount();
      Quillon::QuillonImpl().GenerateGamutMappedRows(std::move(curve), std::move(compress),
                                                     pixels.data(), rows, 400, 100.0F, vector,
                                                     limit, settings);
      EXPECT_EQ(AllocationCount(), heap);
      const auto recycler = RefHost::GetRecyclerStatistics();
      EXPECT_EQ(recycler.peak, recycler.inUse);
    }
  }
}

}  // namespace
