// Bitmaps in the size of their place.
#pragma once

#include "platform/handle.h"
#include "platform/pixel_scale.h"

namespace mvp {

// Of a bitmap that is selected nowhere. 0 by 0 when it is none.
PixelSize SizeOf(const Bitmap& bitmap) noexcept;

// The bitmap in another size, 32 bits a pixel. As it is, when it has that size, and when there is
// none, no memory, or more in `size` than a picture may have (bitmap_image.h).
Bitmap Scaled(Bitmap bitmap, PixelSize size, Scaling scaling) noexcept;

// The same, in the size that it has on a screen of `nDpi`.
Bitmap ScaledTo(int nDpi, Bitmap bitmap, Scaling scaling) noexcept;

}  // namespace mvp
