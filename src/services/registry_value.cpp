#include "services/registry_value.h"

#include <algorithm>

#include "platform/machine_registry.h"

namespace mvp {

RegistryRead ReadRegistry(const RegistryValue& value, void* pData, DWORD capacity,
                          DWORD type) noexcept {
    RegistryRead read;
    const auto failed = [&](RegistryStep step) {
        if (read.error != ERROR_SUCCESS) {
            read.failed = step;
        }
        return read.error != ERROR_SUCCESS;
    };
    RegistryKey key;
    read.error = value.hRoot == HKEY_LOCAL_MACHINE
                     ? OpenMachineKey(value.pszKey, value.access, key)
                     : RegOpenKeyExA(value.hRoot, value.pszKey, 0, value.access, key.put());
    if (failed(RegistryStep::OpenKey)) {
        return read;
    }
    read.error =
        RegQueryValueExA(key.get(), value.pszName, nullptr, &read.type, nullptr, &read.size);
    if (failed(RegistryStep::QueryValue)) {
        return read;
    }
    if (type != kAnyRegistryType && read.type != type) {
        read.failed = RegistryStep::CheckType;
        return read;
    }
    // The size again: the value may have grown since.
    DWORD size = std::min(read.size, capacity);
    read.error = RegQueryValueExA(key.get(), value.pszName, nullptr, nullptr,
                                  static_cast<BYTE*>(pData), &size);
    failed(RegistryStep::ReadData);
    return read;
}

}  // namespace mvp
