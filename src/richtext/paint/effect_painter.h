// Paints a background effect: the gradients through the system's gradient fill, what the system has
// no call for from the pixels of background_effects.h.
#pragma once

#include <windows.h>

#include "richtext/document/styled_document.h"

namespace mvp::richtext {

// Fills what lies in `dirty` of the block; the effect is laid out over the whole block.
void DrawEffect(HDC hDC, const Decoration& decoration, const RECT& block, const RECT& dirty);

}  // namespace mvp::richtext
