// How much private memory the process holds.
#pragma once

#include <windows.h>

#include <cstddef>

namespace mvp::bench {

inline std::size_t PrivateBytes() {
    std::size_t bytes = 0;
    MEMORY_BASIC_INFORMATION info{};
    for (const char* p = nullptr; VirtualQuery(p, &info, sizeof info) != 0;
         p = static_cast<const char*>(info.BaseAddress) + info.RegionSize) {
        bytes += info.State == MEM_COMMIT && info.Type == MEM_PRIVATE ? info.RegionSize : 0;
    }
    return bytes;
}

}  // namespace mvp::bench
