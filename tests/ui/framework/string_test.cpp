#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <dlgfw/string.h>
#include <gtest/gtest.h>

#include "support/freed_blocks.h"

namespace mvp::test {
namespace {

const char kSecret[] = "1234-abcd-5678";

struct Change {
    const char* name;
    std::function<void(std::optional<CString>&)> apply;
};

// Each makes the string give up its storage.
const Change kReleases[] = {
    {"destructor", [](auto& s) { s.reset(); }},
    {"Empty", [](auto& s) { s->Empty(); }},
    {"assignment of nothing", [](auto& s) { *s = ""; }},
    {"assignment of a longer text", [](auto& s) { *s = CString('x', 100); }},
    {"move assignment", [](auto& s) { *s = CString("y"); }},
    {"growth by appending", [](auto& s) { *s += CString('x', 100); }},
    {"growth by appending itself",
     [](auto& s) {
         for (int i = 0; i < 4; ++i)
             *s += *s;
     }},
    {"growth of the buffer", [](auto& s) { s->GetBuffer(1000); }},
    {"Format", [](auto& s) { s->Format("%d", 5); }},
    {"Replace", [](auto& s) { s->Replace("1234", "4321"); }},
};

TEST(StringTest, StorageIsZeroWhenItIsReleased) {
    const char* pStorage = nullptr;
    std::optional<size_t> dirty;
    const FreedBlocks freed({"dlgfw.dll"}, [&](const void* p, size_t nBytes) {
        if (p == pStorage)
            dirty = DirtyBytes(p, nBytes);
    });
    for (const Change& change : kReleases) {
        SCOPED_TRACE(change.name);
        std::optional<CString> s(kSecret);
        pStorage = s->GetString();
        dirty.reset();
        change.apply(s);
        EXPECT_EQ(dirty, 0u);
    }
}

// Each shortens the text within its storage.
const Change kCuts[] = {
    {"assignment of a shorter text", [](auto& s) { *s = "12"; }},
    {"assignment of its own part", [](auto& s) { *s = s->GetString() + 10; }},
    {"Truncate", [](auto& s) { s->Truncate(3); }},
    {"Remove", [](auto& s) { s->Remove('-'); }},
    {"TrimRight",
     [](auto& s) {
         s->Replace('8', ' ');
         s->TrimRight();
     }},
    {"TrimLeft",
     [](auto& s) {
         s->Replace('1', ' ');
         s->TrimLeft();
     }},
    {"ReleaseBuffer of a length", [](auto& s) { s->ReleaseBuffer(4); }},
    {"ReleaseBuffer at a terminator",
     [](auto& s) {
         s->GetBuffer()[4] = '\0';
         s->ReleaseBuffer();
     }},
};

TEST(StringTest, StorageBehindTheTextIsZero) {
    for (const Change& change : kCuts) {
        SCOPED_TRACE(change.name);
        std::optional<CString> s(kSecret);
        const char* p = s->GetString();
        change.apply(s);
        ASSERT_EQ(s->GetString(), p);
        ASSERT_LT(s->GetLength(), static_cast<int>(sizeof(kSecret)) - 1);
        EXPECT_TRUE(std::all_of(p + s->GetLength(), p + s->GetAllocLength() + 1,
                                [](char ch) { return ch == '\0'; }));
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
    struct {
        CString result;
        const char* expected;
    } const cases[] = {
        {s.Mid(2), "cdef"},
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
        {CString('z', -1), ""},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(c.result, c.expected);

    CString t("ab");
    EXPECT_EQ(t.GetAt(2), '\0');
    EXPECT_THROW(t.GetAt(3), std::out_of_range);
    EXPECT_THROW(t[-1], std::out_of_range);
    EXPECT_THROW(t.SetAt(2, 'x'), std::out_of_range);
    t.ReleaseBuffer(1000);
    EXPECT_LE(t.GetLength(), t.GetAllocLength());
}

TEST(StringTest, FindsAndReplaces) {
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
}

TEST(StringTest, ComparesBytesOrWithoutRegardToCase) {
    const CString s("Reader");
    EXPECT_TRUE(s == "Reader" && "Reader" == s && s != "reader" && s == CString("Reader"));
    EXPECT_EQ(s.CompareNoCase("rEADER"), 0);
    EXPECT_NE(s.CompareNoCase("readers"), 0);
    EXPECT_EQ(CString().Compare(nullptr), 0);
    EXPECT_GT(CString("\xE9").Compare("z"), 0);  // bytes count as unsigned
    EXPECT_STREQ(CString("a\xE9z").MakeUpper(), "A\xC9Z");
}

TEST(StringTest, Formats) {
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
}

TEST(StringTest, JoinsTexts) {
    const CString a("a");
    EXPECT_STREQ("x" + a + a + "b", "xaab");
    CString s;
    for (int i = 0; i < 1000; ++i)
        s += 'z';
    EXPECT_EQ(s, std::string(1000, 'z').c_str());
    s += s.GetString() + 999;  // a part of itself, with and without room
    s.Append(s, s.GetLength());
    EXPECT_EQ(s.GetLength(), 2002);
}

}  // namespace
}  // namespace mvp::test
