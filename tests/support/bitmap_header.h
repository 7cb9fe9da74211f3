// Bitmap files of tests, good ones and others.
#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace mvp::test {

inline BITMAPINFOHEADER TrueColorHeader(int nWidth, int nHeight) {
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = nWidth;
    info.biHeight = nHeight;
    info.biPlanes = 1;
    info.biBitCount = 24;
    return info;
}

// What the headers of a bitmap file say, true or not.
struct BitmapHeaders {
    LONG nWidth, nHeight;
    WORD nBits = 24;
    DWORD dwPacking = BI_RGB;
    DWORD dwColours = 0;
    DWORD dwOffset = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
};

// One at a time, gone when this goes.
class WrittenBitmap {
public:
    WrittenBitmap(const BitmapHeaders& headers, const std::string& strRest) {
        const BITMAPFILEHEADER file{0x4D42, 0, 0, 0, headers.dwOffset};
        BITMAPINFOHEADER info = TrueColorHeader(headers.nWidth, headers.nHeight);
        info.biBitCount = headers.nBits;
        info.biCompression = headers.dwPacking;
        info.biClrUsed = headers.dwColours;
        std::ofstream stream(m_strName, std::ios::binary);
        stream.write(reinterpret_cast<const char*>(&file), sizeof file);
        stream.write(reinterpret_cast<const char*>(&info), sizeof info);
        stream << strRest;
    }
    WrittenBitmap(const WrittenBitmap&) = delete;
    WrittenBitmap& operator=(const WrittenBitmap&) = delete;
    ~WrittenBitmap() { DeleteFileA(m_strName.c_str()); }

    const std::string& Name() const { return m_strName; }

private:
    std::string m_strName = (std::filesystem::temp_directory_path() / "mvp_test.bmp").string();
};

}  // namespace mvp::test
