// The about box: what it shows, its colours, the credits, and that it opens whatever is missing.
#include <windows.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "mvpingui/about_dialog.h"
#include "mvpingui/mvpingui.h"
#include "platform/system_library.h"
#include "support/resource_counts.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

using Lines = std::vector<std::string>;

constexpr char kProductKey[] = R"(SOFTWARE\Quillon\Veskara)";
constexpr char kConfigKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr char kDefaultCode[] = "{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}";
constexpr char kOwnCode[] = "{00000000-1111-2222-3333-444444444444}";

// In the place of functions of the system's libraries, found by name as the library finds them.
struct Found {
    std::string strMissing;      // a function that is not there
    std::string strMissingFile;  // a library that is not there
    std::string strProduct;      // the code that the installer was asked for
    std::string strValue;        // its answer
    bool bThrows = false;
    std::string strShell;  // what the shell was called with
    INT_PTR nShellResult = 33;
} g_found;

UINT WINAPI GetProductInfo(LPCSTR pszProduct, LPCSTR pszProperty, LPSTR pszBuffer, LPDWORD pSize) {
    if (g_found.bThrows) {
        throw std::runtime_error("no installer does this, but memory may run out near it");
    }
    g_found.strProduct = pszProduct;
    if (std::strcmp(pszProperty, "LocalPackage") == 0) {
        return ERROR_UNKNOWN_PROPERTY;
    }
    const DWORD room = std::exchange(*pSize, static_cast<DWORD>(g_found.strValue.size()));
    if (room <= g_found.strValue.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(pszBuffer, g_found.strValue.c_str(), g_found.strValue.size() + 1);
    return ERROR_SUCCESS;
}

UINT WINAPI EnumPatches(LPCSTR, DWORD, LPSTR, LPSTR, LPDWORD) {
    return ERROR_NO_MORE_ITEMS;
}

HINSTANCE WINAPI Execute(HWND hOwner, LPCSTR pszVerb, LPCSTR pszFile, LPCSTR pszParameters,
                         LPCSTR pszFolder, INT nShow) {
    const bool isPlain = hOwner == nullptr && pszVerb == nullptr && pszParameters == nullptr &&
                         pszFolder == nullptr && nShow == SW_SHOWNORMAL;
    g_found.strShell = (isPlain ? "plain " : "with more ") + std::string(pszFile);
    return reinterpret_cast<HINSTANCE>(g_found.nShellResult);
}

// The system's own, found before the program's import of it leads elsewhere.
const auto g_pfnFind =
    FindFunction<decltype(&GetProcAddress)>(GetModuleHandleA("kernel32.dll"), "GetProcAddress");

FARPROC WINAPI FindInstead(HMODULE hModule, LPCSTR pszName) {
    const std::pair<const char*, void*> instead[] = {
        {"MsiGetProductInfoA", Address(&GetProductInfo)},
        {"MsiEnumPatchesA", Address(&EnumPatches)},
        {"ShellExecuteA", Address(&Execute)}};
    if (g_found.strMissing == pszName) {
        return nullptr;
    }
    for (const auto& [name, function] : instead) {
        if (std::strcmp(name, pszName) == 0) {
            return reinterpret_cast<FARPROC>(function);
        }
    }
    return g_pfnFind(hModule, pszName);
}

HMODULE WINAPI LoadInstead(LPCSTR pszPath) {
    const std::string path = pszPath;
    const bool isMissing =
        !g_found.strMissingFile.empty() && path.ends_with(g_found.strMissingFile);
    return isMissing ? nullptr : LoadLibraryExA(pszPath, nullptr, 0);
}

class AboutBox : public LibraryTest {
protected:
    AboutBox() { g_found = {}; }

    // Opens the box, runs the script, and returns what was logged as errors.
    Lines Show(Script script, const char* pszCaption = "Caption") {
        m_log.Clear();
        const DialogDriver driver(std::chrono::seconds(10), {std::move(script)});
        EXPECT_EQ(ShowAbout(0, nullptr, pszCaption), static_cast<uint32_t>(IDOK));
        return m_log.Texts(1);
    }
    static void Leave(Dialog& d) { d.Enter(); }
};

class AboutBoxOverInstaller : public AboutBox {
    const PatchedImports m_system{
        nullptr,
        {{"GetProcAddress", Address(&FindInstead)}, {"LoadLibraryA", Address(&LoadInstead)}}};
};

TEST_F(AboutBox, ShowsItsTextsAndNothingOfAnUnknownProduct) {
    for (const std::string caption : {"", "User Console", "Tray && agent, 100 %s"}) {
        const Lines errors = Show(
            [&](Dialog& d) {
                EXPECT_EQ(GetModuleHandleA("msi.dll"), nullptr) << "it is kept";
                EXPECT_EQ(d.Title(), TextOf(IDS_ABOUT_TITLE));
                EXPECT_EQ(d.Text(IDC_ABOUT_CAPTION), caption);
                EXPECT_EQ(d.Text(IDC_ABOUT_NAME), "");
                EXPECT_EQ(d.Text(IDC_ABOUT_VERSION), Filled(IDS_ABOUT_VERSION_FORMAT, ""));
                EXPECT_EQ(d.Text(IDC_ABOUT_NOTICE), TextOf(IDS_ABOUT_NOTICE));
                EXPECT_EQ(d.Text(IDC_ABOUT_CREDITS_NOTE), TextOf(IDS_ABOUT_CREDITS_NOTE));
                d.Run([&] {
                    EXPECT_TRUE(IsBold(d.Control(IDC_ABOUT_NAME)));
                    EXPECT_NE(IconOf(d.Control(IDC_ABOUT_MARK)), nullptr);
                });
                d.Enter();
            },
            caption.c_str());
        EXPECT_EQ(errors, (Lines{"RegOpenKeyEx returns the error 2", "Using default product code!",
                                 "Unable to retreive information from installed product!"}));
        EXPECT_EQ(m_log.Texts(8),
                  (Lines{"ShowAbout", "CAboutDlg::OnInitDialog", "readStringFromRegistry_sz"}));
        EXPECT_EQ(m_log.Texts(16), (Lines{"readStringFromRegistry_sz ! -1",
                                          "CAboutDlg::OnInitDialog", "ShowAbout"}));
    }
}

TEST_F(AboutBox, ReturnsHowItWasClosedWhateverItsSecondArgument) {
    int something = 0;
    const std::pair<const void*, uint32_t> ways[] = {
        {nullptr, IDOK}, {&something, IDCANCEL}, {reinterpret_cast<void*>(~UINT_PTR{0}), IDCANCEL}};
    for (const auto& [ignored, result] : ways) {
        const DialogDriver driver([&, result = result](Dialog& d) {
            EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), nullptr);
            EXPECT_EQ(d.FocusedId(), IDOK);
            d.Tab();
            EXPECT_EQ(d.FocusedId(), IDC_ABOUT_CREDITS);
            d.Tab();
            EXPECT_EQ(d.FocusedId(), IDOK);
            result == IDOK ? d.Enter() : d.Escape();
        });
        EXPECT_EQ(ShowAbout(1, ignored, nullptr), result);
    }
    FreeResourceModule();
    const DialogDriver noDialog;
    EXPECT_EQ(ShowAbout(0, nullptr, "Caption"), MVPINGUI_REFUSED);
}

