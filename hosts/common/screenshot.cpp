#include "common/screenshot.h"

#include <windows.h>
#include <wincodec.h>

#include <utility>
#include <vector>

#include "platform/handle.h"

namespace mvp {
namespace {

template <class Interface>
struct ComTraits {
    using Handle = Interface*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};
template <class Interface>
using ComPointer = UniqueHandle<ComTraits<Interface>>;

// COM for the calling thread, unless that thread has chosen its apartment already.
class ComScope {
public:
    ComScope() noexcept : m_hr(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
    ~ComScope() {
        if (SUCCEEDED(m_hr)) {
            CoUninitialize();
        }
    }

private:
    HRESULT m_hr;
};

struct Pixels {
    LONG width = 0;
    LONG height = 0;
    std::vector<BYTE> bgr;  // rows from the top, each of Stride() bytes

    UINT Stride() const { return (static_cast<UINT>(width) * 3 + 3) & ~3u; }
};

bool Fail(std::string& strError, const char* pszWhat, unsigned long code) {
    char text[160];
    wsprintfA(text, "%s (0x%lx)", pszWhat, code);
    strError = text;
    return false;
}

RECT ScreenRect() {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
            top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

// The bitmap's own pixels; it must not be selected.
bool ReadPixels(HDC hDC, HBITMAP hBitmap, Pixels& pixels, std::string& strError) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = pixels.width;
    info.bmiHeader.biHeight = -pixels.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    pixels.bgr.resize(pixels.Stride() * static_cast<size_t>(pixels.height));
    if (GetDIBits(hDC, hBitmap, 0, static_cast<UINT>(pixels.height), pixels.bgr.data(), &info,
                  DIB_RGB_COLORS) != pixels.height) {
        return Fail(strError, "the picture's pixels could not be read", GetLastError());
    }
    return true;
}

bool Capture(const RECT& rect, Pixels& pixels, std::string& strError) {
    pixels.width = rect.right - rect.left;
    pixels.height = rect.bottom - rect.top;
    const WindowDc screen(nullptr);
    const MemoryDc memory(CreateCompatibleDC(screen.get()));
    const Bitmap bitmap(CreateCompatibleBitmap(screen.get(), pixels.width, pixels.height));
    if (!memory || !bitmap) {
        return Fail(strError, "no bitmap for the picture", GetLastError());
    }
    {
        const DcSelection selection(memory.get(), bitmap.get());
        // CAPTUREBLT: layered windows belong to what the user sees.
        if (!BitBlt(memory.get(), 0, 0, pixels.width, pixels.height, screen.get(), rect.left,
                    rect.top, SRCCOPY | CAPTUREBLT)) {
            return Fail(strError, "the screen could not be read", GetLastError());
        }
    }
    return ReadPixels(memory.get(), bitmap.get(), pixels, strError);
}

// The display lags behind what the windows have drawn: the picture is good when two in a row are
// the same. What never comes to rest is taken as it is after a while.
bool CaptureAtRest(const RECT& rect, Pixels& pixels, std::string& strError) {
    constexpr DWORD kPauseMs = 50;
    constexpr int kTries = 20;
    if (!Capture(rect, pixels, strError)) {
        return false;
    }
    for (int i = 0; i < kTries; ++i) {
        Sleep(kPauseMs);
        Pixels next;
        if (!Capture(rect, next, strError)) {
            return false;
        }
        const bool atRest = next.bgr == pixels.bgr;
        pixels = std::move(next);
        if (atRest) {
            break;
        }
    }
    return true;
}

std::wstring Widen(const std::string& str) {
    const int size = static_cast<int>(str.size());
    std::wstring wide(str.size(), L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, str.data(), size, wide.data(),
                                           static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(length));
    return wide;
}

HRESULT WriteFrame(IWICBitmapEncoder* pEncoder, Pixels& pixels) {
    ComPointer<IWICBitmapFrameEncode> frame;
    HRESULT hr = pEncoder->CreateNewFrame(frame.put(), nullptr);
    if (SUCCEEDED(hr)) {
        hr = frame.get()->Initialize(nullptr);
    }
    if (SUCCEEDED(hr)) {
        hr =
            frame.get()->SetSize(static_cast<UINT>(pixels.width), static_cast<UINT>(pixels.height));
    }
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    if (SUCCEEDED(hr)) {
        hr = frame.get()->SetPixelFormat(&format);
    }
    if (SUCCEEDED(hr) && !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR)) {
        hr = WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
    }
    if (SUCCEEDED(hr)) {
        hr = frame.get()->WritePixels(static_cast<UINT>(pixels.height), pixels.Stride(),
                                      static_cast<UINT>(pixels.bgr.size()), pixels.bgr.data());
    }
    return SUCCEEDED(hr) ? frame.get()->Commit() : hr;
}

HRESULT Encode(Pixels& pixels, const std::wstring& strFile) {
    ComPointer<IWICImagingFactory> factory;
    HRESULT hr =
        CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                         __uuidof(IWICImagingFactory), reinterpret_cast<void**>(factory.put()));
    ComPointer<IWICStream> stream;
    if (SUCCEEDED(hr)) {
        hr = factory.get()->CreateStream(stream.put());
    }
    if (SUCCEEDED(hr)) {
        hr = stream.get()->InitializeFromFilename(strFile.c_str(), GENERIC_WRITE);
    }
    if (FAILED(hr)) {
        return hr;
    }
    ComPointer<IWICBitmapEncoder> encoder;
    hr = factory.get()->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.put());
    if (SUCCEEDED(hr)) {
        hr = encoder.get()->Initialize(stream.get(), WICBitmapEncoderNoCache);
    }
    if (SUCCEEDED(hr)) {
        hr = WriteFrame(encoder.get(), pixels);
    }
    if (SUCCEEDED(hr)) {
        hr = encoder.get()->Commit();
    }
    encoder.reset();
    stream.reset();
    if (FAILED(hr)) {
        DeleteFileW(strFile.c_str());
    }
    return hr;
}

bool Write(Pixels& pixels, const std::string& strFile, std::string& strError) {
    const ComScope com;
    const HRESULT hr = Encode(pixels, Widen(strFile));
    if (FAILED(hr)) {
        return Fail(strError, "the picture could not be written", static_cast<unsigned long>(hr));
    }
    return true;
}

}  // namespace

bool SaveScreenPng(const RECT& rect, const std::string& strFile, std::string& strError) {
    const RECT screen = ScreenRect();
    RECT part = {};
    if (!IntersectRect(&part, &rect, &screen)) {
        return Fail(strError, "nothing of it lies on the screen", 0);
    }
    Pixels pixels;
    return CaptureAtRest(part, pixels, strError) && Write(pixels, strFile, strError);
}

bool SaveBitmapPng(HBITMAP hBitmap, const std::string& strFile, std::string& strError) {
    BITMAP bitmap = {};
    if (GetObjectA(hBitmap, sizeof bitmap, &bitmap) != sizeof bitmap) {
        return Fail(strError, "no such bitmap", GetLastError());
    }
    Pixels pixels;
    pixels.width = bitmap.bmWidth;
    pixels.height = bitmap.bmHeight;
    const WindowDc screen(nullptr);
    return ReadPixels(screen.get(), hBitmap, pixels, strError) && Write(pixels, strFile, strError);
}

bool SaveWindowPng(HWND hWnd, const std::string& strFile, std::string& strError) {
    RECT rect = {};
    if (!GetWindowRect(hWnd, &rect)) {
        return Fail(strError, "no such window", GetLastError());
    }
    return SaveScreenPng(rect, strFile, strError);
}

}  // namespace mvp
