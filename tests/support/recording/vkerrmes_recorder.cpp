// Stands in for vkerrmes in tests: no box appears, the test hears of the call and answers it.
#include "suite/vkerrmes/vkerrmes.h"
#include "support/recording/recording.h"

namespace {

// Boxes are shown on the user-interface thread alone.
mvp::test::MessageBoxReceiver g_receiver = nullptr;
void* g_pContext = nullptr;

int Record(const mvp::test::MessageBoxArguments& arguments, const char* pszText,
           const char* pszReader) {
    return g_receiver != nullptr ? g_receiver(g_pContext, arguments, pszText, pszReader) : 1;
}

}  // namespace

extern "C" __declspec(dllexport) void VKErrMesRecordTo(mvp::test::MessageBoxReceiver receiver,
                                                       void* pContext) {
    g_receiver = receiver;
    g_pContext = pContext;
}

int VKErrMesDisplayEx(int nMessageType, const char* pszText, UINT nButtons, UINT nIcon,
                      UINT nFlags) {
    return Record({false, nullptr, nMessageType, nButtons, nIcon, nFlags, nullptr}, pszText,
                  nullptr);
}

int VKErrMesDisplayExWithParentParamAndReader(HWND hParent, int nMessageType, const char* pszText,
                                              UINT nButtons, UINT nIcon, UINT nFlags,
                                              const void* pReserved, const char* pszReader) {
    return Record({true, hParent, nMessageType, nButtons, nIcon, nFlags, pReserved}, pszText,
                  pszReader);
}
