#include "mvpingui/base_dialog.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "ui/dialogs/attached_library.h"

namespace mvp::test {
namespace {

class CProbeDialog : public CBaseDialog {
public:
    explicit CProbeDialog(int nColorMode = 0, const RECT* pPosition = nullptr,
                          UINT nTemplate = IDD_ENTER_PIN, CWnd* pParent = nullptr)
        : CBaseDialog(nTemplate, nColorMode, pPosition, pParent) {}
    using CBaseDialog::CreateFromResourceModule;
    using CBaseDialog::OnCtlColor;
    using CBaseDialog::ResizeDlg;

    enum class Throws { Nowhere, InitDialog, Destroy, PostNcDestroy };
    Throws m_throws = Throws::Nowhere;

    BOOL DestroyWindow() override {
        ThrowIf(Throws::Destroy);
        return CBaseDialog::DestroyWindow();
    }

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CBaseDialog::OnInitDialog();
        ThrowIf(Throws::InitDialog);
        return result;
    }
    void PostNcDestroy() override { ThrowIf(Throws::PostNcDestroy); }

private:
    void ThrowIf(Throws where) const {
        if (m_throws == where)
            throw 1;
    }
};

class BaseDialog : public testing::Test {
protected:
    AttachedLibrary m_library;
};

CSize SizeOf(HWND hWnd) {
    CRect rect;
    GetWindowRect(hWnd, &rect);
    return rect.Size();
}

TEST_F(BaseDialog, StandsWhereItIsTold) {
    const RECT place = {120, 90, 5000, 5000};
    const RECT origin = {0, 0, 0, 0};
    CRect workArea;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    for (const RECT* pPosition : {&place, &origin, static_cast<const RECT*>(nullptr)}) {
        LogRecorder log;
        CProbeDialog dialog(0, pPosition);
        DialogDriver driver([&](Dialog& d) {
            const CRect rect(d.ScreenRect());
            // Told nothing, it stands in the middle.
            const CPoint middle =
                workArea.CenterPoint() - CSize(rect.Width() / 2, rect.Height() / 2);
            const CPoint expected =
                pPosition != nullptr ? CPoint(pPosition->left, pPosition->top) : middle;
            EXPECT_LE(std::abs(rect.left - expected.x), pPosition != nullptr ? 0 : 1);
            EXPECT_LE(std::abs(rect.top - expected.y), pPosition != nullptr ? 0 : 1);
            d.Cancel();
        });
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
        driver.Join();
        EXPECT_TRUE(log.Contains(8, "CBaseDialog::OnInitDialog"));
        EXPECT_TRUE(log.Contains(16, "CBaseDialog::OnInitDialog"));
    }
}

TEST_F(BaseDialog, ColourModeDecidesTheBackground) {
    for (const bool windowColour : {false, true}) {
        CProbeDialog dialog(windowColour ? 1 : 0);
        DialogDriver driver([&](Dialog& d) {
            d.Run([&] {
                const WindowDc dc(d.Handle());
                SetBkMode(dc.get(), OPAQUE);
                auto* const brush = reinterpret_cast<HBRUSH>(
                    SendMessageA(d.Handle(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.get()),
                                 reinterpret_cast<LPARAM>(d.Control(IDC_ENTER_PIN_PROMPT))));
                LOGBRUSH logBrush{};
                GetObjectA(brush, sizeof logBrush, &logBrush);
                EXPECT_EQ(logBrush.lbColor,
                          GetSysColor(windowColour ? COLOR_WINDOW : COLOR_BTNFACE));
                EXPECT_EQ(GetBkMode(dc.get()) == TRANSPARENT, windowColour);
                EXPECT_EQ(GetTextColor(dc.get()), GetSysColor(COLOR_WINDOWTEXT));
            });
            d.Cancel();
        });
        dialog.DoModal();
    }
}

TEST_F(BaseDialog, BackgroundFollowsTheColourScheme) {
    const COLORREF old = GetSysColor(COLOR_WINDOW);
    const int index = COLOR_WINDOW;
    CProbeDialog dialog(1);
    DialogDriver driver([&](Dialog& d) {
        d.Run([&] {
            constexpr COLORREF kNew = RGB(1, 2, 3);
            SetSysColors(1, &index, &kNew);
            SendMessageA(d.Handle(), WM_SYSCOLORCHANGE, 0, 0);
            const WindowDc dc(d.Handle());
            auto* const brush = reinterpret_cast<HBRUSH>(
                SendMessageA(d.Handle(), WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(dc.get()),
                             reinterpret_cast<LPARAM>(d.Handle())));
            LOGBRUSH logBrush{};
            GetObjectA(brush, sizeof logBrush, &logBrush);
            EXPECT_EQ(logBrush.lbColor, kNew);
        });
        d.Cancel();
    });
    dialog.DoModal();
    driver.Join();
    SetSysColors(1, &index, &old);
}

TEST_F(BaseDialog, HidePinOverwritesInPlace) {
    LogRecorder log;
    CString pin("1234");
    const char* pBytes = pin;
    CBaseDialog::HidePinFromMemory(pin);
    EXPECT_EQ(std::string(pBytes, 4), std::string(4, '\0'));
    EXPECT_TRUE(pin.IsEmpty());
    CBaseDialog::HidePinFromMemory(pin);
    EXPECT_EQ(log.Texts(8).size(), 2U);
    EXPECT_EQ(log.Texts(16), (std::vector<std::string>{"CBaseDialog::HidePinFromMemory",
                                                       "CBaseDialog::HidePinFromMemory"}));
}

TEST_F(BaseDialog, ResizeTakesAwayFromTheDialogOrAControl) {
    CProbeDialog dialog;
    DialogDriver driver([&](Dialog& d) {
        d.Run([&] {
            const CSize whole = SizeOf(d.Handle());
            const CSize edit = SizeOf(d.Control(IDC_ENTER_PIN_EDIT));
            dialog.ResizeDlg(0, 10, 20);
            EXPECT_EQ(SizeOf(d.Handle()), CSize(whole.cx - 10, whole.cy - 20));
            dialog.ResizeDlg(IDC_ENTER_PIN_EDIT, -5, 3);
            EXPECT_EQ(SizeOf(d.Control(IDC_ENTER_PIN_EDIT)), CSize(edit.cx + 5, edit.cy - 3));
            dialog.ResizeDlg(9999, 50, 50);
            EXPECT_EQ(SizeOf(d.Handle()), CSize(whole.cx - 10, whole.cy - 20));
        });
        d.Cancel();
    });
    dialog.DoModal();
}

TEST_F(BaseDialog, MissingTemplateIsMinusOneAndTold) {
    LogRecorder log;
    CProbeDialog missing(0, nullptr, 1);
    EXPECT_EQ(missing.DoModal(), -1);
    EXPECT_EQ(missing.CreateFromResourceModule(nullptr), 0);
    EXPECT_EQ(log.Texts(1),
              (std::vector<std::string>{"Dialog template 1 is missing from the resource module",
                                        "Dialog template 1 is missing from the resource module"}));
}

TEST_F(BaseDialog, ExceptionsStayInsideAndAreLogged) {
    using Throws = CProbeDialog::Throws;
    struct Case {
        Throws where;
        bool bOpens;
        const char* pszLine;
    };
    const Case cases[] = {
        {Throws::InitDialog, false, "Exception in the handler of message 0x110"},
        {Throws::Destroy, true, "CBaseDialog::DoModal: exception"},
    };
    for (const Case& c : cases) {
        LogRecorder log;
        CProbeDialog dialog;
        dialog.m_throws = c.where;
        std::vector<Step> steps;
        if (c.bOpens)
            steps.emplace_back([](Dialog& d) { d.Cancel(); });
        const DialogDriver driver(DialogDriver::kDeadline, steps);
        EXPECT_EQ(dialog.DoModal(), -1);
        EXPECT_TRUE(log.Contains(1, c.pszLine)) << c.pszLine << log.Dump();
    }
    // Creation that fails because the parent is gone tells the object, which throws.
    LogRecorder log;
    CProbeDialog panel;
    panel.m_throws = Throws::PostNcDestroy;
    CWnd gone;
    gone.m_hWnd = reinterpret_cast<HWND>(UINT_PTR{0xDEAD});
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(panel.CreateFromResourceModule(&gone), 0);
    gone.m_hWnd = nullptr;
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleA(nullptr));
    EXPECT_TRUE(log.Contains(1, "CBaseDialog::CreateFromResourceModule: exception")) << log.Dump();
    struct Throwing : CStatic {
        BOOL OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) override { throw 1; }
    };
    Throwing control;
    EXPECT_EQ(panel.OnCtlColor(nullptr, &control, CTLCOLOR_STATIC), nullptr);
    EXPECT_TRUE(log.Contains(1, "CBaseDialog::OnCtlColor: exception"));
}

TEST(BaseDialogWithoutModule, CannotBeShown) {
    CProbeDialog dialog;
    EXPECT_EQ(ResourceModule(), nullptr);
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_EQ(dialog.CreateFromResourceModule(nullptr), 0);
}

TEST_F(BaseDialog, ParentIsGivenBack) {
    CWnd parent;
    ASSERT_TRUE(parent.CreateEx(0, "STATIC", "parent", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200,
                                100, nullptr, nullptr));
    CProbeDialog dialog(0, nullptr, IDD_ENTER_PIN, &parent);
    DialogDriver driver([&](Dialog& d) {
        EXPECT_FALSE(IsWindowEnabled(parent.m_hWnd));
        EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), parent.m_hWnd);
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(parent.IsWindowEnabled());
}

TEST_F(BaseDialog, OpeningAndClosingKeepsNothing) {
    // A template without pictures: what the system does with those is not the base's affair.
    ExpectRoundsKeepNothing(1, 50, [](int) {
        CProbeDialog dialog(1, nullptr, IDD_CHANGE_PIN_MAIN);
        DialogDriver driver([](Dialog& d) { d.Cancel(); });
        dialog.DoModal();
    });
}

}  // namespace
}  // namespace mvp::test