TEST_F(AboutBox, HasTheColoursOfItsMode) {
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    ASSERT_NE(window, GetSysColor(COLOR_3DFACE));
    for (const int mode : {0, 1, -1}) {
        CAboutDlg dialog(mode, nullptr, "Caption");
        const auto look = [&](Dialog& d) {
            d.Run([&] {
                const MemoryDc dc(CreateCompatibleDC(nullptr));
                const int element = COLOR_WINDOW;
                // The second time the system's colour is another one.
                for (const int background : {OPAQUE, TRANSPARENT}) {
                    const COLORREF colour = background == OPAQUE ? window : RGB(7, 8, 9);
                    SetSysColors(1, &element, &colour);
                    SendMessageA(d.Handle(), WM_SYSCOLORCHANGE, 0, 0);
                    SetBkMode(dc.get(), background);
                    SetTextColor(dc.get(), RGB(1, 2, 3));
                    SetBkColor(dc.get(), RGB(4, 5, 6));
                    LOGBRUSH brush{};
                    auto* const handle = reinterpret_cast<HBRUSH>(SendMessageA(
                        d.Handle(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.get()),
                        reinterpret_cast<LPARAM>(d.Control(IDC_ABOUT_NAME))));
                    GetObjectA(handle, sizeof brush, &brush);
                    EXPECT_EQ(GetBkMode(dc.get()), background) << "it is left as it was";
                    EXPECT_EQ(brush.lbColor == colour, mode != 0);
                    EXPECT_EQ(GetBkColor(dc.get()) == colour, mode != 0);
                    if (mode != 0) {
                        EXPECT_EQ(GetTextColor(dc.get()), GetSysColor(COLOR_WINDOWTEXT));
                    }
                }
                SetSysColors(1, &element, &window);
            });
            d.Cancel();
        };
        EXPECT_EQ(Open(dialog, {look}), IDCANCEL);
    }
    struct Throwing : CStatic {
        BOOL OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) override { throw 1; }
    } control;
    struct Box : CAboutDlg {
        using CAboutDlg::CAboutDlg;
        using CAboutDlg::OnCtlColor;
    } box(0, nullptr, "Caption");
    EXPECT_EQ(box.OnCtlColor(nullptr, &control, CTLCOLOR_STATIC), nullptr);
    EXPECT_TRUE(m_log.Contains(1, "CAboutDlg::OnCtlColor: exception"));
}

