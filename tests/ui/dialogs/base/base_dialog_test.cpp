#include "mvpingui/base_dialog.h"

#include "dialogs/base/control_place.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

class ProbeDialog : public CBaseDialog {
public:
    explicit ProbeDialog(int nColorMode = 0, const RECT* pPosition = nullptr,
                         UINT nTemplate = IDD_ENTER_PIN)
        : CBaseDialog(nTemplate, nColorMode, pPosition, nullptr) {}
    using CBaseDialog::CreateFromResourceModule;
    using CBaseDialog::OnCtlColor;
    using CBaseDialog::ResizeDlg;

    void Show(const std::function<void(Dialog&)>& work) {
        DialogDriver driver([&work](Dialog& d) {
            d.Run([&] { work(d); });
            d.Cancel();
        });
        EXPECT_EQ(DoModal(), IDCANCEL);
    }

    enum class Throws { Nowhere, InitDialog, Destroy, PostNcDestroy };
    Throws m_throws = Throws::Nowhere;

    BOOL DestroyWindow() override {
        return m_throws == Throws::Destroy ? throw 1 : CBaseDialog::DestroyWindow();
    }

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CBaseDialog::OnInitDialog();
        return m_throws == Throws::InitDialog ? throw 1 : result;
    }
    void PostNcDestroy() override { m_throws == Throws::PostNcDestroy ? throw 1 : void(); }
};

using BaseDialog = LibraryTest;

TEST_F(BaseDialog, StandsWhereItIsTold) {
    const RECT place = {120, 90, 5000, 5000};
    const RECT origin = {0, 0, 0, 0};
    CRect workArea;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &workArea, 0);
    for (const RECT* position : {&place, &origin, static_cast<const RECT*>(nullptr)}) {
        m_log.Clear();
        ProbeDialog(0, position).Show([&](Dialog& d) {
            const CRect rect = RectIn(nullptr, d.Handle());
            // Told nothing, it stands in the middle.
            const CPoint expected =
                position != nullptr
                    ? CRect(*position).TopLeft()
                    : workArea.CenterPoint() - CSize(rect.Width() / 2, rect.Height() / 2);
            EXPECT_LE(std::abs(rect.left - expected.x), position != nullptr ? 0 : 1);
            EXPECT_LE(std::abs(rect.top - expected.y), position != nullptr ? 0 : 1);
        });
        EXPECT_EQ(LogShape(), "CBaseDialog::OnInitDialog{} ");
    }
}

COLORREF BackgroundOf(const Dialog& d, UINT nMessage, HWND hPart, HDC hDC) {
    auto* const brushHandle = reinterpret_cast<HBRUSH>(SendMessageA(
        d.Handle(), nMessage, reinterpret_cast<WPARAM>(hDC), reinterpret_cast<LPARAM>(hPart)));
    LOGBRUSH brush{};
    GetObjectA(brushHandle, sizeof brush, &brush);
    return brush.lbColor;
}

TEST_F(BaseDialog, ColourModeDecidesTheBackground) {
    for (const bool windowColour : {false, true}) {
        ProbeDialog(windowColour ? 1 : 0).Show([&](Dialog& d) {
            const WindowDc dc(d.Handle());
            SetBkMode(dc.get(), OPAQUE);
            EXPECT_EQ(BackgroundOf(d, WM_CTLCOLORSTATIC, d.Control(IDC_ENTER_PIN_PROMPT), dc.get()),
                      GetSysColor(windowColour ? COLOR_WINDOW : COLOR_BTNFACE));
            EXPECT_EQ(GetBkMode(dc.get()) == TRANSPARENT, windowColour);
            EXPECT_EQ(GetTextColor(dc.get()), GetSysColor(COLOR_WINDOWTEXT));
        });
    }
    const COLORREF old = GetSysColor(COLOR_WINDOW);
    const int index = COLOR_WINDOW;
    ProbeDialog(1).Show([&](Dialog& d) {
        constexpr COLORREF kNew = RGB(1, 2, 3);
        SetSysColors(1, &index, &kNew);
        SendMessageA(d.Handle(), WM_SYSCOLORCHANGE, 0, 0);
        const WindowDc dc(d.Handle());
        EXPECT_EQ(BackgroundOf(d, WM_CTLCOLORDLG, d.Handle(), dc.get()), kNew);
    });
    SetSysColors(1, &index, &old);
}

