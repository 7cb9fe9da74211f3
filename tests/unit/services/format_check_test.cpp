#include "services/format_check.h"

#include <gtest/gtest.h>

namespace mvp {
namespace {

TEST(FormatCheck, TakesOneIntegerAndNothingElse) {
    for (const char* format : {"%d", "Minimum length: %d", "%u characters", "100%% of %d", "%-4d|",
                               "%+03i", "%12d", "%X", "%o", "%ld", "%x%%"}) {
        EXPECT_TRUE(TakesOneInteger(format)) << format;
    }
    for (const char* format : {"",     "no number", "%%",  "%d and %d", "%s",      "%n",    "%",
                               "%5",   "%d%",       "%*d", "%.*d",      "%1$d",    "%100d", "%I64d",
                               "%lld", "%f",        "%ls", "%d %s",     "%%%%n%n", "%-"}) {
        EXPECT_FALSE(TakesOneInteger(format)) << format;
    }
    EXPECT_FALSE(TakesOneInteger(std::string_view("%\0d", 3)));
}

TEST(FormatCheck, TakesOneTextAndNothingElse) {
    for (const char* format : {"%s", "Call %s now", "100%% of %s", "%s%%"}) {
        EXPECT_TRUE(TakesOneText(format)) << format;
    }
    for (const char* format : {"", "no text", "%%", "%s and %s", "%d", "%", "%5s", "%-s", "%ls",
                               "%S", "%s%", "%s %d", "%1$s", "%.*s"}) {
        EXPECT_FALSE(TakesOneText(format)) << format;
    }
}

}  // namespace
}  // namespace mvp
