// The exported functions that need no dialog of the library's own, through the DLL as hosts see it.
#include <string>

#include <dlgfw/module_state.h>
#include <dlgfw/string.h>
#include <gtest/gtest.h>

#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"
#include "support/failing_heap.h"
#include "support/log_recorder.h"
#include "support/message_box_recorder.h"

namespace mvp::test {
namespace {

std::string StringOfModule(UINT nId) {
    static const ModuleHandle module(LoadLibraryExA(R"(.\Resources\Localized\mvpinguirc.dll)",
                                                    nullptr, LOAD_LIBRARY_AS_DATAFILE));
    char text[4096] = "";
    EXPECT_GT(LoadStringA(module.get(), nId, text, sizeof text), 0);
    return text;
}

// First in this program: nothing has called GetErrorString before.
TEST(ErrorText, IsEmptyBeforeTheFirstTextAndOtherCodesLeaveTheLast) {
    EXPECT_STREQ(GetErrorString(0), "");
    EXPECT_STREQ(GetErrorString(13), "");
    EXPECT_EQ(GetErrorString(1), StringOfModule(3059));
    EXPECT_EQ(GetErrorString(13), StringOfModule(3059));
    EXPECT_EQ(GetErrorString(11), StringOfModule(3071));
    EXPECT_EQ(GetErrorString(12), StringOfModule(3069));
    EXPECT_EQ(GetErrorString(14), StringOfModule(3070));
    for (const int code : {0, -1, 15, 1 << 30}) {
        EXPECT_EQ(GetErrorString(code), StringOfModule(3070)) << code;
    }
}

TEST(HostResources, AreFoundAfterInit) {
    CString text;
    EXPECT_FALSE(text.LoadString(IDS_LAST_PIN_TRY));
    InitGUIDll();
    EXPECT_TRUE(text.LoadString(IDS_LAST_PIN_TRY));
    EXPECT_EQ(std::string(text), StringOfModule(3073));
    LPCSTR dialog = MAKEINTRESOURCEA(IDD_ENTER_PIN);
    EXPECT_NE(FindResourceA(AfxFindResourceHandle(dialog, RT_DIALOG), dialog, RT_DIALOG), nullptr);
}

TEST(LastTry, AsksWithTheTextAndTheReader) {
    for (const int answer : {1, 0, 2}) {
        MessageBoxRecorder boxes;
        boxes.SetAnswer(answer);
        EXPECT_EQ(DisplayLastPINTry("Reader A"), answer == 1 ? MVPINGUI_OK : MVPINGUI_REFUSED);
        ASSERT_EQ(boxes.Calls().size(), 1U);
        const MessageBoxCall& call = boxes.Calls()[0];
        EXPECT_TRUE(call.bWithParentAndReader);
        EXPECT_EQ(call.hParent, nullptr);
        EXPECT_EQ(call.nMessageType, -1);
        EXPECT_EQ(call.strText, StringOfModule(3073));
        EXPECT_EQ(call.nButtons + call.nIcon + call.nFlags, 0U);
        EXPECT_EQ(call.pReserved, nullptr);
        EXPECT_EQ(call.strReader, "Reader A");
    }
}

TEST(Operations, TellEntryAndExitUnderTheLibrarysTag) {
    const struct {
        void (*pCall)();
        const char* pszEntry;
        const char* pszExit;
    } cases[] = {
        {[] { GetErrorString(1); }, "GetErrorString", "GetErrorString"},
        {[] { GetErrorString(13); }, "GetErrorString", "GetErrorString"},
        {[] { FreeGetPinBuffer(nullptr, 99); }, "--->FreeBuffer", "<---FreeBuffer"},
        {[] { SetPinPromptString("prompt"); }, "SetPinPromptString", "SetPinPromptString"},
        {[] { SetPinPromptString(nullptr); }, "SetPinPromptString", "SetPinPromptString"},
        {[] { DisplayLastPINTry(nullptr); }, "--->DisplayLastPINTry", "<---DisplayLastPINTry"},
        {[] { InitGUIDll(); }, "InitGUIDll", "InitGUIDll"},
    };
    const MessageBoxRecorder boxes;
    for (const auto& c : cases) {
        LogRecorder log;
        c.pCall();
        EXPECT_EQ(log.Lines(), (std::vector<RecordedLine>{{"MVPINGUI", 8, c.pszEntry},
                                                          {"MVPINGUI", 16, c.pszExit}}))
            << log.Dump();
    }
}

TEST(Operations, StopAndTellWhenMemoryIsShort) {
    LogRecorder log;
    {
        FailingHeap heap("dlgfw.dll");
        heap.FailAt(0);
        SetPinPromptString("a prompt that needs memory of its own");
        heap.FailAt(0);
        EXPECT_EQ(DisplayLastPINTry("Reader A"), MVPINGUI_REFUSED);
        heap.FailAt(0);
        EXPECT_EQ(ShowAbout(0, nullptr, "Caption"), MVPINGUI_REFUSED);
    }
    EXPECT_EQ(log.Texts(1),
              (std::vector<std::string>{"SetPinPromptString: exception",
                                        "DisplayLastPINTry: exception", "ShowAbout: exception"}));
    EXPECT_EQ(log.Texts(16).size(), 3U) << log.Dump();
}

}  // namespace
}  // namespace mvp::test
