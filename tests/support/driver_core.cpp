#include "support/driver_core.h"

#include "common/thread_windows.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

bool Matches(HWND hWnd, const DialogMatch& match) {
    return ClassOf(hWnd) == match.strClass &&
           (match.strTitle.empty() || TitleOf(hWnd) == match.strTitle) &&
           (!match.isWanted || match.isWanted(hWnd));
}

}  // namespace

LRESULT DriverCore::Send(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR dwResult = 0;
    if (SendMessageTimeoutA(hWnd, nMessage, wParam, lParam, SMTO_ABORTIFHUNG,
                            static_cast<UINT>(m_deadline.count()), &dwResult) == 0)
        throw DriverFailure("no answer to message " + std::to_string(nMessage) + " within " +
                            InMilliseconds(m_deadline));
    return static_cast<LRESULT>(dwResult);
}

HWND DriverCore::FindDialog(const DialogMatch& match) const {
    for (HWND hWnd : VisibleWindows(m_ui.Id()))
        if (IsWindowEnabled(hWnd) && !m_inHand.contains(hWnd) && Matches(hWnd, match))
            return hWnd;
    return nullptr;
}

Dialog DriverCore::WaitForDialog(const DialogMatch& match) {
    HWND hFound = nullptr;
    const bool bFound = WaitFor(m_deadline, [&] {
        hFound = FindDialog(match);
        if (hFound == nullptr)
            return false;
        // Answered once the dialog's initialisation is over, which may have closed it again.
        DWORD_PTR dwResult = 0;
        return SendMessageTimeoutA(hFound, WM_NULL, 0, 0, SMTO_ABORTIFHUNG,
                                   static_cast<UINT>(m_deadline.count()), &dwResult) != 0 &&
               IsWindowVisible(hFound) && IsWindowEnabled(hFound);
    });
    if (!bFound)
        throw DriverFailure("waited " + InMilliseconds(m_deadline) + " for " +
                            match.strDescription + "; open are: " + DescribeWindows());
    m_inHand.insert(hFound);
    return {*this, hFound};
}

void DriverCore::WaitGone(HWND hWnd) {
    if (!WaitFor(m_deadline, [&] { return IsGone(hWnd); }))
        throw DriverFailure("the dialog \"" + TitleOf(hWnd) + "\" is still open after " +
                            InMilliseconds(m_deadline));
    m_inHand.erase(hWnd);
}

std::vector<HWND> DriverCore::OpenDialogs() const {
    std::vector<HWND> dialogs;
    for (HWND hWnd : VisibleWindows(m_ui.Id()))
        if ((m_inHand.contains(hWnd) || IsDialog(hWnd)) && !m_leftOpen.contains(hWnd))
            dialogs.push_back(hWnd);
    return dialogs;
}

std::string DriverCore::DescribeWindows() const {
    std::string strText;
    for (HWND hWnd : VisibleWindows(m_ui.Id())) {
        strText += strText.empty() ? "" : ", ";
        strText += ClassOf(hWnd) + " \"" + TitleOf(hWnd) + "\"";
        strText += IsWindowEnabled(hWnd) ? "" : " (disabled)";
    }
    return strText.empty() ? "none" : strText;
}

}  // namespace mvp::test
