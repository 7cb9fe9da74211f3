// The pictures of a text's image tags: loads them once, on first use, and owns them.
//
// Everything a tag says is checked before the system is asked: sizes are read from a file's or a
// resource's own header first, handles are looked up by the system, which refuses wrong ones, and
// image lists, whose handles are addresses, are taken only when the host has named them with
// AllowImageList. What cannot be had is an empty picture, and nothing is drawn for it.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <compare>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "richtext/document/styled_document.h"
#include "richtext/pictures/picture.h"
#include "richtext/pictures/resource_finder.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

// How an image is to be drawn besides where it comes from.
struct PictureRequest {
    ImageDescription image;
    Colour mask = kNoColour;
    ImageStyle style = ImageStyle::Normal;
};

class PictureStore {
public:
    explicit PictureStore(FindResourceModule pfnFind) : m_resources(pfnFind) {}

    const ResourceFinder& Resources() const { return m_resources; }

    // The list stays the host's and must outlive the store or its next Clear.
    void AllowImageList(HIMAGELIST hImageList) { m_aLists.push_back(hImageList); }

    // Forgets all pictures; files and handles are looked at anew.
    void Clear();

    ImageSize SizeOf(const ImageDescription& image);
    // The number of images in an image list, 1 for other images, 0 for none.
    std::int32_t CountOf(const ImageDescription& image);

    void Draw(HDC hDC, const PictureRequest& request, const RECT& place);
    // Fills `block` with the picture side by side; draws what lies in `dirty` of it.
    void DrawTiled(HDC hDC, const PictureRequest& request, const RECT& block, const RECT& dirty);

private:
    struct Key {
        ImageKind kind = ImageKind::Bitmap;
        std::string strResource;
        std::string strModule;
        std::string strHandle;
        std::string strFile;
        std::int32_t nIndex = 0;  // of an icon or a list of the host; strips are kept whole
        Colour mask = kNoColour;
        SIZE size{};  // of an icon, which is made in the size it is drawn in
        bool bDisabled = false;

        bool operator<(const Key& other) const;
    };

    static Key KeyOf(const ImageDescription& image, Colour mask, SIZE size);
    const Picture& Get(const Key& key);
    Picture Load(const Key& key) const;
    Picture LoadBitmapOf(const Key& key) const;
    Picture LoadIconOf(const Key& key) const;
    Picture LoadListImage(const Key& key) const;
    HIMAGELIST ListOf(std::string_view handle) const;
    SIZE IconSizeOf(const ImageDescription& image) const;

    ResourceFinder m_resources;
    std::vector<HIMAGELIST> m_aLists;
    std::map<Key, Picture> m_pictures;
    std::int64_t m_nPixels = 0;  // of all of them
};

}  // namespace mvp::richtext
