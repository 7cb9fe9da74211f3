#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iterator>
#include <new>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "suite/mvcext/mvcext.h"
#include "suite/mvcext/pattern_compiler.h"
#include "suite/vklog/vklog.h"

namespace {

std::atomic<bool> g_bNoMemory = false;
std::string g_strLogged;

}  // namespace

// Not inlined, or the compiler sees malloc and free where it expects the operators.
[[gnu::noinline]] void* operator new(std::size_t nSize) {
    void* const p = g_bNoMemory ? nullptr : std::malloc(nSize);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}
[[gnu::noinline]] void operator delete(void* p) noexcept {
    std::free(p);
}
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

void vklogLog(const char* pszTag, int nLevel, const char*, ...) {
    g_bNoMemory = false;
    g_strLogged = std::string(pszTag) + " " + std::to_string(nLevel);
}

namespace mvp {
namespace {

TEST(Pattern, TellsTheLogOfMissingMemory) {
    const CPattern made("a+");
    g_bNoMemory = true;
    EXPECT_FALSE(CPattern("a+").IsValid());
    EXPECT_EQ(std::exchange(g_strLogged, ""), "MVCEXT 1");
    g_bNoMemory = true;
    EXPECT_FALSE(made.IsMatched("aaa"));
    EXPECT_EQ(std::exchange(g_strLogged, ""), "MVCEXT 1");
}

bool Matches(const std::string& pattern, const std::string& text, bool bIgnoreCase = false) {
    const auto program = CompilePattern(pattern, bIgnoreCase);
    EXPECT_TRUE(program) << pattern;
    return program && program->Matches(text);
}

// What repeats, chooses and anchors, the random expressions below hold.
TEST(Pattern, MatchesTheWholeText) {
    const struct {
        const char* pszPattern;
        std::vector<std::string> matching;
        std::vector<std::string> others;
    } cases[] = {
        {"", {""}, {"a"}},
        {"abc", {"abc"}, {"abcd", "xabc", "ab", "ABC"}},
        {".*<.*href\\s*=.*>.*",
         {"<a href=x>", "one\n<a\nhref \t\r\n = \"x\"\n>two\n", "<<href=>>", "<p href= <>"},
         {"href=x", "<a href x>", "<a HREF=x>", ">href=<", "<a href=x", ""}},
        {"a|bc|", {"a", "bc", ""}, {"ac", "abc", "b"}},
        {"(?:x|y)+z", {"xyxz"}, {"z"}},
        {"[a-cx-]+", {"abcx-"}, {"d", "y"}},
        {"[^a-c\\]]+", {"xyz\n"}, {"xa", "x]"}},
        {"[^\\s\\d]+", {"a_"}, {"a ", "1"}},
        {R"([\x41\t]+\.\\\x7a)", {"A\t.\\z"}, {"AB.\\z", "A,\\z"}},
        {R"(\d\D\w\W\s\S)", {"1x_- x"}, {"1x_-xx"}},
        {"\xe9.\xff", {"\xe9\x80\xff"}, {"\xe8\x80\xff"}},
        {"]-&", {"]-&"}, {}},
    };
    for (const auto& each : cases) {
        for (const std::string& text : each.matching) {
            EXPECT_TRUE(Matches(each.pszPattern, text)) << each.pszPattern << " / " << text;
        }
        for (const std::string& text : each.others) {
            EXPECT_FALSE(Matches(each.pszPattern, text)) << each.pszPattern << " / " << text;
        }
    }
}

TEST(Pattern, IgnoresTheCaseOfAsciiLetters) {
    EXPECT_TRUE(Matches("hREf[a-c\\x58]+", "HrefBx", true));
    EXPECT_FALSE(Matches("[^a]", "A", true));
    EXPECT_FALSE(Matches("[@]", "`", true));
    EXPECT_FALSE(Matches("\xe9", "\xc9", true));
}

TEST(Pattern, RefusesWhatIsMalformed) {
    std::istringstream malformed(
        R"(( ) a) (a (?=a) (? * a|* (*a) a** a+* ^* $? [ [] [^] [a [z-a] [a-\d] [\d-a] [a-)"
        R"( [[:alpha:]] [\ \ \1 \b \q \x \x4 \xg0 a{2} })");
    for (std::string pattern; malformed >> pattern;) {
        EXPECT_FALSE(CompilePattern(pattern, false)) << pattern;
    }
    EXPECT_FALSE(CompilePattern(std::string(kPatternMax + 1, 'a'), false));
}

struct ExpressionMaker {
    std::size_t Pick(std::size_t nCount) { return random() % nCount; }
    std::string Make(int nDepth) {
        static const char* const quantifiers[] = {"*", "+", "?", "*?", "+?", "??"};
        static const char* const leaves[] = {"a",   "B",   "\n",      "[ab]", "[^a]", "[A-B-]",
                                             "\\s", "\\W", "[^\\w-]", ".",    "^",    "$"};
        const std::size_t kind = nDepth == 0 ? 0 : Pick(6);
        if (kind == 0) {
            return leaves[Pick(std::size(leaves))];
        }
        const std::string made = Make(nDepth - 1);
        if (kind > 3) {
            return "(" + made + ")" + quantifiers[Pick(std::size(quantifiers))];
        }
        return kind < 3 ? made + Make(nDepth - 1) : "(" + made + "|" + Make(nDepth - 1) + ")";
    }

