// The exported functions that need no dialog of the library's own, through the DLL as hosts see it.
#include <cstdlib>
#include <optional>
#include <string>

#include <dlgfw/module_state.h>
#include <dlgfw/string.h>
#include <gtest/gtest.h>

#include "mvpingui/mvpingui.h"
#include "resources/resource_numbers.h"
#include "support/freed_blocks.h"
#include "support/log_recorder.h"
#include "support/message_box_recorder.h"

namespace mvp::test {
namespace {

std::string StringOfModule(UINT nId) {
    char text[4096] = "";
    LoadStringA(GetModuleHandleA("mvpinguirc.dll"), nId, text, sizeof text);
    return text;
}

// First in this program: nothing has called GetErrorString before.
TEST(ErrorText, IsEmptyBeforeTheFirstText) {
    EXPECT_STREQ(GetErrorString(0), "");
    EXPECT_STREQ(GetErrorString(13), "");
}

TEST(ErrorText, CodesHaveTheirStringsAndOthersLeaveTheLast) {
    EXPECT_EQ(GetErrorString(1), StringOfModule(3059));
    EXPECT_FALSE(StringOfModule(3059).empty());
    EXPECT_EQ(GetErrorString(13), StringOfModule(3059));
    EXPECT_EQ(GetErrorString(11), StringOfModule(3071));
    EXPECT_EQ(GetErrorString(12), StringOfModule(3069));
    EXPECT_EQ(GetErrorString(14), StringOfModule(3070));
    for (const int code : {0, -1, 15, 1 << 30})
        EXPECT_EQ(GetErrorString(code), StringOfModule(3070)) << code;
}

TEST(LastTry, AsksWithTheTextAndTheReader) {
    struct Case {
        int nAnswer;
        uint32_t dwResult;
    };
    for (const Case& c : {Case{1, MVPINGUI_OK}, {0, MVPINGUI_REFUSED}, {2, MVPINGUI_REFUSED}}) {
        LogRecorder log;
        MessageBoxRecorder boxes;
        boxes.SetAnswer(c.nAnswer);
        EXPECT_EQ(DisplayLastPINTry("Reader A"), c.dwResult);
        ASSERT_EQ(boxes.Calls().size(), 1U);
        const MessageBoxCall& call = boxes.Calls()[0];
        EXPECT_TRUE(call.bWithParentAndReader);
        EXPECT_EQ(call.hParent, nullptr);
        EXPECT_EQ(call.nMessageType, -1);
        EXPECT_EQ(call.strText, StringOfModule(3073));
        EXPECT_FALSE(call.strText.empty());
        EXPECT_EQ(call.nButtons + call.nIcon + call.nFlags, 0U);
        EXPECT_EQ(call.pReserved, nullptr);
        EXPECT_EQ(call.strReader, "Reader A");
        EXPECT_EQ(log.Texts(8), std::vector<std::string>{"--->DisplayLastPINTry"});
        EXPECT_EQ(log.Texts(16), std::vector<std::string>{"<---DisplayLastPINTry"});
    }
}

TEST(PinBuffer, IsZeroedBeforeItIsFreed) {
    LogRecorder log;
    constexpr std::size_t kSize = 4096;
    auto* pBuffer = static_cast<char*>(std::malloc(kSize));
    std::fill_n(pBuffer, kSize, 'S');
    std::optional<std::size_t> dirty;
    {
        const FreedBlocks freed({"mvpingui.dll"}, [&](const void* p, std::size_t nBytes) {
            if (p == pBuffer)
                dirty = DirtyBytes(p, nBytes);
        });
        FreeGetPinBuffer(pBuffer, kSize);
    }
    EXPECT_EQ(dirty, 0U);
    FreeGetPinBuffer(nullptr, 99);
    EXPECT_EQ(log.Texts(8), (std::vector<std::string>{"--->FreeBuffer", "--->FreeBuffer"}));
    EXPECT_EQ(log.Texts(16), (std::vector<std::string>{"<---FreeBuffer", "<---FreeBuffer"}));
}

TEST(Prompt, IsLogged) {
    LogRecorder log;
    SetPinPromptString("prompt");
    SetPinPromptString(nullptr);
    EXPECT_EQ(log.Texts(8), (std::vector<std::string>{"SetPinPromptString", "SetPinPromptString"}));
    EXPECT_EQ(log.Texts(16),
              (std::vector<std::string>{"SetPinPromptString", "SetPinPromptString"}));
}

TEST(HostResources, AreFoundAfterInit) {
    CString text;
    EXPECT_FALSE(text.LoadString(IDS_LAST_PIN_TRY));
    InitGUIDll();
    EXPECT_TRUE(text.LoadString(IDS_LAST_PIN_TRY));
    EXPECT_EQ(std::string(text), StringOfModule(3073));
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEA(IDD_ENTER_PIN), RT_DIALOG),
              GetModuleHandleA("mvpinguirc.dll"));
}

}  // namespace
}  // namespace mvp::test
