#include "notify/card_expiry_rules.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr Seconds kFirst = std::numeric_limits<Seconds>::min();
constexpr Seconds kLast = std::numeric_limits<Seconds>::max();

TEST(ExpiryOrder, PutsANewOneBehindTheEarlierAndBeforeItsEquals) {
    struct Case {
        std::vector<Seconds> added;
        std::vector<int> order;  // of the added ones
    };
    for (const auto& [added, order] : {Case{{}, {}},
                                       {{5}, {0}},
                                       {{5, 3, 3}, {2, 1, 0}},
                                       {{3, 3, 5}, {1, 0, 2}},
                                       {{1, 2, 3}, {0, 1, 2}},
                                       {{7, 7, 7}, {2, 1, 0}},
                                       {{0, kLast, -1, kFirst, 4'000'000'000}, {3, 2, 0, 4, 1}}}) {
        std::vector<int> sorted;
        for (std::size_t i = 0; i < added.size(); ++i) {
            const int place =
                PlaceOfExpiry(static_cast<int>(i), added[i], [&, &all = added](int nIndex) {
                    return all[static_cast<std::size_t>(sorted[static_cast<std::size_t>(nIndex)])];
                });
            sorted.insert(sorted.begin() + place, static_cast<int>(i));
        }
        EXPECT_EQ(sorted, order);
    }
}

TEST(Expiry, IsOfACardAtItsMomentAndOfACertificateAfterIt) {
    for (const Seconds now : {Seconds{0}, Seconds{-1}, Seconds{4'000'000'000}}) {
        EXPECT_TRUE(HasCardExpired(now - 1, now) && HasCertificateExpired(now - 1, now));
        EXPECT_TRUE(HasCardExpired(now, now) && !HasCertificateExpired(now, now));
        EXPECT_FALSE(HasCardExpired(now + 1, now) || HasCertificateExpired(now + 1, now));
        EXPECT_TRUE(HasCardExpired(kFirst, now) && !HasCardExpired(kLast, now));
    }
}

TEST(ExpiryForm, GrowsAndShrinksByWhatItMust) {
    for (const auto& [step, dy] : {std::pair{WithCardLine(96), 30},
                                   {WithCardLine(144), 45},
                                   {WithoutCertificates(127, 96), -147},
                                   {WithoutCertificates(250, 192), -290},
                                   {WithoutReminder(232, 278), -46}}) {
        EXPECT_EQ(step.dy, dy);
    }
}

TEST(ExpiryForm, PutsTheCardLineWhereItIsPromised) {
    for (const auto& [dpi, place] :
         {std::pair{96, std::array{12, 80, 350, 20}}, {144, {18, 120, 525, 30}}}) {
        const LinePlace line = CardLinePlace(dpi);
        EXPECT_EQ((std::array{line.nLeft, line.nTop, line.nWidth, line.nHeight}), place) << dpi;
    }
}

TEST(ExpiryAnswer, IsTheNumberOfDaysWhenItIsAnotherOne) {
    constexpr int kMost = std::numeric_limits<int>::max();
    struct Case {
        int nCurrent;
        const char* pszText;
        int nResult;
    };
    for (const auto& [current, text, result] :
         {Case{14, "14", -1},
          {14, "7", 7},
          {14, "0", 0},
          {14, "", 0},
          {14, "letters", 0},
          {14, "12 days", 12},
          {14, " 9", 9},
          {14, "-5", -5},
          {14, "-1", -1},
          {-1, "-1", -1},
          {1, "1,000", -1},
          {kMost, "2147483647", -1},
          {14, "2147483648", kMost},
          {14, "99999999999999999999", kMost},
          {14, "-99999999999999999999", std::numeric_limits<int>::min()}}) {
        EXPECT_EQ(NewDelay(current, text), result) << current << " \"" << text << "\"";
    }
}

}  // namespace
}  // namespace mvp
