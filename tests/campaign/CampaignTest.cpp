#include <gtest/gtest.h>

#include "tests/campaign/Attack.h"
#include "tests/tools/ScratchFolder.h"

namespace {

constexpr std::uint64_t kSeed = 20261121;

/// A short campaign; the long one is the program `quillon-campaign`.
void ExpectNothingWrong(AttackMaker make, int cases) {
  const auto attack = make();
  for (int number = 0; number < cases; ++number) {
    Dice dice(kSeed + static_cast<std::uint64_t>(number));
    const ScratchFolder folder;
    const AttackedCase attacked = attack->Run(dice, folder / "");
    for (const std::string& sentence : attacked.verdict.Sentences()) {
      ADD_FAILURE() << attack->Name() << ' ' << number << ": " << attacked.what << "\n  "
                    << sentence;
    }
  }
}

TEST(Campaign, OfDamagedClipsFindsNothing) { ExpectNothingWrong(MakeClipAttack, 60); }
TEST(Campaign, OfDamagedStillsFindsNothing) { ExpectNothingWrong(MakeStillAttack, 120); }
TEST(Campaign, OfOddNamesFindsNothing) { ExpectNothingWrong(MakeNameAttack, 40); }
TEST(Campaign, OfOddOptionsFindsNothing) { ExpectNothingWrong(MakeOptionAttack, 100); }
TEST(Campaign, OfTwoRunsAtOneOutputFindsNothing) { ExpectNothingWrong(MakeRivalAttack, 12); }
TEST(Campaign, OfStoppedRunsFindsNothing) { ExpectNothingWrong(MakeStopAttack, 12); }
TEST(Campaign, OfFullDisksFindsNothing) { ExpectNothingWrong(MakeFullDiskAttack, 30); }

/// The campaign itself must see what it looks for.
TEST(Verdict, SeesSignalsHangsFindingsAndUnknownCodes) {
  const auto isGood = [](const RunOutcome& run) {
    Verdict verdict;
    verdict.RequireDecentEnd(run);
    return verdict.IsGood();
  };
  EXPECT_TRUE(isGood({0, false, "", "", 0}));
  EXPECT_TRUE(isGood({3, false, "", "quillon: in.png: it is empty; choose another\n", 0}));
  EXPECT_FALSE(isGood({-11, false, "", "", 0}));
  EXPECT_FALSE(isGood({0, true, "", "", 0}));
  EXPECT_FALSE(isGood({1, false, "", "quillon: std::exception\n", 0}));
  EXPECT_FALSE(isGood({3, false, "", "", 0}));
  EXPECT_FALSE(isGood({99, false, "", "quillon: what\n", 0}));
  EXPECT_FALSE(isGood({0, false, "", "ERROR: AddressSanitizer: heap-use-after-free", 0}));
}

TEST(Verdict, SeesWrongCodesAndWrongBlame) {
  const RunOutcome run{5, false, "", "quillon: out.mkv: writing failed; make room\n", 0};
  Verdict code;
  code.RequireCode(run, {0, 3});
  EXPECT_FALSE(code.IsGood());
  Verdict blame;
  blame.RequireBlame(run, {"in.mkv"});
  EXPECT_FALSE(blame.IsGood());
  Verdict wrong;
  wrong.RequireBlame(run, {"out.mkv"}, {"make room"});
  EXPECT_FALSE(wrong.IsGood());
  Verdict right;
  right.RequireBlame(run, {"out.mkv"}, {"--codec"});
  EXPECT_TRUE(right.IsGood());
}

}  // namespace
