// CTime, CPtrArray and the geometry classes.
#include <ctime>
#include <limits>
#include <stdexcept>

#include <dlgfw/geometry.h>
#include <dlgfw/ptr_array.h>
#include <dlgfw/time.h>
#include <gtest/gtest.h>

namespace mvp::test {
namespace {

TEST(TimeTest, TellsTheLocalDate) {
    struct tm fields = {0, 0, 23, 29, 1, 124, 0, 0, -1};
    EXPECT_STREQ(CTime(_mktime64(&fields)).Format("%m/%d/%y %H:%M:%S"), "02/29/24 23:00:00");
    EXPECT_STREQ(CTime(4102531200).Format("%Y"), "2100");  // beyond 32 bits of seconds
    EXPECT_TRUE(CTime(5) < CTime(6) && CTime(6) > CTime(5) && CTime(5) != CTime(6));
    for (const __time64_t none : {__time64_t{-1}, std::numeric_limits<__time64_t>::min(),
                                  std::numeric_limits<__time64_t>::max()}) {
        SCOPED_TRACE(none);
        EXPECT_STREQ(CTime(none).Format("no field of a date"), "");
    }
}

TEST(PtrArrayTest, KeepsOrderAndRefusesIndicesOutOfRange) {
    int values[4];
    CPtrArray array;
    EXPECT_THROW(array.GetAt(0), std::out_of_range);
    EXPECT_EQ(array.Add(&values[1]), 0);
    EXPECT_EQ(array.Add(&values[3]), 1);
    array.InsertAt(0, &values[0]);
    array.InsertAt(2, &values[2]);
    for (INT_PTR i = 0; i < 1000; ++i) {
        array.InsertAt(2, &values[i % 4]);
    }
    EXPECT_EQ(array.GetSize(), 1004);
    EXPECT_EQ(array[1], &values[1]);
    EXPECT_EQ(array[2], &values[3]);
    EXPECT_EQ(array[1003], &values[3]);
    EXPECT_THROW(array.GetAt(1004), std::out_of_range);
    EXPECT_THROW(array.GetAt(-1), std::out_of_range);
    EXPECT_THROW(array.InsertAt(1005, nullptr), std::out_of_range);
    EXPECT_THROW(array.InsertAt(-1, nullptr), std::out_of_range);
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(GeometryTest, PointsAndRectanglesCarryTheirValues) {
    CRect rect(CPoint(10, 20), CSize(30, 40));
    EXPECT_EQ(rect, CRect(10, 20, 40, 60));
    EXPECT_EQ(rect.CenterPoint() - CSize(1, 2), CPoint(24, 38));
    rect.OffsetRect(-10, 5);
    EXPECT_EQ(rect.TopLeft(), CPoint(0, 25));
    EXPECT_EQ(CPoint(MAKELPARAM(0xFFFE, 3)), CPoint(-2, 3));
}

}  // namespace
}  // namespace mvp::test
