// The functions of the Windows Installer that tell what is installed, as the about box asks them.
//
// The types are the installer's own, spelled without windows.h, so that a made-up installer can
// take its place natively. Each field has the name of its function; null where the installer's
// library lacks it. Errors are the system's; a size is one of characters.
#pragma once

#include <cstdint>

#ifdef _WIN32
#define MVP_INSTALLER_CALL __stdcall
#else
#define MVP_INSTALLER_CALL
#endif

namespace mvp {

constexpr std::uint32_t kInstallerSuccess = 0;
constexpr std::uint32_t kInstallerMoreData = 234;
constexpr std::uint32_t kInstallerNoMoreItems = 259;

template <class... Arguments>
using InstallerFunction = std::uint32_t(MVP_INSTALLER_CALL*)(Arguments...);

// Handles (MSIHANDLE) are numbers; 0 is none.
struct Installer {
    // Product code, property; receives the value and its size without the terminator. With too
    // small a buffer: kInstallerMoreData and that size.
    InstallerFunction<const char*, const char*, char*, std::uint32_t*> MsiGetProductInfoA = nullptr;
    // The same of a patch code.
    InstallerFunction<const char*, const char*, char*, std::uint32_t*> MsiGetPatchInfoA = nullptr;
    // Product code, index; receives the patch code (39 characters with its terminator) and its
    // list of transforms.
    InstallerFunction<const char*, std::uint32_t, char*, char*, std::uint32_t*> MsiEnumPatchesA =
        nullptr;

    // Path, open mode (a number in the place of a text); receives the database.
    InstallerFunction<const char*, const char*, std::uint32_t*> MsiOpenDatabaseA = nullptr;
    // Database, statement; receives the view.
    InstallerFunction<std::uint32_t, const char*, std::uint32_t*> MsiDatabaseOpenViewA = nullptr;
    InstallerFunction<std::uint32_t, int, std::uint32_t*> MsiViewGetColumnInfo = nullptr;
    // View, parameters (0: none).
    InstallerFunction<std::uint32_t, std::uint32_t> MsiViewExecute = nullptr;
    // View; receives the next record.
    InstallerFunction<std::uint32_t, std::uint32_t*> MsiViewFetch = nullptr;
    // Record, field from 1; receives the text as MsiGetProductInfoA does.
    InstallerFunction<std::uint32_t, std::uint32_t, char*, std::uint32_t*> MsiRecordGetStringA =
        nullptr;
    InstallerFunction<std::uint32_t> MsiCloseHandle = nullptr;
    InstallerFunction<> MsiCloseAllHandles = nullptr;
};

// One handle of the installer, closed with its owner, which must not outlive the installer's
// library.
class InstallerHandle {
public:
    // The installer must have MsiCloseHandle.
    explicit InstallerHandle(const Installer& installer) noexcept : m_installer(installer) {}
    InstallerHandle(const InstallerHandle&) = delete;
    InstallerHandle& operator=(const InstallerHandle&) = delete;
    ~InstallerHandle() {
        if (m_nHandle != 0) {
            m_installer.MsiCloseHandle(m_nHandle);
        }
    }

    std::uint32_t get() const noexcept { return m_nHandle; }
    // For the one function that returns the handle through a pointer.
    std::uint32_t* put() noexcept { return &m_nHandle; }

private:
    const Installer& m_installer;
    std::uint32_t m_nHandle = 0;
};

}  // namespace mvp
