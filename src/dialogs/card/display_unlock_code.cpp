#include "mvpingui/display_unlock_code.h"

#include <vkerrmes/vkerrmes.h>

#include "dialogs/card/code_groups.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "services/log.h"
#include "services/registry_readers.h"
#include "services/resource_module.h"
#include "services/text_view.h"
#include "services/wipe.h"
#include "settings/settings.h"

namespace {

constexpr mvp::NumberSetting kSetting = mvp::settings::kDisplayUnlockCode;
constexpr DWORD kDisplayed = 1;
constexpr int kNoCallback = -1;
// Free text rather than one of the message-box module's own messages.
constexpr int kFreeText = -1;

class SecretText {
public:
    SecretText() = default;
    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;
    ~SecretText() { mvp::Wipe(str); }

    CString str;
};

int FetchCode(void* pContext, MvpGetUnlockCodeCallback pfnGetUnlockCode, CString& strCode) {
    const CWaitCursor wait;
    if (pfnGetUnlockCode == nullptr) {
        return kNoCallback;
    }
    return mvp::Guarded(
        MVPINGUI_CARD_FAILED, [&] { return pfnGetUnlockCode(pContext, strCode); },
        mvp::LogException("DisplayUnlockCode: the get-unlock-code callback"));
}

bool IsToBeDisplayed() {
    DWORD setting = kSetting.nDefault;
    readDWORDFromRegistry_sz(kSetting.pszKey, kSetting.pszName, &setting, kSetting.nDefault);
    return setting == kDisplayed;
}

void TellThereIsNone(CWnd* pParent) {
    const CString text = mvp::ResourceString(IDS_UNLOCK_CODE_NONE);
    MessageBoxA(pParent != nullptr ? pParent->m_hWnd : nullptr, text, "Veskara",
                MB_ICONINFORMATION);
}

void TellFailure(int nCode) {
    vklogLog(g_szLogTag, kLogInfo, "pGetUnlockCode returned an error (%d)", nCode);
    const CString text =
        mvp::FormatResourceText(IDS_UNLOCK_CODE_FAILED_FORMAT, mvp::ErrorText(nCode));
    VKErrMesDisplayEx(kFreeText, text, 0, 0, 0);
}

// Whether the user has accepted the code and need not see it again. While it is shown it stands in
// the dialog alone.
bool ShowCode(CWnd* pParent, CString& strCode, const char* pszReader) {
    SecretText grouped;
    grouped.str = mvp::GroupByFour<CString>(mvp::View(strCode));
    mvp::Wipe(strCode);
    if (!IsToBeDisplayed()) {
        return false;
    }
    CDisplayUnlockCodeDlg dialog(pParent, grouped.str, pszReader, 0);
    mvp::Wipe(grouped.str);
    return dialog.DoModal() == IDOK;
}

int FetchAndShow(CWnd* pParent, void* pContext, MvpGetUnlockCodeCallback pfnGetUnlockCode,
                 MvpNeverDisplayCallback pfnNeverDisplay, const char* pszReader) {
    SecretText code;
    const int result = FetchCode(pContext, pfnGetUnlockCode, code.str);
    if (result != MVPINGUI_CARD_OK) {
        TellFailure(result);
        return 0;
    }
    vklogLog(g_szLogTag, kLogInfo, "pGetUnlockCode returned VK_OBJ_API_OK");
    if (code.str.IsEmpty()) {
        TellThereIsNone(pParent);
        return 1;
    }
    if (!ShowCode(pParent, code.str, pszReader)) {
        return 0;
    }
    if (pfnNeverDisplay != nullptr) {
        mvp::Guarded([=] { pfnNeverDisplay(pContext); },
                     mvp::LogException("DisplayUnlockCode: the never-display callback"));
    }
    return 1;
}

}  // namespace

extern "C" int DisplayUnlockCode(CWnd* pParent, void* pContext,
                                 MvpGetUnlockCodeCallback pfnGetUnlockCode,
                                 MvpNeverDisplayCallback pfnNeverDisplay, const char* pszReader) {
    vklogLog(g_szLogTag, kLogEntry, "DisplayUnlockCode");
    const int result = mvp::Guarded(
        0,
        [=] {
            return FetchAndShow(pParent, pContext, pfnGetUnlockCode, pfnNeverDisplay, pszReader);
        },
        mvp::LogException("DisplayUnlockCode"));
    vklogLog(g_szLogTag, kLogExit, "DisplayUnlockCode (%d)", result);
    return result;
}
