#include "pinhost/password_source.h"

#include <utility>

#include <mvpingui/popup_alert.h>

#include "pinhost/command.h"
#include "pinhost/secret.h"

namespace pinhost {
namespace {

mvp::KernelHandle MakeEvent() {
    mvp::KernelHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    if (!event) {
        throw EnvironmentError("no event, error " + std::to_string(GetLastError()));
    }
    return event;
}

}  // namespace

PasswordSource* PasswordSource::s_pSource = nullptr;

PasswordSource::PasswordSource(std::string strPassword, std::chrono::milliseconds delay)
    : m_strPassword(std::move(strPassword)),
      m_delay(delay),
      m_stop(MakeEvent()),
      m_done(MakeEvent()) {
    s_pSource = this;
}

PasswordSource::~PasswordSource() {
    SetEvent(m_stop.get());
    if (m_bStarted) {
        // It has nothing else to wait for.
        WaitForSingleObject(m_done.get(), INFINITE);
    }
    s_pSource = nullptr;
    Wipe(m_strPassword.data(), m_strPassword.size());
}

// The last thing it does of the source's is to say that it is done.
DWORD WINAPI PasswordSource::Fetch(void* pPopup) {
    const PasswordSource& source = *s_pSource;
    const auto delay = static_cast<DWORD>(source.m_delay.count());
    if (WaitForSingleObject(source.m_stop.get(), delay) == WAIT_TIMEOUT) {
        source.Deliver(static_cast<HWND>(pPopup));
    }
    SetEvent(source.m_done.get());
    return 0;
}

void PasswordSource::Deliver(HWND hPopup) const {
    char* text = NewPopupText(m_strPassword.c_str());
    if (text == nullptr ||
        PostMessageA(hPopup, WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(text))) {
        return;
    }
    // Nobody has taken it over.
    Wipe(text, m_strPassword.size());
    HeapFree(GetProcessHeap(), 0, text);
}

}  // namespace pinhost
