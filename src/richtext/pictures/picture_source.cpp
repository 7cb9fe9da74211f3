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
    const bool taken = image.has_value() && IsPictureSize(image->nWidth, image->nHeight) &&
                       (image->packing == BitmapImage::Packing::None ||
                        image->packing == BitmapImage::Packing::Masks);
    return taken ? MakeBitmap(*image) : Bitmap();
}

}  // namespace

Bitmap LoadPictureFile(std::string_view file) {
    if (!IsLocalPath(file)) {
        return {};
    }
    const std::vector<std::uint8_t> bytes = ReadDiskFile(std::string(file).c_str(), kMaxBitmapFile);
    return PictureOf(ReadBitmapFile(bytes));
}

Bitmap LoadPictureResource(const ResourceFinder& resources, std::string_view module,
                           std::string_view idres) {
    const ResourceName name(idres);
    const ResourceFinder::Module found = resources.Find(module, name, RT_BITMAP);
    const HRSRC resource =
        found.hModule != nullptr ? FindResourceA(found.hModule, name.Get(), RT_BITMAP) : nullptr;
    const HGLOBAL loaded = resource != nullptr ? LoadResource(found.hModule, resource) : nullptr;
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) {
        return {};
    }
    return PictureOf(ReadBitmapResource(
        {static_cast<const std::uint8_t*>(bytes), SizeofResource(found.hModule, resource)}));
}

Icon LoadIconFile(std::string_view file, SIZE size) {
    const std::string fileName(file);
    if (!IsLocalPath(file) || ReadDiskFile(fileName.c_str(), kMaxIconFile).empty()) {
        return {};
    }
    return Icon(static_cast<HICON>(LoadImageA(nullptr, fileName.c_str(), IMAGE_ICON, size.cx,
                                              size.cy, LR_LOADFROMFILE | LR_DEFAULTSIZE)));
}

Icon LoadIconResource(const ResourceFinder& resources, std::string_view module,
                      std::string_view idres, SIZE size) {
    const ResourceName name(idres);
    const ResourceFinder::Module found = resources.Find(module, name, RT_GROUP_ICON);
    if (found.hModule == nullptr) {
        return {};
    }
    return Icon(static_cast<HICON>(
        LoadImageA(found.hModule, name.Get(), IMAGE_ICON, size.cx, size.cy, LR_DEFAULTSIZE)));
}

HANDLE ReadHandle(std::string_view value) {
    value = Trim(value);
    const bool hexadecimal = value.size() > 2 && value[0] == '0' && AsciiLower(value[1]) == 'x';
    if (hexadecimal) {
        value.remove_prefix(2);
    }
    std::uintptr_t number = 0;
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), number, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != value.data() + value.size()) {
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(number);
}

}  // namespace mvp::richtext
