// Line breaks and table rectangles against what an independent layout engine gave for the same
// documents (layout_oracle.json): line texts are equal but for white space, and every edge of a
// rectangle is within a pixel.
#include <cmath>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"
#include <nlohmann/json.hpp>

namespace mvp::richtext {
namespace {

using Rect = std::array<double, 4>;

// Where our language differs on purpose: id, and why.
const std::map<std::string, std::string>& Differing() {
    static const std::map<std::string, std::string> kDiffering;
    return kDiffering;
}

std::string Squeezed(std::string_view text) {
    std::string strOut;
    for (const char c : text) {
        if (c != ' ') {
            strOut += c;
        }
    }
    return strOut;
}

std::vector<std::string> LineTexts(const CRichText& text) {
    std::vector<std::string> aLines;
    for (const LineBox& line : text.Boxes().aLines) {
        std::string strLine;
        for (std::uint32_t i = 0; i < line.nFragments; ++i) {
            const Fragment& fragment = text.Boxes().aFragments[line.nFirstFragment + i];
            if (fragment.kind == FragmentKind::Text) {
                strLine += text.Document().strText.substr(fragment.nOffset, fragment.nLength);
            }
        }
        if (!Squeezed(strLine).empty()) {
            aLines.push_back(Squeezed(strLine));
        }
    }
    return aLines;
}

std::vector<Rect> Rects(const CRichText& text, bool bCells) {
    std::vector<Rect> aRects;
    for (const BlockBox& block : text.Boxes().aBlocks) {
        if (block.bCell == bCells) {
            aRects.push_back({static_cast<double>(block.nX), static_cast<double>(block.nY),
                              static_cast<double>(block.nWidth),
                              static_cast<double>(block.nHeight)});
        }
    }
    return aRects;
}

bool Agree(const std::vector<Rect>& a, const std::vector<Rect>& b, double tolerance) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (const std::size_t nSide : {std::size_t{0}, std::size_t{1}}) {
            const double nStart = a[i][nSide] - b[i][nSide];
            const double nEnd = nStart + a[i][nSide + 2] - b[i][nSide + 2];
            if (std::abs(nStart) > tolerance || std::abs(nEnd) > tolerance) {
                return false;
            }
        }
    }
    return true;
}

TEST(LayoutOracle, EveryDocumentAgreesOrIsListed) {
    std::ifstream file(RICHTEXT_TEST_DATA "/layout_oracle.json");
    ASSERT_TRUE(file.is_open());
    const nlohmann::json oracle = nlohmann::json::parse(file);
    const double tolerance = oracle.at("tolerance_px");
    ASSERT_GE(oracle.at("documents").size(), 40U);

    for (const auto& document : oracle.at("documents")) {
        const std::string strId = document.at("id");
        CFixedMeasurer measurer;
        CRichText text(measurer);
        BuildSettings settings;
        settings.font.nSize = oracle.at("font").at("base_size");
        ASSERT_TRUE(text.SetSettings(settings));
        ASSERT_TRUE(text.SetStyleSheet(document.at("css").get<std::string>()));
        ASSERT_TRUE(text.SetText(document.at("html").get<std::string>()));
        ASSERT_TRUE(text.Layout(document.at("width")));

        std::vector<std::string> aExpected;
        for (const std::string strLine : document.at("lines")) {
            aExpected.push_back(Squeezed(strLine));
        }
        const double nHeight = document.at("height");
        const bool bAgrees =
            LineTexts(text) == aExpected &&
            Agree(Rects(text, true), document.at("cells").get<std::vector<Rect>>(), tolerance) &&
            Agree(Rects(text, false), document.at("tables").get<std::vector<Rect>>(), tolerance) &&
            std::abs(text.Boxes().nHeight - nHeight) <= tolerance;
        EXPECT_EQ(bAgrees, !Differing().contains(strId))
            << strId << ": " << document.at("why") << "\n"
            << document.at("html") << "\n"
            << DumpLayout(text.Document(), text.Boxes());
    }
}

}  // namespace
}  // namespace mvp::richtext
