// One move-only owner for every kind of operating-system handle.
//
// A kind is a traits type: the handle's type, the value that stands for "none", and how one is
// given back. Functions that make a handle return the owner; `get()` lends the handle, `release()`
// gives it away, and the destructor closes what is left:
//
//     mvp::RegistryKey key = ...;
//     RegQueryValueExA(key.get(), ...);
#pragma once

#include <windows.h>

#include <utility>

namespace mvp {

template <class Traits>
class UniqueHandle {
public:
    using Handle = typename Traits::Handle;

    UniqueHandle() noexcept = default;
    explicit UniqueHandle(Handle handle) noexcept : m_handle(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : m_handle(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { reset(); }

    Handle get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle != Traits::None(); }
    Handle release() noexcept { return std::exchange(m_handle, Traits::None()); }

    void reset(Handle handle = Traits::None()) noexcept {
        const Handle old = std::exchange(m_handle, handle);
        if (old != Traits::None()) {
            Traits::Close(old);
        }
    }

    // For functions that return the handle through a pointer: closes what was held.
    Handle* put() noexcept {
        reset();
        return &m_handle;
    }

private:
    Handle m_handle = Traits::None();
};

// Events, threads, mutexes, processes: whatever CloseHandle takes and null stands for none.
struct KernelHandleTraits {
    using Handle = HANDLE;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { CloseHandle(handle); }
};
using KernelHandle = UniqueHandle<KernelHandleTraits>;

// Files, whose "none" is INVALID_HANDLE_VALUE.
struct FileHandleTraits {
    using Handle = HANDLE;
    static Handle None() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) noexcept { CloseHandle(handle); }
};
using FileHandle = UniqueHandle<FileHandleTraits>;

struct RegistryKeyTraits {
    using Handle = HKEY;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { RegCloseKey(handle); }
};
using RegistryKey = UniqueHandle<RegistryKeyTraits>;

struct ModuleTraits {
    using Handle = HMODULE;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { FreeLibrary(handle); }
};
using ModuleHandle = UniqueHandle<ModuleTraits>;

struct IconTraits {
    using Handle = HICON;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DestroyIcon(handle); }
};
using Icon = UniqueHandle<IconTraits>;

// Brushes, fonts, bitmaps, pens, regions, by the type of their handle.
template <class GdiHandle>
struct GdiObjectTraits {
    using Handle = GdiHandle;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DeleteObject(handle); }
};
using Brush = UniqueHandle<GdiObjectTraits<HBRUSH>>;
using Font = UniqueHandle<GdiObjectTraits<HFONT>>;
using Bitmap = UniqueHandle<GdiObjectTraits<HBITMAP>>;
using Pen = UniqueHandle<GdiObjectTraits<HPEN>>;
using Region = UniqueHandle<GdiObjectTraits<HRGN>>;

// A device context made by CreateCompatibleDC or CreateDC.
struct MemoryDcTraits {
    using Handle = HDC;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DeleteDC(handle); }
};
using MemoryDc = UniqueHandle<MemoryDcTraits>;

// A window's (or, with null, the screen's) device context, given back with ReleaseDC.
class WindowDc {
public:
    explicit WindowDc(HWND hWnd) noexcept : m_hWnd(hWnd), m_hDC(GetDC(hWnd)) {}
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    ~WindowDc() {
        if (m_hDC != nullptr) {
            ReleaseDC(m_hWnd, m_hDC);
        }
    }
    HDC get() const noexcept { return m_hDC; }

private:
    HWND m_hWnd;
    HDC m_hDC;
};

// An object selected into a device context for as long as this lives.
class DcSelection {
public:
    DcSelection(HDC hDC, HGDIOBJ object) noexcept : m_hDC(hDC), m_old(SelectObject(hDC, object)) {}
    DcSelection(const DcSelection&) = delete;
    DcSelection& operator=(const DcSelection&) = delete;
    ~DcSelection() {
        if (m_old != nullptr) {
            SelectObject(m_hDC, m_old);
        }
    }

private:
    HDC m_hDC;
    HGDIOBJ m_old;
};

}  // namespace mvp
