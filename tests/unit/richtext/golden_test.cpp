// One document a file in golden/: its width, style sheet and markup, and the dump of every stage.
// With MVP_UPDATE_GOLDEN set in the environment the dumps are written anew instead of compared.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "test_text.h"

namespace mvp::richtext {
namespace {

// A section begins with a line "==== name" and runs up to the next one.
std::map<std::string, std::string> SectionsOf(const std::string& strFile) {
    std::map<std::string, std::string> sections;
    std::string* pSection = nullptr;
    std::istringstream stream(strFile);
    for (std::string strLine; std::getline(stream, strLine);) {
        if (strLine.starts_with("==== ")) {
            pSection = &sections[strLine.substr(5)];
        } else {
            *pSection += strLine + "\n";
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
    const std::string strSheet = WithoutLastLineFeed(sections["sheet"]);
    // "builtin" alone stands for no text.
    EXPECT_TRUE(test.text.SetStyleSheet(
        strSheet == "builtin" ? std::nullopt : std::optional<std::string_view>(strSheet)));
    const std::string strMarkup = WithoutLastLineFeed(sections["markup"]);
    test.LayOut(strMarkup, std::atoi(sections["width"].c_str()));
    sections["events"] = DumpMarkup(strMarkup);
    sections["styles"] = DumpStyles(test.text.Document());
    sections["layout"] = DumpLayout(test.text.Document(), test.text.Boxes());
    std::string strFile;
    for (const char* pszSection : {"width", "sheet", "markup", "events", "styles", "layout"}) {
        strFile += std::string("==== ").append(pszSection).append("\n") + sections[pszSection];
    }
    return strFile;
}

TEST(Golden, EveryDocumentGivesItsDumps) {
    int nFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(RICHTEXT_TEST_DATA "/golden")) {
        ++nFiles;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string strExpected(std::istreambuf_iterator<char>(file), {});
        const std::string strProduced = Produce(SectionsOf(strExpected));
        if (std::getenv("MVP_UPDATE_GOLDEN") != nullptr) {
            std::ofstream(entry.path(), std::ios::binary) << strProduced;
        } else {
            EXPECT_EQ(strProduced, strExpected) << entry.path().filename();
        }
    }
    EXPECT_GE(nFiles, 12);
}

}  // namespace
}  // namespace mvp::richtext
