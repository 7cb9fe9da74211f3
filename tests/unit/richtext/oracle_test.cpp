// Line breaks and table rectangles against what an independent layout engine gave for the same
// documents (layout_oracle.json): line texts are equal but for white space, and every edge of a
// rectangle is within a pixel.
#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "test_text.h"
#include <nlohmann/json.hpp>

namespace mvp::richtext {
namespace {

using Rect = std::array<double, 4>;

// Without spaces, and without the lines that are empty then.
std::vector<std::string> Squeezed(std::vector<std::string> aLines) {
    for (std::string& strLine : aLines) {
        std::erase(strLine, ' ');
    }
    std::erase(aLines, "");
    return aLines;
}

bool Agree(const Rect& a, const Rect& b, double tolerance) {
    for (const std::size_t nSide : {std::size_t{0}, std::size_t{1}}) {
        const double nStart = a[nSide] - b[nSide];
        const double nEnd = nStart + a[nSide + 2] - b[nSide + 2];
        if (std::abs(nStart) > tolerance || std::abs(nEnd) > tolerance) {
            return false;
        }
    }
    return true;
}

bool Agree(const CRichText& text, bool bCells, const std::vector<Rect>& expected,
           double tolerance) {
    std::vector<Rect> aRects;
    for (const BlockBox& block : text.Boxes().aBlocks) {
        if (block.bCell == bCells) {
            aRects.push_back(
                {double(block.nX), double(block.nY), double(block.nWidth), double(block.nHeight)});
        }
    }
    return std::equal(aRects.begin(), aRects.end(), expected.begin(), expected.end(),
                      [&](const Rect& a, const Rect& b) { return Agree(a, b, tolerance); });
}

TEST(LayoutOracle, EveryDocumentAgrees) {
    std::ifstream file(RICHTEXT_TEST_DATA "/layout_oracle.json");
    const nlohmann::json oracle = nlohmann::json::parse(file);
    const double tolerance = oracle.at("tolerance_px");
    ASSERT_GE(oracle.at("documents").size(), 40U);
    for (const auto& document : oracle.at("documents")) {
        TestText test({{}, oracle.at("font").at("base_size")});
        const CRichText& text = test.text;
        EXPECT_TRUE(test.text.SetStyleSheet(document.at("css").get<std::string>()));
        test.LayOut(document.at("html").get<std::string>(), document.at("width"));
        const double nHeight = document.at("height");
        EXPECT_TRUE(Squeezed(test.Lines()) == Squeezed(document.at("lines")) &&
                    Agree(text, true, document.at("cells"), tolerance) &&
                    Agree(text, false, document.at("tables"), tolerance) &&
                    std::abs(text.Boxes().nHeight - nHeight) <= tolerance)
            << document.at("id") << ": " << document.at("why") << "\n"
            << document.at("html") << "\n"
            << DumpLayout(text.Document(), text.Boxes());
    }
}

}  // namespace
}  // namespace mvp::richtext
