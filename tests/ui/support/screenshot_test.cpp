#include "common/screenshot.h"

#include <windows.h>
#include <wincodec.h>

#include <array>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "support/dialog_driver.h"
#include "support/dialog_template.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

template <class Interface>
struct ComTraits {
    using Handle = Interface*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};
template <class Interface>
using ComPointer = UniqueHandle<ComTraits<Interface>>;

struct Picture {
    UINT width = 0;
    UINT height = 0;
    std::array<BYTE, 3> middle = {};  // blue, green, red
};

Picture ReadPng(const wchar_t* pszFile) {
    Picture picture;
    ComPointer<IWICImagingFactory> factory;
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                     __uuidof(IWICImagingFactory), reinterpret_cast<void**>(factory.put()));
    ComPointer<IWICBitmapDecoder> decoder;
    ComPointer<IWICBitmapFrameDecode> frame;
    if (!factory ||
        FAILED(factory.get()->CreateDecoderFromFilename(
            pszFile, nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand, decoder.put())) ||
        FAILED(decoder.get()->GetFrame(0, frame.put())))
        return picture;
    frame.get()->GetSize(&picture.width, &picture.height);
    const WICRect middle = {static_cast<INT>(picture.width / 2),
                            static_cast<INT>(picture.height / 2), 1, 1};
    frame.get()->CopyPixels(&middle, 4, static_cast<UINT>(picture.middle.size()),
                            picture.middle.data());
    return picture;
}

class Screenshot : public testing::Test {
protected:
    Screenshot() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~Screenshot() override {
        DeleteFileA("screenshot_test.png");
        CoUninitialize();
    }
};

// A modal window of one colour that runs over the right edge of the screen.
INT_PTR CALLBACK RedProc(HWND hDialog, UINT nMessage, WPARAM wParam, LPARAM) {
    static const Brush s_red(CreateSolidBrush(RGB(200, 30, 10)));
    if (nMessage == WM_INITDIALOG)
        SetWindowPos(hDialog, HWND_TOPMOST, GetSystemMetrics(SM_CXSCREEN) - 100, 20, 301, 81, 0);
    if (nMessage == WM_CTLCOLORDLG)
        return reinterpret_cast<INT_PTR>(s_red.get());
    if (nMessage == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
        EndDialog(hDialog, IDCANCEL);
    return FALSE;
}

TEST_F(Screenshot, ShowsTheVisiblePartOfTheWindow) {
    // A hive in place of the machine's must not keep the imaging component from its classes.
    RegistryHive hive;
    DialogTemplate form("", {0, 0, 50, 50}, WS_POPUP | DS_SETFONT);
    DialogDriver driver([](Dialog& dialog) {
        dialog.Screenshot("screenshot_test.png");
        dialog.Cancel();
    });
    DialogBoxIndirectParamA(nullptr, form.Get(), nullptr, RedProc, 0);
    driver.Join();
    const Picture picture = ReadPng(L"screenshot_test.png");
    EXPECT_EQ(picture.width, 100u);
    EXPECT_EQ(picture.height, 81u);
    EXPECT_EQ(picture.middle, (std::array<BYTE, 3>{10, 30, 200}));
}

TEST_F(Screenshot, TellsWhyThereIsNone) {
    std::string strError;
    EXPECT_FALSE(SaveWindowPng(nullptr, "screenshot_test.png", strError));
    EXPECT_NE(strError.find("no such window"), std::string::npos);
    EXPECT_FALSE(SaveScreenPng({0, 0, 9, 9}, R"(no\such\folder\a.png)", strError));
    EXPECT_NE(strError.find("could not be written"), std::string::npos);
}

}  // namespace
}  // namespace mvp::test
