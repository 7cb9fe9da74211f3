// What the library does when it is loaded and unloaded.
#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mvpingui/base_dialog.h"
#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "support/recording/recording.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kInstallKey[] = "Software\\Quillon\\Veskara";
constexpr char kPlantedMark[] = "MVP_PLANTED_CODE_RAN";

const std::filesystem::path g_home = std::filesystem::current_path();

// A current directory, left at the end; by default an empty one, without a resource module.
struct CurrentDirectory {
    explicit CurrentDirectory(const char* pszName = "empty") {
        std::filesystem::create_directories(g_home / pszName);
        std::filesystem::current_path(g_home / pszName);
    }
    ~CurrentDirectory() { std::filesystem::current_path(g_home); }
};

class ProbeDialog : public CBaseDialog {
public:
    explicit ProbeDialog(UINT nTemplate) : CBaseDialog(nTemplate, 0, nullptr, nullptr) {}
    using CBaseDialog::CreateFromResourceModule;
};

bool IsProgressBarClassKnown() {
    WNDCLASSA info{};
    return GetClassInfoA(GetModuleHandleA(nullptr), "VkProgressBar", &info) != FALSE &&
           info.style == 0x4003;
}

class Attach : public testing::Test {
protected:
    void SetInstallPath(const std::string& strPath) {
        m_hive.SetString(kInstallKey, "VeskaraInstallPath", strPath);
    }
    void ExpectModuleIsMissed(const std::string& strTried) {
        m_log.Clear();
        const CurrentDirectory directory;
        const AttachedLibrary library;
        EXPECT_EQ(ResourceModule(), nullptr);
        ASSERT_EQ(m_log.Texts(2).size(), 1U) << m_log.Dump();
        EXPECT_TRUE(m_log.Texts(2)[0].starts_with("LoadLibrary(" + strTried +
                                                  ") failed with error code 0x"))
            << m_log.Dump();
        m_log.Clear();
        // Nothing is searched in the host's own resources instead.
        CString text("before");
        EXPECT_FALSE(LoadResourceString(1, text));
        EXPECT_EQ(std::string(text), "before");
        EXPECT_EQ(LoadResourceIcon(1, 16), nullptr);
        EXPECT_EQ(ProbeDialog(1).DoModal(), -1);
        EXPECT_TRUE(m_log.Lines().empty()) << "the cause stands at the attach: " << m_log.Dump();
    }
    // Every kind of resource comes from the module, and what it lacks is named.
    void ExpectPlantedResources() {
        const AttachedLibrary library;
        EXPECT_EQ(std::string(ResourceString(IDS_ERROR_GENERAL)), "planted text");
        EXPECT_STREQ(GetErrorString(1), "planted text");
        const HICON icon = LoadResourceIcon(IDI_RULE_SATISFIED, 16);
        EXPECT_NE(icon, nullptr);
        EXPECT_EQ(LoadResourceIcon(IDI_RULE_SATISFIED, 16), icon);
        EXPECT_NE(LoadResourceIcon(IDI_RULE_SATISFIED, 32), icon);
        ProbeDialog dialog(IDD_ENTER_PIN);
        EXPECT_TRUE(dialog.CreateFromResourceModule(nullptr));
        EXPECT_NE(dialog.SendDlgItemMessage(IDC_ENTER_PIN_BANNER, STM_GETIMAGE, IMAGE_BITMAP), 0);
        dialog.DestroyWindow();

        m_log.Clear();
        CString text("before");
        EXPECT_FALSE(LoadResourceString(IDS_LAST_PIN_TRY, text));
        EXPECT_EQ(std::string(text), "before");
        EXPECT_STREQ(GetErrorString(2), "");
        EXPECT_EQ(LoadResourceIcon(IDI_CARD_PIN, 16), nullptr);
        EXPECT_EQ(ProbeDialog(IDD_POLICIES).DoModal(), -1);
        EXPECT_FALSE(ProbeDialog(IDD_CHANGE_PIN_PANEL).CreateFromResourceModule(nullptr));
        std::vector<std::string> expected;
        for (const char* missing : {"String 3073", "String 3060", "Icon 3012",
                                    "Dialog template 3011", "Dialog template 3002"}) {
            expected.push_back(std::string(missing) + " is missing from the resource module");
        }
        EXPECT_EQ(m_log.Texts(1), expected) << m_log.Dump();
    }

    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(Attach, FindsTheModuleBelowTheCurrentDirectory) {
    {
        const AttachedLibrary library;
        EXPECT_NE(ResourceModule(), nullptr);
        EXPECT_TRUE(m_log.Lines().empty()) << m_log.Dump();
        EXPECT_TRUE(IsProgressBarClassKnown());
    }
    EXPECT_EQ(ResourceModule(), nullptr);
    EXPECT_FALSE(IsProgressBarClassKnown());
}

TEST_F(Attach, FallsBackToTheInstallPathAndThenToTheLoaderItself) {
    const CurrentDirectory directory;
    {
        // The loader finds the relative path beside the program.
        const AttachedLibrary library;
        EXPECT_NE(ResourceModule(), nullptr);
        EXPECT_TRUE(m_log.Contains(2, "Warning : RegOpenKeyEx returns 2")) << m_log.Dump();
    }
    SetInstallPath(g_home.string() + "\\");
    m_log.Clear();
    const AttachedLibrary library;
    EXPECT_NE(ResourceModule(), nullptr);
    EXPECT_TRUE(m_log.Texts(1).empty() && m_log.Texts(2).empty()) << m_log.Dump();
}

TEST_F(Attach, LivesWithoutTheModule) {
    SetInstallPath("C:\\nowhere\\");
    ExpectModuleIsMissed(R"(C:\nowhere\Resources\Localized\mvpinguirc.dll)");
    // A path that leaves no room is cut at the buffer's end, never written beyond it.
    const std::string nearlyFull(500, 'y');
    SetInstallPath(nearlyFull);
    ExpectModuleIsMissed(nearlyFull + "Resources\\L");
    const std::string full(511, 'x');
    SetInstallPath(full);
    ExpectModuleIsMissed(full);
    m_hive.SetUnterminated(kInstallKey, "VeskaraInstallPath", full + 'x');
    ExpectModuleIsMissed(full);
}

TEST_F(Attach, RunsNothingOfTheModule) {
    const std::filesystem::path planted = g_home / "planted";
    {
        const CurrentDirectory directory("planted");
        ExpectPlantedResources();
    }
    {
        const CurrentDirectory directory;
        SetInstallPath(planted.string() + "\\");
        ExpectPlantedResources();
    }
    EXPECT_EQ(GetEnvironmentVariableA(kPlantedMark, nullptr, 0), 0U);
    // Loaded to be run, it does leave its mark.
    const ModuleHandle run(
        LoadLibraryA((planted / "Resources" / "Localized" / "mvpinguirc.dll").string().c_str()));
    EXPECT_TRUE(run);
    EXPECT_NE(GetEnvironmentVariableA(kPlantedMark, nullptr, 0), 0U);
    SetEnvironmentVariableA(kPlantedMark, nullptr);
}

TEST_F(Attach, KeepsItsOrder) {
    static std::string steps;  // those that are done when the install path is read
    {
        const CurrentDirectory directory;
        RecordLogTo(
            [](void*, const char*, int, const char* pszText) {
                if (std::string_view(pszText) != "ReadInstallPath begins") {
                    return;
                }
                steps = IsProgressBarClassKnown() ? "class " : "";
                steps += ResourceModule() != nullptr ? "module " : "";
            },
            nullptr);
        const AttachedLibrary library;
        RecordLogTo(nullptr, nullptr);
    }
    EXPECT_EQ(steps, "class ");
    // The framework, whose turn is last, refuses a library without an instance.
    EXPECT_FALSE(AttachLibrary(nullptr));
    EXPECT_TRUE(IsProgressBarClassKnown());
    EXPECT_NE(ResourceModule(), nullptr);
    DetachLibrary();
}

TEST_F(Attach, LogsWhatTheFrameworkStopsAndTellsTheHostsReporter) {
    struct Throwing : CWnd {
        LRESULT WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam) override {
            return nMessage == WM_APP ? throw 1 : CWnd::WindowProc(nMessage, wParam, lParam);
        }
    };
    static int told = 0;
    const AFX_EXCEPTION_REPORTER oldFunction = AfxSetExceptionReporter([](UINT) { ++told; });
    Throwing window;
    window.SubclassWindow(
        CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
    {
        const AttachedLibrary library;
        SendMessageA(window.m_hWnd, WM_APP, 0, 0);
    }
    SendMessageA(window.m_hWnd, WM_APP, 0, 0);
    EXPECT_EQ(m_log.Texts(1),
              std::vector<std::string>{"Exception in the handler of message 0x8000"});
    EXPECT_EQ(told, 2);
    // One that was set after the library's stays when the library goes.
    const AFX_EXCEPTION_REPORTER laterFunction = [](UINT) {};
    {
        const AttachedLibrary library;
        AfxSetExceptionReporter(laterFunction);
    }
    EXPECT_EQ(AfxSetExceptionReporter(oldFunction), laterFunction);
    window.DestroyWindow();
}

}  // namespace
}  // namespace mvp::test
