// The message boxes that the library shows through vkerrmes while this object lives. None appears;
// each is answered at once.
//
//     MessageBoxRecorder boxes;
//     boxes.SetAnswer(0);
//     EXPECT_EQ(DisplayLastPINTry("Reader A"), 0xFFFFFFFF);
//     ASSERT_EQ(boxes.Calls().size(), 1U);
//     EXPECT_EQ(boxes.Calls()[0].strReader, "Reader A");
//
// It takes the place of vkerrmes in the program and in mvpingui.dll. Use it on the thread that
// shows the boxes, one at a time.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "common/patched_imports.h"

namespace mvp::test {

struct MessageBoxCall {
    // VKErrMesDisplayExWithParentParamAndReader, not VKErrMesDisplayEx, which leaves the parent,
    // what is reserved and the reader null.
    bool bWithParentAndReader;
    HWND hParent;
    int nMessageType;
    UINT nButtons;
    UINT nIcon;
    UINT nFlags;
    const void* pReserved;
    std::string strText;  // null texts are recorded as empty ones
    std::string strReader;
};

class MessageBoxRecorder {
public:
    MessageBoxRecorder() {
        s_calls.clear();
        s_nAnswer = 1;
    }

    // What every box is answered from now on. 1, the accepting answer, at first.
    void SetAnswer(int nAnswer) { s_nAnswer = nAnswer; }

    const std::vector<MessageBoxCall>& Calls() const { return s_calls; }
    void Clear() { s_calls.clear(); }

private:
    static std::string Whole(const char* pszText) { return pszText != nullptr ? pszText : ""; }
    static int Take(const MessageBoxCall& call) {
        s_calls.push_back(call);
        return s_nAnswer;
    }
    static int Notice(int nType, const char* pszText, UINT nButtons, UINT nIcon, UINT nFlags) {
        return Take({false, nullptr, nType, nButtons, nIcon, nFlags, nullptr, Whole(pszText), ""});
    }
    static int Warning(HWND hParent, int nType, const char* pszText, UINT nButtons, UINT nIcon,
                       UINT nFlags, const void* pReserved, const char* pszReader) {
        return Take({true, hParent, nType, nButtons, nIcon, nFlags, pReserved, Whole(pszText),
                     Whole(pszReader)});
    }
    static PatchedImports In(const char* pszModule) {
        return {pszModule,
                {{"VKErrMesDisplayEx", Address(&Notice)},
                 {"VKErrMesDisplayExWithParentParamAndReader", Address(&Warning)}}};
    }

    static inline std::vector<MessageBoxCall> s_calls;
    static inline int s_nAnswer = 1;
    const PatchedImports m_program = In(nullptr);
    const PatchedImports m_library = In("mvpingui.dll");
};

}  // namespace mvp::test
