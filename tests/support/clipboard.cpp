#include "support/clipboard.h"

#include <windows.h>

#include <cstring>

#include "platform/handle.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

struct GlobalTraits {
    using Handle = HGLOBAL;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { GlobalFree(handle); }
};

mvp::UniqueHandle<GlobalTraits> GlobalText(std::string_view text) {
    mvp::UniqueHandle<GlobalTraits> memory(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1));
    if (auto* pText = static_cast<char*>(GlobalLock(memory.get()))) {
        std::memcpy(pText, text.data(), text.size());
        pText[text.size()] = '\0';
        GlobalUnlock(memory.get());
    }
    return memory;
}

class ClipboardScope {
public:
    explicit ClipboardScope(std::chrono::milliseconds timeout)
        : m_bOpen(WaitFor(timeout, [] { return OpenClipboard(nullptr) != FALSE; })) {}
    ClipboardScope(const ClipboardScope&) = delete;
    ClipboardScope& operator=(const ClipboardScope&) = delete;
    ~ClipboardScope() {
        if (m_bOpen)
            CloseClipboard();
    }
    bool IsOpen() const { return m_bOpen; }

private:
    bool m_bOpen;
};

}  // namespace

void SetClipboardText(std::string_view text, std::chrono::milliseconds timeout) {
    const ClipboardScope clipboard(timeout);
    if (!clipboard.IsOpen())
        throw DriverFailure("the clipboard was not free within " + InMilliseconds(timeout));
    EmptyClipboard();
    auto memory = GlobalText(text);
    if (SetClipboardData(CF_TEXT, memory.get()) == nullptr)
        throw DriverFailure("the clipboard took no text, error " + std::to_string(GetLastError()));
    memory.release();  // the clipboard's now
}

}  // namespace mvp::test
