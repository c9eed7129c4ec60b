#!/usr/bin/env bash
# That every test is counted, by its own name, however its program ends.
# ReportTest.sh SAMPLE OUTCOMES FOLDER
set -euo pipefail
sample=$1 outcomes=$2 folder=$3
rm -rf "$folder"
mkdir -p "$folder/reports"
cd "$folder"

for suite in Ends Crash Leaves TornDown; do
  QUILLON_TEST_REPORT=reports/$suite "$sample" --gtest_filter="$suite.*" >/dev/null 2>&1 || true
done
for share in 0 1; do
  QUILLON_TEST_REPORT=reports/share-$share GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=$share \
    "$sample" --gtest_filter='Two/*' >/dev/null
done
printf '%s\n' Ends Crash Leaves TornDown share-0 share-1 Silent Gone >runs
cat >log <<'TEXT'
 1/12 Test  #1: Ends .............***Failed    0.01 sec
 2/12 Test  #2: Crash ............Subprocess aborted***Exception:   0.01 sec
 3/12 Test  #3: Leaves ...........   Passed    0.01 sec
 4/12 Test  #4: TornDown .........***Failed    0.01 sec
 5/12 Test  #5: share-0 ..........   Passed    0.01 sec
 6/12 Test  #6: share-1 ..........   Passed    0.01 sec
 7/12 Test  #7: Silent ...........   Passed    0.01 sec
 8/12 Test  #8: Gone .............***Not Run   0.00 sec
 9/12 Test  #9: Plain.Passes .....   Passed    0.01 sec
10/12 Test #10: Plain.Fails ......***Failed    0.01 sec
11/12 Test #11: Plain.Hangs ......***Timeout   2.00 sec
12/12 Test #12: Plain.Skips ......***Skipped   0.01 sec

42% tests passed, 7 tests failed out of 12

The following tests did not run:
	 12 - Plain.Skips (Skipped)

The following tests FAILED:
	  1 - Ends (Failed)
	  2 - Crash (Subprocess aborted)
	  4 - TornDown (Failed)
	  8 - Gone (Not Run)
	 10 - Plain.Fails (Failed)
	 11 - Plain.Hangs (Timeout)
Errors while running CTest
TEXT

diff - <(awk -v reports=reports -f "$outcomes" runs log | LC_ALL=C sort) <<'TEXT'
failed Crash.After (in Crash, which ended before it)
failed Crash.Within (in Crash, which ended within it: Subprocess aborted)
failed Ends.Fails (in Ends)
failed Gone (Not Run)
failed Leaves.Within (in Leaves, which ended within it: without a word)
failed Plain.Fails (Failed)
failed Plain.Hangs (Timeout)
failed Silent (it reported no test)
failed TornDown (Failed, and no test of it did)
passed Crash.Before
passed Ends.Passes
passed Plain.Passes
passed TornDown.Passes
passed Two/Instances.Pass/0
passed Two/Instances.Pass/1
skipped Ends.DISABLED_IsOff
skipped Ends.Skips
skipped Plain.Skips
TEXT
