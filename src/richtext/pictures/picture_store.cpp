#include "richtext/pictures/picture_store.h"

#include <algorithm>
#include <tuple>

#include "richtext/pictures/picture_source.h"

namespace mvp::richtext {
namespace {

// Beyond, further pictures of a text stay empty.
constexpr std::size_t kMaxPictures = 256;
constexpr std::int64_t kMaxPixels = 4 * kMaxPicturePixels;
// The largest side of what is put together of tiles at a time.
constexpr LONG kMaxFilling = 2048;
static_assert(IsPictureSize(kMaxFilling, kMaxFilling));
// The largest icon that is made in the size it is drawn in; larger ones are stretched.
constexpr LONG kMaxIcon = 256;

// Whole and part of a strip: as many squares as its height fits into its width.
std::int32_t SquaresOf(const Picture& strip) {
    return strip ? strip.Width() / strip.Height() : 0;
}

RECT WholeOf(const Picture& picture) {
    return {0, 0, picture.Width(), picture.Height()};
}

// GetIconInfo gives two bitmaps away.
struct IconBitmaps {
    Bitmap mask;
    Bitmap colour;
};

std::optional<SIZE> SizeOfIcon(HICON hIcon) {
    ICONINFO info{};
    if (!GetIconInfo(hIcon, &info)) {
        return std::nullopt;
    }
    const IconBitmaps bitmaps{Bitmap(info.hbmMask), Bitmap(info.hbmColor)};
    BITMAP size{};
    if (bitmaps.colour) {
        GetObjectA(bitmaps.colour.get(), sizeof size, &size);
        return SIZE{size.bmWidth, size.bmHeight};
    }
    // Without colours the mask holds two images, one above the other.
    GetObjectA(bitmaps.mask.get(), sizeof size, &size);
    return SIZE{size.bmWidth, size.bmHeight / 2};
}

// What is seen from `from` on of a plane tiled with the picture.
Picture FillingOf(const Picture& tile, POINT from, SIZE size) {
    Picture filling(size.cx, size.cy);
    if (!filling) {
        return filling;
    }
    const auto row = [](auto pixels, std::int32_t y, std::int32_t nWidth) {
        return pixels.subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth),
                              static_cast<std::size_t>(nWidth));
    };
    for (std::int32_t y = 0; y < filling.Height(); ++y) {
        const auto source = row(tile.Pixels(), (from.y + y) % tile.Height(), tile.Width());
        auto offset = static_cast<std::size_t>(from.x % tile.Width());
        for (std::uint32_t& pixel : row(filling.Pixels(), y, filling.Width())) {
            pixel = source[offset];
            offset = offset + 1 == source.size() ? 0 : offset + 1;
        }
    }
    return filling;
}

Picture PictureOfIcon(HICON hIcon, SIZE size, std::int32_t nFrame) {
    return Picture::FromDrawing(size.cx, size.cy, [=](HDC hDC) {
        DrawIconEx(hDC, 0, 0, hIcon, size.cx, size.cy, static_cast<UINT>(std::max(nFrame, 0)),
                   nullptr, DI_NORMAL);
    });
}

}  // namespace

bool PictureStore::Key::operator<(const Key& other) const {
    const auto fields = [](const Key& key) {
        return std::tie(key.kind, key.nIndex, key.mask, key.size.cx, key.size.cy, key.bDisabled,
                        key.strResource, key.strModule, key.strHandle, key.strFile);
    };
    return fields(*this) < fields(other);
}

void PictureStore::Clear() {
    m_pictures.clear();
    m_nPixels = 0;
}

PictureStore::Key PictureStore::KeyOf(const ImageDescription& image, Colour mask, SIZE size) {
    Key key;
    key.kind = image.kind;
    key.strResource = image.idres;
    key.strModule = image.module;
    key.strHandle = image.handle;
    key.strFile = image.file;
    key.mask = mask;
    const bool handle = !image.handle.empty();
    if (image.kind == ImageKind::Icon || (image.kind == ImageKind::ImageList && handle)) {
        key.nIndex = image.nIndex;
    }
    if (image.kind == ImageKind::Icon) {
        key.size = {std::clamp<LONG>(size.cx, 1, kMaxIcon), std::clamp<LONG>(size.cy, 1, kMaxIcon)};
    }
    return key;
}

const Picture& PictureStore::Get(const Key& key) {
    static const Picture kNoPicture;
    if (const auto known = m_pictures.find(key); known != m_pictures.end()) {
        return known->second;
    }
    if (m_pictures.size() >= kMaxPictures || m_nPixels >= kMaxPixels) {
        return kNoPicture;
    }
    Picture picture;
    if (key.bDisabled) {
        Key normal = key;
        normal.bDisabled = false;
        picture = Get(normal).Disabled();
    } else {
        picture = Load(key);
    }
    m_nPixels += std::int64_t{picture.Width()} * picture.Height();
    return m_pictures.emplace(key, std::move(picture)).first->second;
}

Picture PictureStore::Load(const Key& key) const {
    if (key.kind == ImageKind::Icon) {
        return LoadIconOf(key);
    }
    if (key.kind == ImageKind::ImageList && !key.strHandle.empty()) {
        return LoadListImage(key);
    }
    return LoadBitmapOf(key);
}

