#include "commands/picture/ScaleBar.h"

#include <gtest/gtest.h>

namespace quoin::commands {
namespace {

TEST(RoundLength, MetresAndMillimetresAreRound) {
  EXPECT_EQ(roundLength(3400.0, LengthKind::Metric, 1.0).text, "2 m");
  EXPECT_EQ(roundLength(999.0, LengthKind::Metric, 1.0).text, "500 mm");
  EXPECT_EQ(roundLength(1.7, LengthKind::Metric, 1000.0).text, "1 m");
  EXPECT_EQ(roundLength(1.3e6, LengthKind::Metric, 1000.0).text, "1000 km");
  EXPECT_EQ(roundLength(0.3, LengthKind::Metric, 1.0).text, "0.2 mm");
  EXPECT_DOUBLE_EQ(roundLength(3.4, LengthKind::Metric, 1000.0).units, 2.0);
}

TEST(RoundLength, FeetAndInchesStayFeetAndInches) {
  EXPECT_EQ(roundLength(150.0, LengthKind::Imperial, 25.4).text, "10 ft");
  EXPECT_EQ(roundLength(10.0, LengthKind::Imperial, 25.4).text, "6 in");
  EXPECT_EQ(roundLength(0.3, LengthKind::Imperial, 25.4).text, "1/4 in");
  EXPECT_EQ(roundLength(7.0, LengthKind::Imperial, 304.8).text, "5 ft");
  EXPECT_DOUBLE_EQ(roundLength(150.0, LengthKind::Imperial, 25.4).units, 120.0);
}

TEST(RoundLength, NoExponentStandsUnderAPicture) {
  EXPECT_EQ(roundLength(3e6, LengthKind::Unknown, 0.0).text, "2000000 units");
  for (double most = 1e-3; most < 1e8; most *= 1.7) {
    for (const LengthKind kind : {LengthKind::Unknown, LengthKind::Metric, LengthKind::Imperial}) {
      const RoundLength length = roundLength(most, kind, kind == LengthKind::Imperial ? 25.4 : 1.0);
      EXPECT_EQ(length.text.find('+'), std::string::npos) << length.text;
      EXPECT_LE(length.units, most * (1.0 + 1e-9)) << length.text;
      EXPECT_GE(length.units, most * 0.19) << length.text;
    }
  }
}

}  // namespace
}  // namespace quoin::commands
