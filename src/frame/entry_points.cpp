#include <cstdlib>

#include <vkerrmes/vkerrmes.h>

#include "frame/module.h"
#include "mvpingui/about_dialog.h"
#include "mvpingui/mvpingui.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/error_text.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace {

// Free text rather than one of the message-box module's own messages.
constexpr int kFreeText = -1;
constexpr int kAccepted = 1;

}  // namespace

extern "C" const char* GetErrorString(int32_t nCode) {
    return mvp::ErrorText(nCode);
}

extern "C" uint32_t DisplayLastPINTry(const char* pszReader) {
    const mvp::LogScope scope("--->DisplayLastPINTry", "<---DisplayLastPINTry");
    return mvp::Guarded(
        MVPINGUI_REFUSED,
        [=] {
            const CString text = mvp::ResourceString(IDS_LAST_PIN_TRY);
            const int answer = VKErrMesDisplayExWithParentParamAndReader(
                nullptr, kFreeText, text, 0, 0, 0, nullptr, pszReader);
            return answer == kAccepted ? MVPINGUI_OK : MVPINGUI_REFUSED;
        },
        mvp::LogException("DisplayLastPINTry"));
}

extern "C" uint32_t ShowAbout(int32_t nColorMode, const void* /*pIgnored*/,
                              const char* pszCaption) {
    const mvp::LogScope scope("ShowAbout");
    return mvp::Guarded(
        MVPINGUI_REFUSED,
        [=] { return static_cast<uint32_t>(CAboutDlg(nColorMode, nullptr, pszCaption).DoModal()); },
        mvp::LogException("ShowAbout"));
}

extern "C" void SetPinPromptString(const char* pszPrompt) {
    const mvp::LogScope scope("SetPinPromptString");
    mvp::Guarded([=] { mvp::Module().strPrompt = pszPrompt; },
                 mvp::LogException("SetPinPromptString"));
}

extern "C" void FreeGetPinBuffer(char* pBuffer, size_t cbPin) {
    const mvp::LogScope scope("--->FreeBuffer", "<---FreeBuffer");
    mvp::Module().nPinDialogInProgress = 0;
    if (pBuffer == nullptr) {
        return;
    }
    SecureZeroMemory(pBuffer, cbPin);
    std::free(pBuffer);
}
