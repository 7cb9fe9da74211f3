// The card leaves its reader while its PIN is asked for: real events of the suite's event module.
#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <objbase.h>
#include <vkevtsub/vkevtsub.h>

#include "services/card_removed_subscriber.h"
#include "support/failing_heap.h"
#include "support/resource_counts.h"
#include "support/waiting.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

using CardRemoval = LibraryTest;

void Remove(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
}

void RemoveAndWait(const char* pszReader = "Reader A") {
    Remove(pszReader);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
}

TEST_F(CardRemoval, ClosesTheDialogOfItsReaderOnly) {
    const struct {
        const char* pszReader;
        const char* pszRemoved;
        bool bCloses;
    } cases[] = {
        {"Reader A", "Reader A", true}, {"reader a", "READER A", true},   {"", "Reader A", true},
        {nullptr, "Reader A", true},    {"Reader A", "Reader B", false},  {"Reader A", "", false},
        {"Reader A", nullptr, false},   {"Reader A", "Reader A ", false},
    };
    for (const auto& c : cases) {
        m_log.Clear();
        const std::string outcome = PinRequest{.pszReader = c.pszReader}.Ask([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            RemoveAndWait(c.pszRemoved);
            if (c.bCloses) {
                d.WaitGone();
            } else {
                d.Settle();
                EXPECT_TRUE(d.IsOpen());
                d.Click(IDOK);
            }
        });
        EXPECT_EQ(outcome, c.bCloses ? kRefused : "1234");
        EXPECT_EQ(m_log.Contains(8, "VKDetectCardRemovedDlg::OnCardEvent"), c.bCloses);
        // Whatever the ending, the watch ends once, with its own words.
        EXPECT_EQ(
            std::ranges::count(m_log.Texts(2),
                               "VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed"),
            1)
            << m_log.Dump();
    }
}

TEST_F(CardRemoval, WatchingItInitialisesComOnTheThread) {
    std::thread([] {
        const VKDelegateSubscriberCardRemoved watching(nullptr, WM_APP, "Reader A");
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);  // initialised already
    }).join();
}

TEST_F(CardRemoval, WhileTheDialogOpensCloses) {
    // The event arrives between the creation of the window and its first showing.
    std::thread remover([this] {
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [this] {
            return m_log.Contains(16, "VKDelegateSubscriberCardRemoved Constructor");
        }));
        Remove("Reader A");
    });
    EXPECT_EQ(PinRequest().CallAlone(), MVPINGUI_REFUSED);
    remover.join();
    FreeGetPinBuffer(nullptr, 0);
}

TEST_F(CardRemoval, AroundThePressOfOkCountsWhatIsHandledFirst) {
    enum class First { Ok, Removal, OkSent };
    for (const First first : {First::Ok, First::Removal, First::OkSent}) {
        const std::string outcome = PinRequest().Ask([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            // In one go, so that the dialog's thread has not taken up what was posted to it.
            d.Run([&] {
                if (first == First::Ok) {
                    SendCommand(d, IDOK);
                }
                RemoveAndWait();
                if (first == First::Removal) {
                    PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
                }
                // Overtakes the removal, which is in the queue.
                if (first == First::OkSent) {
                    SendCommand(d, IDOK);
                }
            });
            d.WaitGone();
        });
        EXPECT_EQ(outcome, first != First::Removal ? "1234" : kRefused);
    }
}

TEST_F(CardRemoval, HasNoEffectWithoutMemoryForTheWatch) {
    const std::string reader(1000, 'r');
    FailingHeap heap("dlgfw.dll");
    heap.FailAt(1, reader.size());  // the dialog's own copy comes first
    const auto removeAndEnter = [&](Dialog& d) {
        RemoveAndWait(reader.c_str());
        TypePin()(d);
    };
    EXPECT_EQ(PinRequest{.pszReader = reader.c_str()}.Ask(removeAndEnter), "1234");
    EXPECT_TRUE(heap.Stop());
    EXPECT_TRUE(m_log.Contains(1, "VKDelegateSubscriberCardRemoved Constructor: exception"));
    EXPECT_TRUE(m_log.Contains(16, "VKDetectCardRemovedDlg::OnInitDialog"));
}

// What the user and the card do in an order drawn by chance, inside the modal loop once the dialog
// is idle: no thread switch, thousands a minute.
std::mt19937 g_random(20261121);
std::string g_strTyped;
bool g_bOk;
bool g_bLeft;

void CALLBACK ActByChance(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = GetActiveWindow();
    if (GetDlgItem(dialog, IDC_ENTER_PIN_EDIT) == nullptr) {
        return;
    }
    // Of two acts the second may be too late.
    for (auto acts = g_random() % 2 + 1; acts > 0; --acts) {
        const auto act = g_random() % 9;
        g_bOk = g_bOk || act == 0;
        g_bLeft = g_bLeft || act == 1 || act == 2;
        if (act < 2) {
            PostMessageA(dialog, WM_COMMAND, act == 0 ? IDOK : IDCANCEL, 0);
        } else if (act < 6) {
            Remove(act == 2 ? "Reader A" : "Reader B");
        } else {
            g_strTyped = std::string("12345678", 4 + g_random() % 5);
            SetDlgItemTextA(dialog, IDC_ENTER_PIN_EDIT, g_strTyped.c_str());
        }
    }
}

TEST_F(CardRemoval, SurvivesEveryOrderOfEvents) {
    // A run by hand may ask for more: MVP_SOAK_ROUNDS=10000.
    const char* wanted = std::getenv("MVP_SOAK_ROUNDS");
    const long rounds = wanted != nullptr ? std::strtol(wanted, nullptr, 10) : 200;
    const auto round = [&](int i) {
        g_bOk = g_bLeft = false;
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &ActByChance);
        PinRequest request;
        const std::string outcome = request.Outcome(request.CallAlone());
        KillTimer(nullptr, timer);
        EXPECT_TRUE(outcome == kRefused ? g_bLeft : g_bOk && outcome == g_strTyped) << outcome;
        // At rest when things are counted.
        EXPECT_TRUE(i % 20 != 19 || VKWaitForIdle(10'000) == VKEVTSUB_OK);
        m_log.Clear();
    };
    // Blocks, handles and threads are counted strictly. What the heaps have fetched from the system
    // is not: with their checks on they hold freed blocks back for a while.
    ExpectRoundsKeepNothing(20, static_cast<int>(rounds), round, {.privateBytes = 64 << 20});
}

}  // namespace
}  // namespace mvp::test
