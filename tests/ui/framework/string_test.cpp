// The framework's values: strings and times.
#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <dlgfw/string.h>
#include <dlgfw/time.h>
#include <gtest/gtest.h>

#include "support/freed_blocks.h"

namespace mvp::test {
namespace {

const char kSecret[] = "1234-abcd-5678";

using String = std::optional<CString>;
struct Change {
    const char* name;
    std::function<void(String&)> apply;
};

TEST(StringTest, StorageIsZeroWhenItIsReleased) {
    const Change releases[] = {
        {"destructor", [](String& s) { s.reset(); }},
        {"Empty", [](String& s) { s->Empty(); }},
        {"assignment of nothing", [](String& s) { *s = ""; }},
        {"assignment of a longer text", [](String& s) { *s = CString('x', 100); }},
        {"move assignment", [](String& s) { *s = CString("y"); }},
        {"growth by appending", [](String& s) { *s += CString('x', 100); }},
        {"growth by appending itself", [](String& s) { *s += *s, *s += *s, *s += *s, *s += *s; }},
        {"growth of the buffer", [](String& s) { s->GetBuffer(1000); }},
        {"Format", [](String& s) { s->Format("%d", 5); }},
        {"Replace", [](String& s) { s->Replace("1234", "4321"); }},
    };
    const char* storage = nullptr;
    std::optional<size_t> dirty;
    const FreedBlocks freed({"dlgfw.dll"}, [&](const void* p, size_t nBytes) {
        if (p == storage) {
            dirty = DirtyBytes(p, nBytes);
        }
    });
    for (const Change& change : releases) {
        SCOPED_TRACE(change.name);
        String s(kSecret);
        storage = s->GetString();
        dirty.reset();
        change.apply(s);
        EXPECT_EQ(dirty, 0u);
    }
}

TEST(StringTest, StorageBehindAShortenedTextIsZero) {
    const Change cuts[] = {
        {"assignment of a shorter text", [](String& s) { *s = "12"; }},
        {"assignment of its own part", [](String& s) { *s = s->GetString() + 10; }},
        {"Truncate", [](String& s) { s->Truncate(3); }},
        {"Remove", [](String& s) { s->Remove('-'); }},
        {"TrimRight", [](String& s) { s->Replace('8', ' '), s->TrimRight(); }},
        {"TrimLeft", [](String& s) { s->Replace('1', ' '), s->TrimLeft(); }},
        {"ReleaseBuffer of a length", [](String& s) { s->ReleaseBuffer(4); }},
        {"ReleaseBuffer at a terminator",
         [](String& s) { s->GetBuffer()[4] = '\0', s->ReleaseBuffer(); }},
    };
    for (const Change& change : cuts) {
        SCOPED_TRACE(change.name);
        String s(kSecret);
        const char* p = s->GetString();
        change.apply(s);
        ASSERT_EQ(s->GetString(), p);
        ASSERT_LT(s->GetLength(), static_cast<int>(sizeof(kSecret)) - 1);
        EXPECT_EQ(DirtyBytes(p + s->GetLength(),
                             static_cast<size_t>(s->GetAllocLength() - s->GetLength()) + 1),
                  0u);
    }
}

TEST(StringTest, StorageIsNeverShared) {
    CString a(kSecret);
    const CString b(a);
    EXPECT_NE(a.GetString(), b.GetString());
    const char* p = a.GetString();
    CString c(std::move(a));
    EXPECT_EQ(c.GetString(), p);
    EXPECT_TRUE(a.IsEmpty());  // NOLINT(bugprone-use-after-move): empty by contract
    a = std::move(c);
    EXPECT_EQ(a.GetString(), p);
    EXPECT_EQ(a, kSecret);
    CString empty;
    empty.GetBuffer()[0] = 'x';
    empty.ReleaseBuffer(1);
    EXPECT_EQ(empty, "x");
    EXPECT_STREQ(CString(), "");  // the text that empty strings share is intact
}

TEST(StringTest, PositionsOutOfRangeAreClipped) {
    const CString s("abcdef");
    for (const auto& [result, expected] : {std::pair<CString, const char*>{s.Mid(2), "cdef"},
                                           {s.Mid(2, 2), "cd"},
                                           {s.Mid(-3, 2), "ab"},
                                           {s.Mid(4, 100), "ef"},
                                           {s.Mid(9), ""},
                                           {s.Mid(2, -1), ""},
                                           {s.Left(2), "ab"},
                                           {s.Left(-1), ""},
                                           {s.Left(99), "abcdef"},
                                           {s.Right(2), "ef"},
                                           {s.Right(-1), ""},
                                           {s.Right(99), "abcdef"},
                                           {CString("xyz", 2), "xy"},
                                           {CString(nullptr, 5), ""},
                                           {CString('z', -1), ""}}) {
        EXPECT_STREQ(result, expected);
    }

    CString t("ab");
    EXPECT_EQ(t.GetAt(2), '\0');
    EXPECT_THROW(t.GetAt(3), std::out_of_range);
    EXPECT_THROW(t[-1], std::out_of_range);
    EXPECT_THROW(t.SetAt(2, 'x'), std::out_of_range);
    t.ReleaseBuffer(1000);
    EXPECT_LE(t.GetLength(), t.GetAllocLength());
}

TEST(StringTest, FindsReplacesAndCompares) {
    CString s("one two two");
    EXPECT_EQ(s.Find('t'), 4);
    EXPECT_EQ(s.Find('t', 5), 8);
    EXPECT_EQ(s.Find('t', -1), -1);
    EXPECT_EQ(s.Find("two", 5), 8);
    EXPECT_EQ(s.Find("two", 99), -1);
    EXPECT_EQ(s.Find(""), 0);
    EXPECT_EQ(s.Replace("two", "three"), 2);
    EXPECT_STREQ(s, "one three three");
    EXPECT_EQ(s.Replace("three", ""), 2);
    EXPECT_STREQ(s, "one  ");
    EXPECT_EQ(s.Replace("", "x"), 0);
    EXPECT_EQ(s.Replace('o', '0'), 1);
    EXPECT_EQ(s.Remove(' '), 2);
    EXPECT_STREQ(s, "0ne");
    EXPECT_STREQ(CString("\t a b\r\n").Trim(), "a b");
    EXPECT_STREQ(CString("   ").Trim(), "");

    s = "Reader";
    EXPECT_TRUE(s == "Reader" && "Reader" == s && s != "reader" && s == CString("Reader"));
    EXPECT_EQ(s.CompareNoCase("rEADER"), 0);
    EXPECT_NE(s.CompareNoCase("readers"), 0);
    EXPECT_EQ(CString().Compare(nullptr), 0);
    EXPECT_GT(CString("\xE9").Compare("z"), 0);  // bytes count as unsigned
    EXPECT_STREQ(CString("a\xE9z").MakeUpper(), "A\xC9Z");
}

TEST(StringTest, FormatsAndJoins) {
    CString s;
    s.Format("%d of %s: %5.2f %08X", 3, "ten", 2.5, 0xABCDu);
    EXPECT_STREQ(s, "3 of ten:  2.50 0000ABCD");
    s = "x";
    s.Format("%s-%s", static_cast<LPCSTR>(s), static_cast<LPCSTR>(s));
    EXPECT_STREQ(s, "x-x");
    s.Format("%s", std::string(5000, 'y').c_str());
    EXPECT_EQ(s.GetLength(), 5000);
    s.Format("%s", "");
    EXPECT_TRUE(s.IsEmpty());

    const CString a("a");
    EXPECT_STREQ("x" + a + a + "b", "xaab");
    for (int i = 0; i < 1000; ++i) {
        s += 'z';
    }
    EXPECT_EQ(s, std::string(1000, 'z').c_str());
    s += s.GetString() + 999;  // a part of itself, with and without room
    s.Append(s, s.GetLength());
    EXPECT_EQ(s.GetLength(), 2002);
}

// What the dates of the library's notices do not show of it.
TEST(TimeTest, IsLocalAndHasNoTextOutOfRange) {
    struct tm fields = {0, 0, 23, 29, 1, 124, 0, 0, -1};
    EXPECT_STREQ(CTime(_mktime64(&fields)).Format("%m/%d/%y %H:%M:%S"), "02/29/24 23:00:00");
    using Limits = std::numeric_limits<__time64_t>;
    for (const __time64_t none : {__time64_t{-1}, Limits::min(), Limits::max()}) {
        EXPECT_STREQ(CTime(none).Format("no field of a date"), "");
    }
}

}  // namespace
}  // namespace mvp::test
