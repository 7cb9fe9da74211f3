// Whole documents: against the dumps of every stage, one document a file in golden/, and against
// what an independent layout engine gave for the same documents (layout_oracle.json).
//
// With MVP_UPDATE_GOLDEN set in the environment the dumps are written anew instead of compared.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "unit/richtext/test_text.h"
#include <nlohmann/json.hpp>

namespace mvp::richtext {
namespace {

// A section begins with a line "==== name" and runs up to the next one.
std::map<std::string, std::string> SectionsOf(const std::string& strFile) {
    std::map<std::string, std::string> sections;
    std::string* section = nullptr;
    std::istringstream stream(strFile);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("==== ")) {
            section = &sections[line.substr(5)];
        } else {
            *section += line + "\n";
        }
    }
    return sections;
}

// The last line feed belongs to the file, not to the text.
std::string WithoutLastLineFeed(const std::string& strText) {
    return strText.substr(0, strText.size() - (strText.ends_with('\n') ? 1 : 0));
}

std::string Produce(std::map<std::string, std::string> sections) {
    TestText test({"Tahoma", 10});
    const std::string sheet = WithoutLastLineFeed(sections["sheet"]);
    // "builtin" alone stands for no text.
    EXPECT_TRUE(test.text.SetStyleSheet(
        sheet == "builtin" ? std::nullopt : std::optional<std::string_view>(sheet)));
    const std::string markup = WithoutLastLineFeed(sections["markup"]);
    test.LayOut(markup, std::stoi(sections["width"]));
    sections["events"] = DumpMarkup(markup);
    sections["styles"] = DumpStyles(test.text.Document());
    sections["layout"] = DumpLayout(test.text.Document(), test.text.Boxes());
    std::string file;
    for (const char* section : {"width", "sheet", "markup", "events", "styles", "layout"}) {
        file += std::string("==== ").append(section).append("\n") + sections[section];
    }
    return file;
}

TEST(Golden, EveryDocumentGivesItsDumps) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(RICHTEXT_TEST_DATA "/golden")) {
        ++files;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string expected(std::istreambuf_iterator<char>(file), {});
        const std::string produced = Produce(SectionsOf(expected));
        if (std::getenv("MVP_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(entry.path(), std::ios::binary) << produced;
        } else {
            EXPECT_EQ(produced, expected) << entry.path().filename();
        }
    }
    EXPECT_GE(files, 12);
}

using Rect = std::array<double, 4>;

// Without spaces, and without the lines that are empty then.
std::vector<std::string> Squeezed(std::vector<std::string> aLines) {
    for (std::string& line : aLines) {
        std::erase(line, ' ');
    }
    std::erase(aLines, "");
    return aLines;
}

bool Agree(const RichText& text, bool bCells, const std::vector<Rect>& expected, double tolerance) {
    std::vector<Rect> rects;
    for (const BlockBox& block : text.Boxes().aBlocks) {
        if (block.bCell == bCells) {
            rects.push_back(
                {double(block.nX), double(block.nY), double(block.nWidth), double(block.nHeight)});
        }
    }
    return std::ranges::equal(rects, expected, [=](const Rect& a, const Rect& b) {
        const double off[] = {a[0] - b[0], a[1] - b[1], a[0] + a[2] - b[0] - b[2],
                              a[1] + a[3] - b[1] - b[3]};
        return std::ranges::all_of(off, [=](double n) { return std::abs(n) <= tolerance; });
    });
}

// Line texts are equal but for white space, and every edge of a rectangle is within a pixel.
TEST(LayoutOracle, EveryDocumentAgrees) {
    std::ifstream file(RICHTEXT_TEST_DATA "/layout_oracle.json");
    const nlohmann::json oracle = nlohmann::json::parse(file);
    const double tolerance = oracle.at("tolerance_px");
    ASSERT_GE(oracle.at("documents").size(), 40U);
    for (const auto& document : oracle.at("documents")) {
        TestText test({{}, oracle.at("font").at("base_size")});
        const RichText& text = test.text;
        EXPECT_TRUE(test.text.SetStyleSheet(document.at("css").get<std::string>()));
        test.LayOut(document.at("html").get<std::string>(), document.at("width"));
        const double height = document.at("height");
        EXPECT_TRUE(Squeezed(test.Lines()) == Squeezed(document.at("lines")) &&
                    Agree(text, true, document.at("cells"), tolerance) &&
                    Agree(text, false, document.at("tables"), tolerance) &&
                    std::abs(text.Boxes().nHeight - height) <= tolerance)
            << document.at("id") << ": " << document.at("why") << "\n"
            << document.at("html") << "\n"
            << DumpLayout(text.Document(), text.Boxes());
    }
}

}  // namespace
}  // namespace mvp::richtext
