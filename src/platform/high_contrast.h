// The colours of somebody who cannot read others.
#pragma once

#include <windows.h>

namespace mvp {

// Whether the user has asked the system for high contrast: what is drawn then has the system's
// colours alone.
inline bool IsHighContrast() noexcept {
    HIGHCONTRASTA contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != FALSE &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

}  // namespace mvp
