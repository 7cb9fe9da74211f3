// A text through all stages, measured without a device, and tables of texts.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace mvp::richtext {

// What is made of each first text is the second.
inline void ExpectTexts(const std::function<std::string(const char*)>& make,
                        std::initializer_list<std::pair<const char*, std::string>> cases) {
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(make(text), expected) << text;
    }
}

struct TestText {
    explicit TestText(FontDescription font = BuildSettings().font) {
        BuildSettings settings;
        settings.font = font;
        EXPECT_TRUE(text.SetSettings(settings));
    }

    void LayOut(std::string_view markup, std::int32_t nWidth) {
        EXPECT_TRUE(text.SetText(markup));
        EXPECT_TRUE(text.Layout(nWidth));
    }

    // The text of every line.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (const LineBox& line : text.Boxes().aLines) {
            std::string& lineText = lines.emplace_back();
            for (std::uint32_t i = 0; i < line.nFragments; ++i) {
                const Fragment& fragment = text.Boxes().aFragments[line.nFirstFragment + i];
                if (fragment.kind == FragmentKind::Text) {
                    lineText += text.Document().strText.substr(fragment.nOffset, fragment.nLength);
                }
            }
        }
        return lines;
    }

    FixedMeasurer measurer;
    RichText text{measurer};
};

}  // namespace mvp::richtext
