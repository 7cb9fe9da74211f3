// The first step of loading an image: a bitmap or icon handle from what a tag names.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/handle.h"
#include "richtext/resource_finder.h"

namespace mvp::richtext {

// The size in a bitmap's header, which begins `bytes`, if all the pixels it promises lie in the
// `nBytes` from the header on. Nothing for compressed bitmaps, and for sizes beyond those of a
// picture.
std::optional<SIZE> ReadBitmapHeader(std::span<const std::uint8_t> bytes, std::uint64_t nBytes);

// Empty when there is no such bitmap, or it may not be opened.
Bitmap LoadBitmapFile(std::string_view file);
Bitmap LoadBitmapResource(const CResourceFinder& resources, std::string_view module,
                          std::string_view idres);

// In the given size; 0: the system's size of icons.
Icon LoadIconFile(std::string_view file, SIZE size);
Icon LoadIconResource(const CResourceFinder& resources, std::string_view module,
                      std::string_view idres, SIZE size);

// A handle's value as markup writes it, decimal or with 0x.
HANDLE ReadHandle(std::string_view value);

}  // namespace mvp::richtext
