// The first step of loading an image: a bitmap or icon handle from what a tag names.
#pragma once

#include <windows.h>

#include <string_view>

#include "platform/handle.h"
#include "richtext/pictures/resource_finder.h"

namespace mvp::richtext {

// Empty when there is no such bitmap, when it may not be opened, when it does not hold what its
// headers promise, when it is compressed or larger than a picture may be.
Bitmap LoadPictureFile(std::string_view file);
Bitmap LoadPictureResource(const ResourceFinder& resources, std::string_view module,
                           std::string_view idres);

// In the given size; 0: the system's size of icons.
Icon LoadIconFile(std::string_view file, SIZE size);
Icon LoadIconResource(const ResourceFinder& resources, std::string_view module,
                      std::string_view idres, SIZE size);

// A handle's value as markup writes it, decimal or with 0x.
HANDLE ReadHandle(std::string_view value);

}  // namespace mvp::richtext