TEST_F(AboutBoxOverInstaller, AsksForTheConfiguredProductOrItsOwn) {
    const Lines unread = {"Unable to retreive information from installed product database!",
                          "No patch found!",
                          "Unable to retreive information from installed patches databases!. No "
                          "patch?"};
    for (const auto& [code, length] :
         {std::pair{kOwnCode, 0U}, {kOwnCode, 247U}, {"", 248U}, {"", 1000U}}) {
        m_hive.SetString(kProductKey, "ProductCode", code);
        g_found.strValue = std::string(length, 'v');
        EXPECT_EQ(Show([](Dialog& d) {
                      EXPECT_EQ(d.Text(IDC_ABOUT_NAME), g_found.strValue);
                      EXPECT_EQ(d.Text(IDC_ABOUT_VERSION),
                                ("Version " + g_found.strValue).substr(0, 255));
                      d.Enter();
                  }),
                  unread);
        EXPECT_EQ(g_found.strProduct, code);
    }
    m_hive.SetDword(kProductKey, "ProductCode", 1);
    Show(&Leave);
    EXPECT_EQ(g_found.strProduct, kDefaultCode);
    EXPECT_TRUE(m_log.Contains(1, "Using default product code!"));
}

TEST_F(AboutBoxOverInstaller, OpensWithoutTheInstaller) {
    const auto look = [](Dialog& d) {
        EXPECT_EQ(d.Text(IDC_ABOUT_NAME), "");
        EXPECT_EQ(d.Text(IDC_ABOUT_VERSION), Filled(IDS_ABOUT_VERSION_FORMAT, ""));
        d.Enter();
    };
    g_found.strMissingFile = "\\msi.dll";
    EXPECT_EQ(Show(look), Lines{"LoadLibrary msi.dll failed!"});
    m_hive.SetString(kProductKey, "ProductCode", kOwnCode);
    g_found.strMissingFile.clear();
    g_found.strMissing = "MsiGetProductInfoA";
    EXPECT_EQ(Show(look), (Lines{"Unable to GetProcAddress for MsiGetProductInfoA",
                                 "Unable to retreive information from installed product!"}));
    g_found.strMissing.clear();
    g_found.bThrows = true;
    EXPECT_EQ(Show(look), Lines{"CAboutDlg::OnInitDialog: exception"});
}