TEST_F(BaseDialog, ResizeTakesAwayFromTheDialogOrAControl) {
    ProbeDialog dialog;
    dialog.Show([&](Dialog& d) {
        const auto sizeOf = [](HWND hWnd) { return RectIn(nullptr, hWnd).Size(); };
        const HWND editHandle = d.Control(IDC_ENTER_PIN_EDIT);
        const CSize whole = sizeOf(d.Handle());
        const CSize edit = sizeOf(editHandle);
        dialog.ResizeDlg(0, 10, 20);
        dialog.ResizeDlg(IDC_ENTER_PIN_EDIT, -5, 3);
        dialog.ResizeDlg(9999, 50, 50);
        EXPECT_EQ(sizeOf(d.Handle()), CSize(whole.cx - 10, whole.cy - 20));
        EXPECT_EQ(sizeOf(editHandle), CSize(edit.cx + 5, edit.cy - 3));
        // The other way round, and with controls that move along.
        CRect ok = PlaceOf(dialog, IDOK);
        FitWindow(dialog, {10, 20}, {IDOK, 9999});
        ok.OffsetRect(10, 20);
        EXPECT_EQ(PlaceOf(dialog, IDOK), ok);
        EXPECT_EQ(sizeOf(d.Handle()), whole);
    });
    EXPECT_EQ(WindowFit::ToWholePanel(-1).nHeight, 0);
}

TEST_F(BaseDialog, MissingTemplateIsMinusOneAndTold) {
    ProbeDialog missing(0, nullptr, 1);
    EXPECT_EQ(missing.DoModal(), -1);
    EXPECT_EQ(missing.CreateFromResourceModule(nullptr), 0);
    EXPECT_EQ(m_log.Texts(1),
              std::vector<std::string>(2, "Dialog template 1 is missing from the resource module"));
}

TEST_F(BaseDialog, ExceptionsStayInsideAndAreLogged) {
    ProbeDialog dialog;
    dialog.m_throws = ProbeDialog::Throws::InitDialog;
    EXPECT_EQ(Open(dialog, {}), -1);
    EXPECT_TRUE(m_log.Contains(1, "Exception in the handler of message 0x110")) << m_log.Dump();
    dialog.m_throws = ProbeDialog::Throws::Destroy;
    EXPECT_EQ(Open(dialog, {[](Dialog& d) { d.Cancel(); }}), -1);
    EXPECT_TRUE(m_log.Contains(1, "CBaseDialog::DoModal: exception")) << m_log.Dump();
    // Creation that fails because the parent is gone tells the object, which throws.
    ProbeDialog panel;
    panel.m_throws = ProbeDialog::Throws::PostNcDestroy;
    CWnd gone;
    gone.m_hWnd = reinterpret_cast<HWND>(UINT_PTR{0xDEAD});
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(panel.CreateFromResourceModule(&gone), 0);
    gone.m_hWnd = nullptr;
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleA(nullptr));
    EXPECT_TRUE(m_log.Contains(1, "CBaseDialog::CreateFromResourceModule: exception"));
    struct Throwing : CStatic {
        BOOL OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) override { throw 1; }
    };
    Throwing control;
    EXPECT_EQ(panel.OnCtlColor(nullptr, &control, CTLCOLOR_STATIC), nullptr);
    EXPECT_TRUE(m_log.Contains(1, "CBaseDialog::OnCtlColor: exception"));
}

}  // namespace
}  // namespace mvp::test
