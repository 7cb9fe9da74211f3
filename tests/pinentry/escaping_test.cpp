#include "pinentry/core/escaping.h"

#include <gtest/gtest.h>

namespace pinentry {
namespace {

TEST(Escaping, ReadsNothingBehindTheText) {
    constexpr std::string_view whole = "%41";
    std::string text;
    for (const std::size_t length : {1U, 2U}) {
        EXPECT_TRUE(Unescape(whole.substr(0, length), text));
        EXPECT_EQ(text, whole.substr(0, length));
    }
}

}  // namespace
}  // namespace pinentry
