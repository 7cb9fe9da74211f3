#include "richtext/pictures/picture_source.h"

#include <charconv>
#include <string>

#include "platform/bitmap_file.h"
#include "richtext/markup/text_bytes.h"
#include "richtext/pictures/picture.h"

namespace mvp::richtext {
namespace {

constexpr std::uint64_t kMaxIconFile = 4 << 20;

// Run lengths are refused: nobody needs them in a text, and they say nothing of their size.
Bitmap PictureOf(const std::optional<BitmapImage>& image) {
    const bool bTaken = image.has_value() && IsPictureSize(image->nWidth, image->nHeight) &&
                        (image->packing == BitmapImage::Packing::None ||
                         image->packing == BitmapImage::Packing::Masks);
    return bTaken ? MakeBitmap(*image) : Bitmap();
}

}  // namespace

Bitmap LoadPictureFile(std::string_view file) {
    if (!IsLocalPath(file)) {
        return {};
    }
    const std::vector<std::uint8_t> bytes = ReadDiskFile(std::string(file).c_str(), kMaxBitmapFile);
    return PictureOf(ReadBitmapFile(bytes));
}

Bitmap LoadPictureResource(const CResourceFinder& resources, std::string_view module,
                           std::string_view idres) {
    const CResourceName name(idres);
    const CResourceFinder::Module found = resources.Find(module, name, RT_BITMAP);
    const HRSRC hResource =
        found.hModule != nullptr ? FindResourceA(found.hModule, name.Get(), RT_BITMAP) : nullptr;
    const HGLOBAL hLoaded = hResource != nullptr ? LoadResource(found.hModule, hResource) : nullptr;
    const void* pBytes = hLoaded != nullptr ? LockResource(hLoaded) : nullptr;
    if (pBytes == nullptr) {
        return {};
    }
    return PictureOf(ReadBitmapResource(
        {static_cast<const std::uint8_t*>(pBytes), SizeofResource(found.hModule, hResource)}));
}

Icon LoadIconFile(std::string_view file, SIZE size) {
    const std::string strFile(file);
    if (!IsLocalPath(file) || ReadDiskFile(strFile.c_str(), kMaxIconFile).empty()) {
        return {};
    }
    return Icon(static_cast<HICON>(LoadImageA(nullptr, strFile.c_str(), IMAGE_ICON, size.cx,
                                              size.cy, LR_LOADFROMFILE | LR_DEFAULTSIZE)));
}

Icon LoadIconResource(const CResourceFinder& resources, std::string_view module,
                      std::string_view idres, SIZE size) {
    const CResourceName name(idres);
    const CResourceFinder::Module found = resources.Find(module, name, RT_GROUP_ICON);
    if (found.hModule == nullptr) {
        return {};
    }
    return Icon(static_cast<HICON>(
        LoadImageA(found.hModule, name.Get(), IMAGE_ICON, size.cx, size.cy, LR_DEFAULTSIZE)));
}

HANDLE ReadHandle(std::string_view value) {
    value = Trim(value);
    const bool bHexadecimal = value.size() > 2 && value[0] == '0' && AsciiLower(value[1]) == 'x';
    if (bHexadecimal) {
        value.remove_prefix(2);
    }
    std::uintptr_t nValue = 0;
    const auto [pEnd, error] =
        std::from_chars(value.data(), value.data() + value.size(), nValue, bHexadecimal ? 16 : 10);
    if (error != std::errc() || pEnd != value.data() + value.size()) {
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(nValue);
}

}  // namespace mvp::richtext
