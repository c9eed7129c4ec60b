#include <algorithm>

#include "cpu/QuillonImpl.h"
#include "tests/cpu/Gain.h"
#include "tests/vectors/Table.h"

namespace {

using vectors::ReadTable;
using vectors::Row;
using vectors::Split;

struct Band {
  int first;
  int rows;
  std::ptrdiff_t offset;
};

std::vector<Band> BandsOf(const Row& row) {
  std::vector<Band> bands;
  for (const std::string& text : Split(row.Text("bands(first:rows:offset)"), ';')) {
    if (text.empty()) continue;
    const std::vector<std::string> parts = Split(text, ':');
    bands.push_back({std::stoi(parts.at(0)), std::stoi(parts.at(1)), std::stol(parts.at(2))});
  }
  return bands;
}

class BandVectors : public scripted::HostTest {};

/// A frame of one column: a band of n rows touches n packed pixels from its offset on.
TEST_F(BandVectors, SplitEveryFrameAsExpected) {
  const std::vector<Row> rows = ReadTable("bands.csv");
  for (const Row& row : rows) {
    SCOPED_TRACE("row " + row.Text("id"));
    const int height = row.Integer("height");
    const int stride = row.Integer("stride");
    const std::vector<Band> bands = BandsOf(row);
    ASSERT_EQ(bands.size(), static_cast<std::size_t>(row.Integer("pieces")));
    ASSERT_EQ(bands[0].rows, row.Integer("rowsPerPiece"));

    host.Reset();
    cpu::LeaveOnlyTheGain(host);
    std::vector<float> memory(static_cast<std::size_t>(height) * static_cast<std::size_t>(stride),
                              1.0F);
    const auto touched = [&](const Band& band, int place) {
      return memory.at(static_cast<std::size_t>(band.offset + 4 * place)) == 2.0F;
    };
    std::size_t tasks = 0;
    host.results.afterTask = [&](int index) {
      ++tasks;
      const Band& band = bands.at(static_cast<std::size_t>(index));
      EXPECT_EQ(band.offset, std::ptrdiff_t{band.first} * stride);
      for (int place = 0; place < band.rows; ++place) EXPECT_TRUE(touched(band, place));
      EXPECT_TRUE(tasks == bands.size() || !touched(bands[tasks], 0));
    };
    const auto record = scripted::MakeRecord(5);
    EXPECT_EQ(Quillon::QuillonImpl().GenerateGamutMappedFrame(memory.data(), memory.data(), height,
                                                              1, stride, stride, record),
              0);
    EXPECT_EQ(tasks, bands.size());
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 2.0F), 3L * height) << "nothing else";
  }
  EXPECT_EQ(rows.size(), 31U);
}

}  // namespace
