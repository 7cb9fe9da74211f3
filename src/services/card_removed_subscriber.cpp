#include "services/card_removed_subscriber.h"

#include <mbstring.h>
#include <objbase.h>

#include "platform/barrier.h"
#include "platform/own_module.h"
#include "platform/system_library.h"
#include "services/log.h"

namespace {

// COM is loaded with the first dialog that watches a card: a host may have no other use for it. It
// stays, and stays initialised: what else runs on the thread may have come to count on it.
void InitializeCom() noexcept {
    static const HMODULE ole = mvp::LoadSystemLibrary("ole32.dll").release();
    if (const auto initializeFunction =
            mvp::FindFunction<decltype(&CoInitialize)>(ole, "CoInitialize")) {
        (void)initializeFunction(nullptr);
    }
}

const unsigned char* Bytes(const char* pszText) {
    return reinterpret_cast<const unsigned char*>(pszText);
}

}  // namespace

VKDelegateSubscriberCardRemoved::VKDelegateSubscriberCardRemoved(CWnd* pWnd, UINT nMessage,
                                                                 const CString& strReader)
    : m_hTarget(pWnd != nullptr ? pWnd->m_hWnd : nullptr),
      m_nMessage(nMessage),
      m_strReader(strReader),
      m_nTargetThread(GetCurrentThreadId()),
      m_library(mvp::HoldOwnModule()) {
    const mvp::LogScope scope("VKDelegateSubscriberCardRemoved Constructor");
    InitializeCom();
    const int result = Subscribe(VKEVENT_CARD_REMOVED);
    if (result != 0) {
        vklogLog(g_szLogTag, kLogError, "Subscribe failed (%d)", result);
    }
}

VKDelegateSubscriberCardRemoved::~VKDelegateSubscriberCardRemoved() {
    const mvp::LogScope scope("VKDelegateSubscriberCardRemoved Destructor");
    UnSubscribe();
}

bool VKDelegateSubscriberCardRemoved::Concerns(const VKEvent& event) const {
    if (m_strReader.IsEmpty()) {
        return true;
    }
    return event.pszReaderName != nullptr &&
           _mbsicmp(Bytes(event.pszReaderName), Bytes(m_strReader)) == 0;
}

bool VKDelegateSubscriberCardRemoved::IsTargetThere() const {
    return GetWindowThreadProcessId(m_hTarget, nullptr) == m_nTargetThread;
}

void VKDelegateSubscriberCardRemoved::HandleEvent(const VKEvent& event) {
    const mvp::LogScope scope("VKDelegateSubscriberCardRemoved::HandleEvent");
    mvp::Guarded(
        [&] {
            if (IsTargetThere() && Concerns(event)) {
                ::PostMessageA(m_hTarget, m_nMessage, 1, 0);
            }
        },
        mvp::LogException("VKDelegateSubscriberCardRemoved::HandleEvent"));
}

CCardRemoved::CCardRemoved(CHideable* pPopupAlert) : m_pPopupAlert(pPopupAlert) {
    const mvp::LogScope scope("CCardRemoved::CCardRemoved() - contructor");
    Subscribe(VKEVENT_CARD_REMOVED);
}

CCardRemoved::~CCardRemoved() {
    const mvp::LogScope scope("CCardRemoved::~CCardRemoved() - destructor");
    UnSubscribe();
}

void CCardRemoved::HandleEvent(const VKEvent& /*event*/) {
    const mvp::LogScope scope("CCardRemoved::HandleEvent");
    if (m_pPopupAlert == nullptr) {
        vklogLog(g_szLogTag, kLogError, "CCardRemoved::HandleEvent: m_pPopupAlert = NULL");
        return;
    }
    vklogLog(g_szLogTag, kLogInfo, "CCardRemoved::HandleEvent: m_pPopupAlert->Hide ");
    mvp::Guarded([this] { m_pPopupAlert->Hide(); }, mvp::LogException("CCardRemoved::HandleEvent"));
}
