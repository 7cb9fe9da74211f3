#include "dialogs/base/secret_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/critical_section.h"
#include "platform/system_library.h"
#include "services/log.h"

namespace mvp {

namespace {

constexpr std::size_t kPageSize = 4096;

std::size_t SizeOf(const wchar_t* pPages) {
    MEMORY_BASIC_INFORMATION info{};
    VirtualQuery(pPages, &info, sizeof info);
    return info.RegionSize;
}

// Systems before Windows 10 lack these two.
void LeaveOutOfErrorReports(const wchar_t* pPages, std::size_t nBytes) {
    static const auto exclude = FindFunction<HRESULT(WINAPI*)(const void*, DWORD)>(
        GetModuleHandleA("kernel32.dll"), "WerRegisterExcludedMemoryBlock");
    if (exclude != nullptr) {
        exclude(pPages, static_cast<DWORD>(nBytes));
    }
}

void ForgetInErrorReports(const wchar_t* pPages) {
    static const auto forget = FindFunction<HRESULT(WINAPI*)(const void*)>(
        GetModuleHandleA("kernel32.dll"), "WerUnregisterExcludedMemoryBlock");
    if (forget != nullptr) {
        forget(pPages);
    }
}

SecretPages AllocatePages(std::size_t nBytes) {
    SecretPages pages(static_cast<wchar_t*>(
        VirtualAlloc(nullptr, nBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!pages) {
        vklogLog(g_szLogTag, kLogError, "SecretStore: VirtualAlloc failed: %lu", GetLastError());
        return pages;
    }
    if (!VirtualLock(pages.get(), nBytes)) {
        vklogLog(g_szLogTag, kLogError,
                 "SecretStore: VirtualLock failed: %lu; the page file may get what is typed",
                 GetLastError());
    }
    LeaveOutOfErrorReports(pages.get(), nBytes);
    return pages;
}

}  // namespace

void SecretPagesTraits::Close(Handle handle) noexcept {
    const std::size_t size = SizeOf(handle);
    SecureZeroMemory(handle, size);
    ForgetInErrorReports(handle);
    VirtualUnlock(handle, size);
    VirtualFree(handle, 0, MEM_RELEASE);
}

// Wipes what is left when it is itself destroyed, with the library.
class LiveStores {
public:
    LiveStores() noexcept = default;
    LiveStores(const LiveStores&) = delete;
    LiveStores& operator=(const LiveStores&) = delete;
    ~LiveStores() {
        const ScopedLock lock(m_lock);
        for (SecretStore* store = m_pFirst; store != nullptr; store = store->m_pNext) {
            // All of it: its thread may have died while it changed the text.
            SecureZeroMemory(store->m_pages.get(), store->m_nCapacity * sizeof(wchar_t));
        }
    }

    void Add(SecretStore& store) noexcept {
        const ScopedLock lock(m_lock);
        store.m_pNext = std::exchange(m_pFirst, &store);
    }
    void Remove(SecretStore& store) noexcept {
        const ScopedLock lock(m_lock);
        SecretStore** link = &m_pFirst;
        while (*link != &store) {
            link = &(*link)->m_pNext;
        }
        *link = store.m_pNext;
    }

private:
    CriticalSection m_lock;
    SecretStore* m_pFirst = nullptr;
};

namespace {

LiveStores g_liveStores;

}  // namespace

SecretStore::SecretStore() noexcept {
    g_liveStores.Add(*this);
}

SecretStore::~SecretStore() {
    g_liveStores.Remove(*this);
}

bool SecretStore::Reserve(std::size_t nLength) noexcept {
    if (nLength <= m_nCapacity) {
        return true;
    }
    const std::size_t wanted = std::max(nLength, 2 * m_nCapacity) * sizeof(wchar_t);
    const std::size_t size = (wanted + kPageSize - 1) / kPageSize * kPageSize;
    SecretPages pages = AllocatePages(size);
    if (!pages) {
        return false;
    }
    std::copy_n(m_pages.get(), m_nLength, pages.get());
    m_pages = std::move(pages);
    m_nCapacity = size / sizeof(wchar_t);
    return true;
}

wchar_t* SecretStore::Replace(std::size_t nFrom, std::size_t nRemoved,
                              std::size_t nInserted) noexcept {
    const std::size_t from = std::min(nFrom, m_nLength);
    const std::size_t rest = std::min(from + nRemoved, m_nLength);
    wchar_t* gap = m_pages.get() + from;
    const std::size_t length = m_nLength - (rest - from) + nInserted;
    if (m_nLength > 0) {
        std::memmove(gap + nInserted, m_pages.get() + rest, (m_nLength - rest) * sizeof(wchar_t));
    }
    if (length < m_nLength) {
        SecureZeroMemory(m_pages.get() + length, (m_nLength - length) * sizeof(wchar_t));
    }
    m_nLength = length;
    return gap;
}

bool SecretStore::Assign(std::string_view text) noexcept {
    Clear();
    if (text.empty()) {
        return true;
    }
    const std::size_t length = WideLength(text);
    if (!Reserve(length)) {
        return false;
    }
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                        Replace(0, 0, length), static_cast<int>(length));
    return true;
}

std::size_t WideLength(std::string_view text) noexcept {
    return text.empty() ? 0
                        : static_cast<std::size_t>(MultiByteToWideChar(
                              CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0));
}

std::size_t NarrowLength(std::wstring_view text) noexcept {
    return text.empty() ? 0
                        : static_cast<std::size_t>(WideCharToMultiByte(
                              CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                              nullptr, nullptr));
}

std::size_t CopyNarrow(std::wstring_view text, char* pTarget, std::size_t nRoom) noexcept {
    const std::size_t length = NarrowLength(text);
    if (length <= nRoom) {
        return static_cast<std::size_t>(
            WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), pTarget,
                                static_cast<int>(length), nullptr, nullptr));
    }
    std::array<char, 8> bytes{};
    std::size_t written = 0;
    while (!text.empty()) {
        const bool pair = text.size() > 1 && IS_SURROGATE_PAIR(text[0], text[1]);
        const int units = pair ? 2 : 1;
        const auto count = static_cast<std::size_t>(
            WideCharToMultiByte(CP_ACP, 0, text.data(), units, bytes.data(),
                                static_cast<int>(bytes.size()), nullptr, nullptr));
        if (count > nRoom - written) {
            break;
        }
        std::copy_n(bytes.data(), count, pTarget + written);
        written += count;
        text.remove_prefix(static_cast<std::size_t>(units));
    }
    SecureZeroMemory(bytes.data(), bytes.size());
    return written;
}

}  // namespace mvp
