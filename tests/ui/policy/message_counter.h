// Counts the messages that reach windows:
//
//     MessageCounter messages({hIcon, hText});
//     panel.VerifyAndUpdatePolicies(...);
//     EXPECT_EQ(messages.Count(STM_SETICON), 0);
//
// On the windows' thread.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <map>
#include <utility>
#include <vector>

namespace mvp::test {

class MessageCounter {
public:
    explicit MessageCounter(std::vector<HWND> windows) : m_windows(std::move(windows)) {
        for (const HWND hWnd : m_windows)
            SetWindowSubclass(hWnd, &Receive, kId, reinterpret_cast<DWORD_PTR>(this));
    }
    MessageCounter(const MessageCounter&) = delete;
    MessageCounter& operator=(const MessageCounter&) = delete;
    ~MessageCounter() {
        for (const HWND hWnd : m_windows)
            RemoveWindowSubclass(hWnd, &Receive, kId);
    }

    int Count(UINT nMessage) const {
        int nCount = 0;
        for (const auto& [key, n] : m_counts)
            nCount += key.second == nMessage ? n : 0;
        return nCount;
    }
    int Count(HWND hWnd, UINT nMessage) const {
        const auto found = m_counts.find({hWnd, nMessage});
        return found == m_counts.end() ? 0 : found->second;
    }
    void Clear() { m_counts.clear(); }

private:
    static constexpr UINT_PTR kId = 0x4D43;

    static LRESULT CALLBACK Receive(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam,
                                    UINT_PTR /*nId*/, DWORD_PTR nCounter) {
        ++reinterpret_cast<MessageCounter*>(nCounter)->m_counts[{hWnd, nMessage}];
        return DefSubclassProc(hWnd, nMessage, wParam, lParam);
    }

    std::vector<HWND> m_windows;
    std::map<std::pair<HWND, UINT>, int> m_counts;
};

}  // namespace mvp::test
