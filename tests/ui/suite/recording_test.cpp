// The recording modules stand in for the suite's own: this program is linked against the real
// modules and finds the recording ones beside it.
#include <windows.h>

#include <gtest/gtest.h>
#include <vkerrmes/vkerrmes.h>
#include <vklog/vklog.h>

#include "support/log_recorder.h"
#include "support/message_box_recorder.h"

namespace mvp::test {
namespace {

TEST(LogRecorder, HoldsEveryLineOfItsTime) {
    vklogLog("TAG", VKLOG_ERROR, "before");
    LogRecorder log;
    vklogLog("TAG", VKLOG_ENTRY, "%s %d", "first", 1);
    EXPECT_EQ(log.Lines(), (std::vector<RecordedLine>{{"TAG", VKLOG_ENTRY, "first 1"}}));
}

TEST(MessageBoxRecorder, HoldsTheArgumentsAndAnswers) {
    EXPECT_EQ(VKErrMesDisplayEx(-1, "nobody listens", 0, 0, 0), 1);
    MessageBoxRecorder boxes;
    const HWND hParent = GetDesktopWindow();
    EXPECT_EQ(VKErrMesDisplayExWithParentParamAndReader(hParent, -1, "last", 2, 3, 4, &boxes, "R"),
              1);
    boxes.SetAnswer([&](const MessageBoxCall& call) {
        return call.strText == "outer" ? VKErrMesDisplayEx(-2, nullptr, 5, 6, 7) + 40 : 2;
    });
    EXPECT_EQ(VKErrMesDisplayEx(-1, "outer", 0, 0, 0), 42);

    ASSERT_EQ(boxes.Calls().size(), 3U);
    const MessageBoxCall& warning = boxes.Calls()[0];
    EXPECT_TRUE(warning.bWithParentAndReader);
    EXPECT_EQ(warning.hParent, hParent);
    EXPECT_EQ(warning.nMessageType, -1);
    EXPECT_EQ(warning.strText, "last");
    EXPECT_TRUE(warning.nButtons == 2 && warning.nIcon == 3 && warning.nFlags == 4);
    EXPECT_EQ(warning.pReserved, &boxes);
    EXPECT_EQ(warning.strReader, "R");
    const MessageBoxCall& inner = boxes.Calls()[2];
    EXPECT_FALSE(inner.bWithParentAndReader);
    EXPECT_EQ(inner.nMessageType, -2);
    EXPECT_EQ(inner.strText, "");
    EXPECT_TRUE(inner.nButtons == 5 && inner.nIcon == 6 && inner.nFlags == 7);
}

}  // namespace
}  // namespace mvp::test