TEST_F(AboutBoxOverInstaller, HandsTheCreditsToTheShell) {
    struct Case {
        std::string strFile;
        INT_PTR nResult;
        std::string strError;
    };
    const Case cases[] = {
        {"", 33, "readStringFromRegistry_sz S_REG_KEY_LICENCE_FILE failed"},
        {R"(C:\credits & terms.txt)", 33, ""},
        {R"(C:\credits.txt)", 32, R"(ShellExecute C:\credits.txt failed (32))"},
        {R"(C:\windows\)", 33, ""},  // a folder
        {R"(C:\100%s.txt)", 2, R"(ShellExecute C:\100%s.txt failed (2))"},
    };
    for (const Case& credits : cases) {
        const std::string& file = credits.strFile;
        const Lines errors = credits.strError.empty() ? Lines() : Lines{credits.strError};
        m_hive.SetString(kConfigKey, "ThirdPartyLicenseFile", file);
        g_found.strShell.clear();
        g_found.nShellResult = credits.nResult;
        Show([&](Dialog& d) {
            m_log.Clear();
            d.Click(IDC_ABOUT_CREDITS);
            EXPECT_EQ(m_log.Texts(1), errors);
            EXPECT_EQ(m_log.Lines().front().strText, "CAboutDlg::OnBnClickedCredits");
            EXPECT_EQ(m_log.Lines().back(),
                      (RecordedLine{"MVPINGUI", 16, "CAboutDlg::OnBnClickedCredits"}));
            EXPECT_TRUE(d.IsOpen());
            d.Click(IDOK);
        });
        EXPECT_EQ(g_found.strShell, file.empty() ? "" : "plain " + file);
    }
    m_hive.DeleteValue(kConfigKey, "ThirdPartyLicenseFile");
    const auto click = [](Dialog& d) {
        d.Click(IDC_ABOUT_CREDITS);
        d.Click(IDOK);
    };
    EXPECT_EQ(Show(click).back(), "readStringFromRegistry_sz S_REG_KEY_LICENCE_FILE failed");
}

// The system's own shell: no such file; a kind of file that nothing opens.
TEST_F(AboutBox, TellsWhatTheShellRefuses) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    const std::string file = (folder / "credits.nothingopensthis").string();
    const auto click = [](Dialog& d) {
        d.Click(IDC_ABOUT_CREDITS);
        d.Click(IDOK);
    };
    m_hive.SetString(kConfigKey, "ThirdPartyLicenseFile", file);
    EXPECT_EQ(Show(click).back(), "ShellExecute " + file + " failed (2)");
    std::ofstream(file) << "credits";
    EXPECT_EQ(Show(click).back(), "ShellExecute " + file + " failed (31)");
    std::filesystem::remove(file);
}

TEST_F(AboutBox, OpensWithoutAnyOfItsControls) {
    for (const int missing :
         {IDC_ABOUT_CAPTION, IDC_ABOUT_CREDITS_NOTE, IDC_ABOUT_NAME, IDC_ABOUT_VERSION,
          IDC_ABOUT_NOTICE, IDC_ABOUT_CREDITS, IDC_ABOUT_MARK, 0}) {
        Incomplete<CAboutDlg> dialog(missing, 0, nullptr, "Caption");
        EXPECT_EQ(Open(dialog, {[](Dialog& d) { d.Escape(); }}), IDCANCEL) << missing;
    }
}

TEST_F(AboutBox, KeepsNothing) {
    ExpectRoundsKeepNothing(3, 30, [&](int) { Show(&Leave); });
}

}  // namespace
}  // namespace mvp::test
