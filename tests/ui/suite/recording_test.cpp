// The recording modules stand in for the suite's own: this program is linked against the real
// modules and finds the recording ones beside it.
#include <windows.h>

#include <thread>
#include <vector>

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
    vklogLog(nullptr, VKLOG_DETAIL, "%s", "second\n");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 100; ++n)
                vklogLog("TAG", VKLOG_EXIT, "%d", n);
        });
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(log.Lines().size(), 402U);
    EXPECT_EQ(log.Texts(VKLOG_ENTRY), std::vector<std::string>{"first 1"});
    EXPECT_TRUE(log.Contains(VKLOG_DETAIL, "second\n"));
    EXPECT_FALSE(log.Contains(VKLOG_ERROR, "second\n"));
    EXPECT_FALSE(log.Contains(VKLOG_DETAIL, "second"));
    EXPECT_TRUE(log.ContainsPart("irst"));
    EXPECT_FALSE(log.ContainsPart("before"));
    EXPECT_NE(log.Dump().find("TAG 8: first 1\n"), std::string::npos) << log.Dump();
    log.Clear();
    EXPECT_TRUE(log.Lines().empty());
}

TEST(MessageBoxRecorder, HoldsTheArgumentsAndAnswers) {
    EXPECT_EQ(VKErrMesDisplayEx(-1, "nobody listens", 0, 0, 0), 1);
    MessageBoxRecorder boxes;
    const HWND hParent = GetDesktopWindow();
    EXPECT_EQ(VKErrMesDisplayExWithParentParamAndReader(hParent, -1, "last", 2, 3, 4, &boxes, "R"),
              1);
    boxes.SetAnswer(0);
    EXPECT_EQ(VKErrMesDisplayEx(-2, nullptr, 5, 6, 7), 0);
    boxes.SetAnswer([&](const MessageBoxCall& call) {
        return call.strText == "outer" ? VKErrMesDisplayEx(-1, "inner", 0, 0, 0) + 40 : 2;
    });
    EXPECT_EQ(VKErrMesDisplayEx(-1, "outer", 0, 0, 0), 42);

    ASSERT_EQ(boxes.Calls().size(), 4U);
    const MessageBoxCall& warning = boxes.Calls()[0];
    EXPECT_TRUE(warning.bWithParentAndReader);
    EXPECT_EQ(warning.hParent, hParent);
    EXPECT_EQ(warning.nMessageType, -1);
    EXPECT_EQ(warning.strText, "last");
    EXPECT_EQ(warning.nButtons, 2U);
    EXPECT_EQ(warning.nIcon, 3U);
    EXPECT_EQ(warning.nFlags, 4U);
    EXPECT_EQ(warning.pReserved, &boxes);
    EXPECT_EQ(warning.strReader, "R");
    const MessageBoxCall& notice = boxes.Calls()[1];
    EXPECT_FALSE(notice.bWithParentAndReader);
    EXPECT_EQ(notice.nMessageType, -2);
    EXPECT_EQ(notice.strText, "");
    EXPECT_EQ(notice.nFlags, 7U);
    EXPECT_EQ(boxes.Calls()[3].strText, "inner");
}

}  // namespace
}  // namespace mvp::test