    std::mt19937 random{20240309};
};

TEST(Pattern, AgreesWithTheLanguagesLibraryOnRandomExpressions) {
    ExpressionMaker maker;
    int matching = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::string pattern = maker.Make(4);
        const auto program = CompilePattern(pattern, false);
        ASSERT_TRUE(program) << pattern;
        // Its own dot takes no line end, and its own way takes too long.
        const std::regex expected(std::regex_replace(pattern, std::regex("\\."), "[\\s\\S]"),
                                  std::regex::ECMAScript | std::regex_constants::__polynomial);
        for (int n = 0; n < 20; ++n) {
            std::string text(maker.Pick(7), ' ');
            std::ranges::generate(text, [&] { return "abAB\n -"[maker.Pick(7)]; });
            const bool matches = std::regex_match(text, expected);
            ASSERT_EQ(program->Matches(text), matches) << pattern << " / " << text;
            matching += matches;
        }
    }
    EXPECT_GT(matching, 4000) << "too few matches to tell anything";
}

TEST(Pattern, TheExportedClassTakesTextsOrNull) {
    const CPattern pattern("a.*z");
    EXPECT_TRUE(pattern.IsValid());
    EXPECT_TRUE(pattern.IsMatched("a\nz"));
    EXPECT_FALSE(pattern.IsMatched("A\nz"));
    EXPECT_FALSE(pattern.IsMatched(nullptr));
    EXPECT_TRUE(CPattern("a.*z", true).IsMatched("A\nz"));
    for (const char* malformedText : {static_cast<const char*>(nullptr), "("}) {
        const CPattern malformed(malformedText);
        EXPECT_FALSE(malformed.IsValid());
        EXPECT_FALSE(malformed.IsMatched("("));
    }
}

TEST(Pattern, TakesStepsInProportionToTheText) {
    std::string optional(40, 'a');
    for (int i = 0; i < 40; ++i) {
        optional.insert(0, "a?");
    }
    for (const std::string& pattern : {std::string("(a*)*b"), std::string("((a|a)+)+b"),
                                       std::string(".*.*.*.*=.*.*b"), optional}) {
        const auto program = CompilePattern(pattern, false);
        ASSERT_TRUE(program);
        for (const std::size_t length : {40U, 1000U, 20000U}) {
            std::size_t steps = 0;
            program->Matches(std::string(length, 'a'), &steps);
            EXPECT_GT(steps, std::size_t{0});
            EXPECT_LE(steps, (length + 1) * program->StateCount()) << pattern;
        }
    }
}

TEST(Pattern, BearsTheLargest) {
    const std::size_t depth = kPatternMax / 2;
    std::string nested = std::string(depth - 2, '(') + "a*" + std::string(depth - 2, ')') + "*";
    EXPECT_TRUE(Matches(nested, std::string(1000, 'a')));
    EXPECT_FALSE(Matches(nested, "ab"));

    std::string text(1 << 20, '\n');
    EXPECT_FALSE(Matches(".*<.*href\\s*=.*>.*", text));
    text.replace(text.size() / 2, 9, "<href\n=x>");
    EXPECT_TRUE(Matches(".*<.*href\\s*=.*>.*", text));
}

}  // namespace
}  // namespace mvp
