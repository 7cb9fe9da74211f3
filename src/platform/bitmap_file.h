// Loads bitmaps that nobody vouches for: the file is read once, checked (bitmap_image.h), and the
// bitmap is made from the bytes that were checked, so that neither a false header nor a change of
// the file in between reaches the system. Any thread.
//
//     const Bitmap banner = LoadBitmapFile("C:\\pictures\\banner.bmp");
#pragma once

#include <cstdint>
#include <vector>

#include "platform/bitmap_image.h"
#include "platform/handle.h"

namespace mvp {

// Larger files are refused unread: the largest picture, its headers and some room.
constexpr std::uint64_t kMaxBitmapFile = kMaxBitmapPixels * 4 + 65536;

// The bytes of a file on a disk. Empty when there is none, when it is empty or larger than `nMost`,
// and for what only looks like a file: devices and pipes are not waited for. Throws std::bad_alloc.
std::vector<std::uint8_t> ReadDiskFile(const char* pszFile, std::uint64_t nMost);

// A copy of the picture, 32 bits a pixel; the fourth byte is the file's where it has one, else 0.
// Empty when the system has no memory.
Bitmap MakeBitmap(const BitmapImage& image) noexcept;

// In its natural size. Empty when the file cannot be read, is no bitmap that holds what it
// promises, or memory runs out.
Bitmap LoadBitmapFile(const char* pszFile) noexcept;

}  // namespace mvp
