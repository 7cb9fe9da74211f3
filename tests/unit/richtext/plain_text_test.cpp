// The words of a document, and the command that opens a link when the shell fails.
#include "richtext/document/plain_text.h"

#include <gtest/gtest.h>

#include "richtext/control/browser_command.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace mvp::richtext {
namespace {

TEST(BrowserCommand, CutsTheCommandAtItsPlaceholder) {
    const struct {
        const char* command;
        const char* line;
    } kCases[] = {
        {"browser.exe %1", "browser.exe  T"},
        {"\"C:\\A B\\browser.exe\" -nohome", "\"C:\\A B\\browser.exe\" -nohome T"},
        {"\"C:\\A B\\browser.exe\" \"%1\"", "\"C:\\A B\\browser.exe\"  T"},
        {"\"C:\\A B\\browser.exe\" -url \"%1\" -new", "\"C:\\A B\\browser.exe\" -url  T"},
        {"browser.exe \"-url=%1\"", "browser.exe  T"},
        {"\"browser.exe\" %1 \"%1\"", "\"browser.exe\"  T"},
        {"%1", " T"},
        {"\"%1\"", " T"},
        {"browser.exe %10", "browser.exe  T"},
        {"", " T"},
    };
    for (const auto& testCase : kCases) {
        EXPECT_EQ(BrowserCommandLine(testCase.command, "T"), testCase.line) << testCase.command;
    }
}

TEST(PlainText, KeepsWordsAndLinesApart) {
    CFixedMeasurer measurer;
    CRichText text(measurer);
    const struct {
        const char* markup;
        const char* plain;
        const char* link;
    } kCases[] = {
        {"one <b>two</b>", "one two", ""},
        {"one<br><br>two<hr>three", "one\ntwo\nthree", ""},
        {"a<table><tr><td>b<td>c</tr><tr><td>d</table>e", "a\nb c\nd\ne", ""},
        {"see <a msg=m>this <i>page</i><br>here</a>.", "see this page\nhere.", "this page\nhere"},
        {"<br> &lt;x> ", "<x>", ""},
        {"", "", ""},
    };
    for (const auto& testCase : kCases) {
        text.SetText(testCase.markup);
        ASSERT_TRUE(text.Layout(200));
        EXPECT_EQ(PlainTextOf(text.Document()), testCase.plain) << testCase.markup;
        EXPECT_EQ(LinkTextOf(text.Document(), 0), testCase.link) << testCase.markup;
    }
}

}  // namespace
}  // namespace mvp::richtext
