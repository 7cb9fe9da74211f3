#include "policy/integer_format.h"

#include <gtest/gtest.h>

namespace mvp {
namespace {

TEST(IntegerFormat, TakesOneIntegerAndNothingElse) {
    for (const char* format : {"%d", "Minimum length: %d", "%u characters", "100%% of %d", "%-4d|",
                               "%+03i", "%ld", "%x%%"}) {
        EXPECT_TRUE(TakesOneInteger(format)) << format;
    }
    for (const char* format : {"",     "no number", "%%",  "%d and %d", "%s",      "%n",    "%",
                               "%5",   "%d%",       "%*d", "%.*d",      "%1$d",    "%100d", "%I64d",
                               "%lld", "%f",        "%ls", "%d %s",     "%%%%n%n", "%-"}) {
        EXPECT_FALSE(TakesOneInteger(format)) << format;
    }
    EXPECT_FALSE(TakesOneInteger(std::string_view("%\0d", 3)));
}

}  // namespace
}  // namespace mvp
