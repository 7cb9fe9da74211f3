// What the library does when it is loaded and unloaded.
#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "frame/module.h"
#include "mvpingui/base_dialog.h"
#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/log_recorder.h"
#include "support/recording/recording.h"
#include "support/recording/recording_module.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

constexpr char kInstallKey[] = "Software\\Quillon\\Veskara";

constexpr char kPlantedMark[] = "MVP_PLANTED_CODE_RAN";

// A current directory, left at the end.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::filesystem::path& path)
        : m_old(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    ~CurrentDirectory() { std::filesystem::current_path(m_old); }

private:
    std::filesystem::path m_old;
};

// A current directory without a resource module, left at the end.
class EmptyDirectory {
public:
    EmptyDirectory()
        : m_old(std::filesystem::current_path()),
          m_path(m_old / ("attach_test_" + std::to_string(GetCurrentProcessId()))) {
        std::filesystem::create_directories(m_path);
        std::filesystem::current_path(m_path);
    }
    EmptyDirectory(const EmptyDirectory&) = delete;
    EmptyDirectory& operator=(const EmptyDirectory&) = delete;
    ~EmptyDirectory() {
        std::filesystem::current_path(m_old);
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::filesystem::path& Old() const { return m_old; }

private:
    std::filesystem::path m_old;
    std::filesystem::path m_path;
};

class Attached {
public:
    Attached() : m_bAttached(AttachLibrary(GetModuleHandleA(nullptr))) {}
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;
    ~Attached() { DetachLibrary(); }
    bool Succeeded() const { return m_bAttached; }

private:
    bool m_bAttached;
};

class CProbeDialog : public CBaseDialog {
public:
    explicit CProbeDialog(UINT nTemplate) : CBaseDialog(nTemplate, 0, nullptr, nullptr) {}
    using CBaseDialog::CreateFromResourceModule;
};

bool IsProgressBarClassKnown() {
    WNDCLASSA info{};
    return GetClassInfoA(GetModuleHandleA(nullptr), "VkProgressBar", &info) != FALSE &&
           info.style == 0x4003;
}

TEST(Attach, FindsTheModuleBelowTheCurrentDirectory) {
    RegistryHive hive;
    LogRecorder log;
    {
        const Attached library;
        EXPECT_TRUE(library.Succeeded());
        EXPECT_NE(ResourceModule(), nullptr);
        EXPECT_TRUE(log.Lines().empty()) << log.Dump();
        EXPECT_TRUE(IsProgressBarClassKnown());
    }
    EXPECT_EQ(ResourceModule(), nullptr);
    EXPECT_FALSE(IsProgressBarClassKnown());
}

TEST(Attach, FallsBackToTheInstallPath) {
    RegistryHive hive;
    const EmptyDirectory directory;
    hive.SetString(kInstallKey, "VeskaraInstallPath", directory.Old().string() + "\\");
    LogRecorder log;
    const Attached library;
    EXPECT_TRUE(library.Succeeded());
    EXPECT_NE(ResourceModule(), nullptr);
    EXPECT_TRUE(log.Texts(1).empty() && log.Texts(2).empty()) << log.Dump();
}

TEST(Attach, WithoutAnInstallPathAsksTheLoaderItself) {
    RegistryHive hive;
    const EmptyDirectory directory;
    LogRecorder log;
    const Attached library;
    // The loader finds the relative path beside the program.
    EXPECT_NE(ResourceModule(), nullptr);
    EXPECT_TRUE(log.Contains(2, "Warning : RegOpenKeyEx returns 2")) << log.Dump();
}

TEST(Attach, LivesWithoutTheModule) {
    struct Case {
        std::string strInstallPath;
        std::string strTried;
    };
    // A path that leaves no room is cut at the buffer's end, never written beyond it.
    const std::string full(511, 'x');
    const std::string nearlyFull(500, 'y');
    const Case cases[] = {
        {"C:\\nowhere\\", R"(C:\nowhere\Resources\Localized\mvpinguirc.dll)"},
        {nearlyFull, nearlyFull + "Resources\\L"},
        {full, full},
    };
    for (const Case& c : cases) {
        RegistryHive hive;
        hive.SetString(kInstallKey, "VeskaraInstallPath", c.strInstallPath);
        const EmptyDirectory directory;
        LogRecorder log;
        const Attached library;
        EXPECT_TRUE(library.Succeeded());
        EXPECT_EQ(ResourceModule(), nullptr);
        ASSERT_EQ(log.Texts(2).size(), 1U) << log.Dump();
        EXPECT_TRUE(log.Texts(2)[0].starts_with("LoadLibrary(" + c.strTried +
                                                ") failed with error code 0x"))
            << log.Dump();
        log.Clear();
        // Nothing is searched in the host's own resources instead.
        CString text("before");
        EXPECT_FALSE(LoadResourceString(1, text));
        EXPECT_EQ(std::string(text), "before");
        EXPECT_EQ(LoadResourceIcon(1, 16), nullptr);
        EXPECT_EQ(CProbeDialog(1).DoModal(), -1);
        EXPECT_TRUE(log.Lines().empty()) << "the cause stands at the attach: " << log.Dump();
    }
}

// Every kind of resource comes from the module, and what it lacks is named.
void ExpectPlantedResources() {
    EXPECT_EQ(std::string(ResourceString(IDS_ERROR_GENERAL)), "planted text");
    EXPECT_STREQ(GetErrorString(1), "planted text");
    const HICON hIcon = LoadResourceIcon(IDI_RULE_SATISFIED, 16);
    EXPECT_NE(hIcon, nullptr);
    EXPECT_EQ(LoadResourceIcon(IDI_RULE_SATISFIED, 16), hIcon);
    EXPECT_NE(LoadResourceIcon(IDI_RULE_SATISFIED, 32), hIcon);
    CProbeDialog dialog(IDD_ENTER_PIN);
    EXPECT_TRUE(dialog.CreateFromResourceModule(nullptr));
    EXPECT_NE(dialog.SendDlgItemMessage(IDC_ENTER_PIN_BANNER, STM_GETIMAGE, IMAGE_BITMAP), 0);
    dialog.DestroyWindow();

    LogRecorder log;
    CString text("before");
    EXPECT_FALSE(LoadResourceString(IDS_LAST_PIN_TRY, text));
    EXPECT_EQ(std::string(text), "before");
    EXPECT_STREQ(GetErrorString(2), "");
    EXPECT_EQ(LoadResourceIcon(IDI_CARD_PIN, 16), nullptr);
    EXPECT_EQ(CProbeDialog(IDD_POLICIES).DoModal(), -1);
    EXPECT_FALSE(CProbeDialog(IDD_CHANGE_PIN_PANEL).CreateFromResourceModule(nullptr));
    EXPECT_EQ(log.Texts(1), (std::vector<std::string>{
                                "String 3073 is missing from the resource module",
                                "String 3060 is missing from the resource module",
                                "Icon 3012 is missing from the resource module",
                                "Dialog template 3011 is missing from the resource module",
                                "Dialog template 3002 is missing from the resource module"}))
        << log.Dump();
}

TEST(Attach, RunsNothingOfTheModule) {
    RegistryHive hive;
    const std::filesystem::path planted = std::filesystem::current_path() / "planted";
    {
        const CurrentDirectory directory(planted);
        const Attached library;
        ExpectPlantedResources();
    }
    {
        const EmptyDirectory directory;
        hive.SetString(kInstallKey, "VeskaraInstallPath", planted.string() + "\\");
        const Attached library;
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

struct StepsDone {
    bool bClass = false;
    bool bModule = true;
};

void NoteSteps(void* pSteps, const char*, int, const char* pszText) {
    if (std::string_view(pszText) == "ReadInstallPath begins")
        *static_cast<StepsDone*>(pSteps) = {IsProgressBarClassKnown(), ResourceModule() != nullptr};
}

TEST(Attach, KeepsItsOrder) {
    RegistryHive hive;
    const auto recordTo = RecordingFunction<LogRecordTo>("vklog.dll", "vklogRecordTo");
    StepsDone steps;
    {
        const EmptyDirectory directory;
        recordTo(NoteSteps, &steps);
        const Attached library;
        recordTo(nullptr, nullptr);
    }
    EXPECT_TRUE(steps.bClass && !steps.bModule);
    // The framework, whose turn is last, refuses a library without an instance.
    EXPECT_FALSE(AttachLibrary(nullptr));
    EXPECT_TRUE(IsProgressBarClassKnown());
    EXPECT_NE(ResourceModule(), nullptr);
    DetachLibrary();
}

TEST(Attach, LogsWhatTheFrameworkStopsAndTellsTheHostsReporter) {
    struct Throwing : CWnd {
        LRESULT WindowProc(UINT nMessage, WPARAM wParam, LPARAM lParam) override {
            if (nMessage == WM_APP)
                throw 1;
            return CWnd::WindowProc(nMessage, wParam, lParam);
        }
    };
    static int nTold = 0;
    const AFX_EXCEPTION_REPORTER pfnOld = AfxSetExceptionReporter([](UINT) { ++nTold; });
    Throwing window;
    window.SubclassWindow(
        CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
    const RegistryHive hive;
    LogRecorder log;
    {
        const Attached library;
        SendMessageA(window.m_hWnd, WM_APP, 0, 0);
    }
    SendMessageA(window.m_hWnd, WM_APP, 0, 0);
    EXPECT_EQ(log.Texts(1), std::vector<std::string>{"Exception in the handler of message 0x8000"});
    EXPECT_EQ(nTold, 2);
    // One that was set after the library's stays when the library goes.
    const AFX_EXCEPTION_REPORTER pfnLater = [](UINT) {};
    {
        const Attached library;
        AfxSetExceptionReporter(pfnLater);
    }
    EXPECT_EQ(AfxSetExceptionReporter(pfnOld), pfnLater);
    window.DestroyWindow();
}

TEST(Attach, SurvivesAnInstallPathWithoutTerminator) {
    RegistryHive hive;
    hive.SetUnterminated(kInstallKey, "VeskaraInstallPath", std::string(512, 'z'));
    const EmptyDirectory directory;
    LogRecorder log;
    const Attached library;
    EXPECT_TRUE(library.Succeeded());
    ASSERT_EQ(log.Texts(2).size(), 1U);
    EXPECT_TRUE(log.Texts(2)[0].starts_with("LoadLibrary(" + std::string(511, 'z') + ") failed"));
}

}  // namespace
}  // namespace mvp::test