Picture PictureStore::LoadBitmapOf(const Key& key) const {
    if (!key.strHandle.empty()) {
        const HANDLE bitmapHandle = ReadHandle(key.strHandle);
        return GetObjectType(bitmapHandle) == OBJ_BITMAP
                   ? Picture::FromBitmap(static_cast<HBITMAP>(bitmapHandle), key.mask)
                   : Picture();
    }
    const Bitmap bitmap = !key.strFile.empty()
                              ? LoadPictureFile(key.strFile)
                              : LoadPictureResource(m_resources, key.strModule, key.strResource);
    return bitmap ? Picture::FromBitmap(bitmap.get(), key.mask) : Picture();
}

Picture PictureStore::LoadIconOf(const Key& key) const {
    if (!key.strHandle.empty()) {
        auto* const iconHandle = static_cast<HICON>(ReadHandle(key.strHandle));
        return SizeOfIcon(iconHandle) ? PictureOfIcon(iconHandle, key.size, key.nIndex) : Picture();
    }
    const Icon icon = !key.strFile.empty()
                          ? LoadIconFile(key.strFile, key.size)
                          : LoadIconResource(m_resources, key.strModule, key.strResource, key.size);
    return icon ? PictureOfIcon(icon.get(), key.size, key.nIndex) : Picture();
}

HIMAGELIST PictureStore::ListOf(std::string_view handle) const {
    auto* const list = static_cast<HIMAGELIST>(ReadHandle(handle));
    return std::find(m_aLists.begin(), m_aLists.end(), list) != m_aLists.end() ? list : nullptr;
}

Picture PictureStore::LoadListImage(const Key& key) const {
    const HIMAGELIST list = ListOf(key.strHandle);
    int width = 0;
    int height = 0;
    if (list == nullptr || key.nIndex < 0 || key.nIndex >= ImageList_GetImageCount(list) ||
        !ImageList_GetIconSize(list, &width, &height)) {
        return {};
    }
    return Picture::FromDrawing(width, height, [&](HDC hDC) {
        ImageList_Draw(list, key.nIndex, hDC, 0, 0, ILD_TRANSPARENT);
    });
}

SIZE PictureStore::IconSizeOf(const ImageDescription& image) const {
    const Icon owned = !image.handle.empty() ? Icon()
                       : !image.file.empty()
                           ? LoadIconFile(image.file, {})
                           : LoadIconResource(m_resources, image.module, image.idres, {});
    const HICON icon =
        image.handle.empty() ? owned.get() : static_cast<HICON>(ReadHandle(image.handle));
    return icon != nullptr ? SizeOfIcon(icon).value_or(SIZE{}) : SIZE{};
}

ImageSize PictureStore::SizeOf(const ImageDescription& image) {
    if (image.kind == ImageKind::Icon) {
        const SIZE size = IconSizeOf(image);
        return {size.cx, size.cy};
    }
    if (image.kind == ImageKind::ImageList) {
        if (!image.handle.empty()) {
            int width = 0;
            int height = 0;
            const HIMAGELIST list = ListOf(image.handle);
            return list != nullptr && ImageList_GetIconSize(list, &width, &height)
                       ? ImageSize{width, height}
                       : ImageSize{};
        }
        const Picture& strip = Get(KeyOf(image, kNoColour, {}));
        return SquaresOf(strip) > 0 ? ImageSize{strip.Height(), strip.Height()} : ImageSize{};
    }
    const Picture& picture = Get(KeyOf(image, kNoColour, {}));
    return {picture.Width(), picture.Height()};
}

std::int32_t PictureStore::CountOf(const ImageDescription& image) {
    if (image.kind != ImageKind::ImageList) {
        return 1;
    }
    if (!image.handle.empty()) {
        const HIMAGELIST list = ListOf(image.handle);
        return list != nullptr ? ImageList_GetImageCount(list) : 0;
    }
    return SquaresOf(Get(KeyOf(image, kNoColour, {})));
}

void PictureStore::Draw(HDC hDC, const PictureRequest& request, const RECT& place) {
    if (request.style == ImageStyle::Hidden) {
        return;
    }
    Key key =
        KeyOf(request.image, request.mask, {place.right - place.left, place.bottom - place.top});
    key.bDisabled = request.style == ImageStyle::Disabled;
    const Picture& picture = Get(key);
    if (!picture) {
        return;
    }
    RECT part = WholeOf(picture);
    if (key.kind == ImageKind::ImageList && key.strHandle.empty()) {
        const std::int32_t index = request.image.nIndex;
        if (index < 0 || index >= SquaresOf(picture)) {
            return;
        }
        part.left = index * picture.Height();
        part.right = part.left + picture.Height();
    }
    picture.Draw(hDC, place, part, request.style == ImageStyle::Blend ? 128 : 255);
}

void PictureStore::DrawTiled(HDC hDC, const PictureRequest& request, const RECT& block,
                             const RECT& dirty) {
    const Picture& tile = Get(KeyOf(request.image, request.mask, {}));
    RECT area{};
    if (!tile || !IntersectRect(&area, &block, &dirty)) {
        return;
    }
    // Put together first, so that tiles of one pixel cost no more than large ones; an area larger
    // than a picture may be, piece by piece.
    for (LONG top = area.top; top < area.bottom; top += kMaxFilling) {
        for (LONG left = area.left; left < area.right; left += kMaxFilling) {
            const RECT piece = {left, top, std::min(area.right, left + kMaxFilling),
                                std::min(area.bottom, top + kMaxFilling)};
            const Picture filling = FillingOf(tile, {left - block.left, top - block.top},
                                              {piece.right - piece.left, piece.bottom - piece.top});
            filling.Draw(hDC, piece, WholeOf(filling));
        }
    }
}

}  // namespace mvp::richtext
