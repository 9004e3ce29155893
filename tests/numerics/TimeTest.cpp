#include <VantraCore/Time.h>

#include <gtest/gtest.h>

#include <cstdint>

using namespace Tarvex::VantraCore;
using Internal::int128_t;

TEST(Time, ChronoTakesTheFemtosecondCount) {
  Duration const second = std::chrono::seconds(1);
  EXPECT_EQ(second.count(), 1000000000000000);
  EXPECT_EQ(std::chrono::duration_cast<Duration>(std::chrono::nanoseconds(-3)).count(), -3000000);
  // 1000 years need more than 64 bits of femtoseconds.
  Duration const millennium = std::chrono::hours(24 * 365 * 1000);
  EXPECT_EQ(millennium.count().str(), "31536000000000000000000000");
  EXPECT_EQ(std::chrono::duration_cast<std::chrono::hours>(millennium - second).count(), 24 * 365 * 1000 - 1);
  EXPECT_EQ(std::chrono::duration_cast<std::chrono::seconds>(second * -3 / 2).count(), -1);
  EXPECT_LT(-millennium, second);
}

TEST(Time, TimestampCountsFromTheSystemEpoch) {
  EXPECT_EQ(Timestamp(Duration(int128_t(0))), Timestamp(std::chrono::system_clock::time_point()));
  auto const now = std::chrono::system_clock::now();
  EXPECT_EQ(std::chrono::time_point_cast<std::chrono::system_clock::duration>(Timestamp(now)), now);
}

TEST(Time, SplitSecondsRoundsDownAndTellsWhenTheSecondsOverflow) {
  int128_t const perSecond(femtosecondsPerSecond);
  struct Case {
    int128_t count;
    std::int64_t seconds;
    std::int64_t subseconds;
  };
  for (Case const &c : {Case{perSecond * int128_t(3) / int128_t(2), 1, 500000000000000},
                        Case{perSecond * int128_t(-3) / int128_t(2), -2, 500000000000000},
                        Case{-perSecond, -1, 0}, Case{int128_t(-1), -1, femtosecondsPerSecond - 1},
                        Case{int128_t(INT64_MIN) * perSecond, INT64_MIN, 0}}) {
    SplitSeconds const split = splitSeconds(c.count);
    EXPECT_TRUE(split.exact) << c.count.str();
    EXPECT_EQ(split.seconds, c.seconds) << c.count.str();
    EXPECT_EQ(split.subseconds, int128_t(c.subseconds)) << c.count.str();
  }
  // One femtosecond below the least 64-bit second, and the first second above the greatest.
  EXPECT_FALSE(splitSeconds(int128_t(INT64_MIN) * perSecond - int128_t(1)).exact);
  EXPECT_FALSE(splitSeconds((int128_t(INT64_MAX) + int128_t(1)) * perSecond).exact);
}
