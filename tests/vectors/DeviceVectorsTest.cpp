#include <gtest/gtest.h>

#include "gpu/KernelLaunch.h"
#include "gpu/PixelLayout.h"
#include "tests/vectors/Table.h"

namespace {

using vectors::ReadTable;
using vectors::Row;

TEST(GeometryVectors, AreMetByEveryDeviceAndSize) {
  const std::vector<Row> rows = ReadTable("geometry.csv");
  for (const Row& row : rows) {
    SCOPED_TRACE("row " + row.Text("id"));
    const auto number = [&](const char* column) {
      return static_cast<std::uint32_t>(row.Integer(column));
    };
    const Quillon::LaunchGeometry geometry =
        Quillon::ChooseLaunchGeometry({.platformKind = row.Integer("platformKind"),
                                       .architectureCode = row.Integer("architectureCode")},
                                      number("width"), number("height"));
    EXPECT_EQ(geometry.blockX, number("blockX"));
    EXPECT_EQ(geometry.blockY, number("blockY"));
    EXPECT_EQ(geometry.gridX, number("gridX"));
    EXPECT_EQ(geometry.gridY, number("gridY"));
  }
  EXPECT_EQ(rows.size(), 88U);
}

TEST(DepthVectors, AreMetByEveryDescriptor) {
  const std::vector<Row> rows = ReadTable("depth.csv");
  for (const Row& row : rows) {
    SCOPED_TRACE("row " + row.Text("id"));
    const auto number = [&](const char* column) {
      return static_cast<std::uint32_t>(row.Integer(column));
    };
    const std::uint32_t descriptor = number("descriptor");
    EXPECT_EQ(Quillon::BitsPerComponent(descriptor), number("bitsPerComponent"));
    EXPECT_EQ(Quillon::BytesOfFourComponents(descriptor), number("bytesPerPixel4"));
    EXPECT_EQ(Quillon::FormatFlag({0, descriptor}), number("formatFlag"));
  }
  EXPECT_EQ(rows.size(), 6U);
}

}  // namespace
