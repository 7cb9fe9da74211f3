// One document a file in golden/: its width, style sheet and markup, and the dump of every stage.
// With MVP_UPDATE_GOLDEN set in the environment the dumps are written anew instead of compared.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace mvp::richtext {
namespace {

constexpr const char* kSections[] = {"width", "sheet", "markup", "events", "styles", "layout"};

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A section begins with a line "==== name" and runs up to the next one.
std::map<std::string, std::string> SectionsOf(const std::string& strFile) {
    std::map<std::string, std::string> sections;
    std::string strName;
    std::size_t nAt = 0;
    while (nAt < strFile.size()) {
        const std::size_t nEnd = std::min(strFile.find('\n', nAt), strFile.size());
        const std::string strLine = strFile.substr(nAt, nEnd - nAt);
        nAt = nEnd + 1;
        if (strLine.rfind("==== ", 0) == 0) {
            strName = strLine.substr(5);
        } else {
            sections[strName] += strLine + "\n";
        }
    }
    return sections;
}

// The last line feed belongs to the file, not to the text.
std::string WithoutLastLineFeed(std::string strText) {
    if (!strText.empty() && strText.back() == '\n') {
        strText.pop_back();
    }
    return strText;
}

std::string Produce(std::map<std::string, std::string> sections) {
    const std::string strMarkup = WithoutLastLineFeed(sections["markup"]);
    CFixedMeasurer measurer;
    CRichText text(measurer);
    BuildSettings settings;
    settings.font = {"Tahoma", 10, 400, false};
    EXPECT_TRUE(text.SetSettings(settings));
    // "builtin" alone stands for no text.
    const std::string strSheet = WithoutLastLineFeed(sections["sheet"]);
    EXPECT_TRUE(text.SetStyleSheet(
        strSheet == "builtin" ? std::nullopt : std::optional<std::string_view>(strSheet)));
    EXPECT_TRUE(text.SetText(strMarkup));
    EXPECT_TRUE(text.Layout(std::atoi(sections["width"].c_str())));
    sections["events"] = DumpMarkup(strMarkup);
    sections["styles"] = DumpStyles(text.Document());
    sections["layout"] = DumpLayout(text.Document(), text.Boxes());
    std::string strFile;
    for (const char* pszSection : kSections) {
        strFile += std::string("==== ").append(pszSection).append("\n") + sections[pszSection];
    }
    return strFile;
}

TEST(Golden, EveryDocumentGivesItsDumps) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(RICHTEXT_TEST_DATA "/golden")) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    ASSERT_GE(paths.size(), 12U);
    for (const auto& path : paths) {
        const std::string strExpected = ReadFile(path);
        const std::string strProduced = Produce(SectionsOf(strExpected));
        if (std::getenv("MVP_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(path, std::ios::binary) << strProduced;
        } else {
            EXPECT_EQ(strProduced, strExpected) << path.filename();
        }
    }
}

}  // namespace
}  // namespace mvp::richtext
