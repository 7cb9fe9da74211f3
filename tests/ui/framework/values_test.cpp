// CTime, CPtrArray and the geometry classes.
#include <limits>
#include <stdexcept>

#include <dlgfw/geometry.h>
#include <dlgfw/ptr_array.h>
#include <dlgfw/time.h>
#include <gtest/gtest.h>

namespace mvp::test {
namespace {

TEST(TimeTest, GoesFromFieldsToSecondsAndBack) {
    const CTime time(2024, 2, 29, 23, 5, 7);
    EXPECT_STREQ(time.Format("%m/%d/%y %H:%M:%S"), "02/29/24 23:05:07");
    EXPECT_EQ(time.GetYear(), 2024);
    EXPECT_EQ(time.GetMonth(), 2);
    EXPECT_EQ(time.GetDay(), 29);
    EXPECT_EQ(time.GetDayOfWeek(), 5);  // a Thursday
    const CTime next = time + CTimeSpan(1, 0, 54, 53);
    EXPECT_STREQ(next.Format("%Y-%m-%d %H:%M"), "2024-03-02 00:00");
    EXPECT_EQ((next - time).GetDays(), 1);
    EXPECT_EQ((next - time).GetMinutes(), 54);
    EXPECT_EQ((next - time).GetTotalSeconds(), 86400 + 54 * 60 + 53);
    EXPECT_TRUE(time < next && next > time && time != next && time <= time);
    EXPECT_STREQ(CTime(1709251507).FormatGmt("%Y-%m-%dT%H:%M:%S"), "2024-03-01T00:05:07");
    EXPECT_STREQ(CTime(4102444800).FormatGmt("%Y"), "2100");  // beyond 32 bits of seconds
}

TEST(TimeTest, MomentsWithoutDateGiveNoText) {
    for (const __time64_t time : {__time64_t{-1}, std::numeric_limits<__time64_t>::min(),
                                  std::numeric_limits<__time64_t>::max()}) {
        SCOPED_TRACE(time);
        EXPECT_STREQ(CTime(time).Format("%m/%d/%y"), "");
        EXPECT_STREQ(CTime(time).FormatGmt("%m/%d/%y"), "");
        EXPECT_EQ(CTime(time).GetYear(), 0);
    }
}

TEST(PtrArrayTest, KeepsOrderThroughInsertionAndRemoval) {
    int values[8];
    CPtrArray array;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.Add(&values[1]), 0);
    EXPECT_EQ(array.Add(&values[3]), 1);
    array.InsertAt(0, &values[0]);
    array.InsertAt(2, &values[2]);
    for (INT_PTR i = 0; i < 4; ++i)
        EXPECT_EQ(array[i], &values[i]);
    array.RemoveAt(1, 2);
    EXPECT_EQ(array.GetSize(), 2);
    EXPECT_EQ(array[1], &values[3]);
    array.InsertAt(4, &values[4], 2);
    EXPECT_EQ(array.GetUpperBound(), 5);
    EXPECT_EQ(array[3], nullptr);
    EXPECT_EQ(array[5], &values[4]);
    array.SetAtGrow(7, &values[7]);
    EXPECT_EQ(array.GetCount(), 8);
    for (int i = 0; i < 10000; ++i)
        array.Add(&values[i % 8]);
    EXPECT_EQ(array[10007], &values[9999 % 8]);
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(PtrArrayTest, RefusesIndicesOutOfRange) {
    CPtrArray array;
    array.SetSize(2, 16);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_THROW(array.GetAt(2), std::out_of_range);
    EXPECT_THROW(array.GetAt(-1), std::out_of_range);
    EXPECT_THROW(array[2] = nullptr, std::out_of_range);
    EXPECT_THROW(array.RemoveAt(1, 2), std::out_of_range);
    EXPECT_THROW(array.RemoveAt(0, -1), std::out_of_range);
    EXPECT_THROW(array.InsertAt(-1, nullptr), std::out_of_range);
    EXPECT_THROW(array.SetSize(-1), std::out_of_range);
    EXPECT_THROW(array.SetSize(std::numeric_limits<INT_PTR>::max()), std::bad_alloc);
    EXPECT_EQ(array.GetSize(), 2);
}

TEST(GeometryTest, RectanglesDoArithmetic) {
    CRect rect(CPoint(10, 20), CSize(30, 40));
    EXPECT_EQ(rect, CRect(10, 20, 40, 60));
    EXPECT_EQ(rect.CenterPoint(), CPoint(25, 40));
    EXPECT_TRUE(rect.PtInRect(rect.TopLeft()));
    EXPECT_FALSE(rect.PtInRect(rect.BottomRight()));
    rect.DeflateRect(1, 2, 3, 4);
    EXPECT_EQ(rect, CRect(11, 22, 37, 56));
    rect.InflateRect(1, 2);
    EXPECT_EQ(rect + CPoint(5, 5), CRect(15, 25, 43, 63));
    EXPECT_EQ(rect & CRect(0, 0, 20, 30), CRect(10, 20, 20, 30));
    EXPECT_EQ(rect | CRect(0, 0, 20, 30), CRect(0, 0, 38, 58));
    rect &= CRect(100, 100, 110, 110);
    EXPECT_TRUE(rect.IsRectNull());
    CRect crossed(40, 60, 10, 20);
    crossed.NormalizeRect();
    EXPECT_EQ(crossed, CRect(10, 20, 40, 60));
    crossed.MoveToXY(0, 0);
    EXPECT_EQ(crossed.Size(), CSize(30, 40));
    EXPECT_EQ(CPoint(MAKELPARAM(0xFFFE, 3)), CPoint(-2, 3));
    EXPECT_EQ(CPoint(5, 7) - CPoint(2, 3), CSize(3, 4));
}

}  // namespace
}  // namespace mvp::test
