// The real shell: which program a link's target is opened with, and what it is told. The programs
// are ones that write down what they are told.
#include "richtext/control/link_opener.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "support/registry_hive.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

class SystemShell : public testing::Test {
protected:
    SystemShell() { SetEnvironmentVariableA("MVP_LINK_OPENED", m_strFile.c_str()); }
    ~SystemShell() override {
        SetEnvironmentVariableA("MVP_LINK_OPENED", nullptr);
        DeleteFileA(m_strFile.c_str());
    }

    void Associate(const std::string& strClass, const std::string& strCommand, DWORD dwType) {
        m_classes.SetRaw(strClass + R"(\shell\open\command)", "", dwType, strCommand + '\0');
    }

    // What the program has written when it has ended, which is when the file can be deleted.
    std::string Written() {
        std::string line;
        WaitFor(std::chrono::seconds(30), [&] {
            std::ifstream file(m_strFile);
            return std::getline(file, line) && !file.eof();
        });
        EXPECT_TRUE(WaitFor(std::chrono::seconds(30),
                            [&] { return DeleteFileA(m_strFile.c_str()) != FALSE; }));
        line.resize(line.find_last_not_of(" \r\n") + 1);
        return line;
    }

    RegistryHive m_classes{HKEY_CLASSES_ROOT};
    std::string m_strFile = (std::filesystem::temp_directory_path() / "link_opened").string();
};

TEST_F(SystemShell, OpensLinksWithTheirProgramOrThatOfHtmlFiles) {
    richtext::Shell& shell = richtext::SystemShell();
    EXPECT_FALSE(richtext::OpenLinkTarget(shell, "mvptest:none")) << "nobody opens it";
    m_classes.SetString(".htm", "", "mvphtml");
    EXPECT_FALSE(richtext::OpenLinkTarget(shell, "mvptest:none")) << "a class without a command";

    // The shell's own errors are the reason to ask for the program of HTML files.
    Associate("mvphtml", R"(%ComSpec% /c >"%MVP_LINK_OPENED%" echo html "%1" left away)",
              REG_EXPAND_SZ);
    EXPECT_TRUE(richtext::OpenLinkTarget(shell, "mvptest:one?a=b"));
    EXPECT_EQ(Written(), "html  mvptest:one?a=b");

    m_classes.SetString("mvptest", "URL Protocol", "");
    Associate("mvptest", "cmd.exe /c >\"" + m_strFile + "\" echo scheme %1", REG_SZ);
    EXPECT_TRUE(richtext::OpenLinkTarget(shell, "mvptest:two"));
    EXPECT_EQ(Written(), "scheme mvptest:two");

    m_classes.DeleteKey("mvptest");
    Associate("mvphtml", "mvp_no_such_program.exe %1", REG_SZ);
    EXPECT_FALSE(richtext::OpenLinkTarget(shell, "mvptest:three")) << "a program that is not there";
}

}  // namespace
}  // namespace mvp::test
