// The card leaves its reader while its PIN is asked for: real events of the suite's event module.
#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <objbase.h>
#include <vkevtsub/vkevtsub.h>

#include "frame/module.h"
#include "resources/resource_numbers.h"
#include "services/card_removed_subscriber.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "support/waiting.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

constexpr unsigned kIdleTimeout = 10'000;
constexpr char kWatchEnded[] = "VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed";

void Remove(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
}

class CardRemoval : public testing::Test {
protected:
    AttachedLibrary m_library;
    LogRecorder m_log;
};

TEST_F(CardRemoval, ClosesTheDialogOfItsReaderOnly) {
    struct Case {
        const char* pszReader;
        const char* pszRemoved;
        bool bCloses;
    };
    const Case cases[] = {
        {"Reader A", "Reader A", true}, {"reader a", "READER A", true},   {"", "Reader A", true},
        {nullptr, "Reader A", true},    {"Reader A", "Reader B", false},  {"Reader A", "", false},
        {"Reader A", nullptr, false},   {"Reader A", "Reader A ", false},
    };
    for (const Case& c : cases) {
        PinRequest request{.pszReader = c.pszReader};
        DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            Remove(c.pszRemoved);
            EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
            if (c.bCloses) {
                d.WaitGone();
            } else {
                d.Settle();
                EXPECT_TRUE(d.IsOpen());
                d.Click(IDOK);
            }
        });
        EXPECT_EQ(request.Call(), c.bCloses ? MVPINGUI_REFUSED : MVPINGUI_OK);
        driver.Join();
        EXPECT_EQ(request.IsUntouched(), c.bCloses);
        request.Free();
        // Whatever the ending, the watch ends once, with its own words.
        EXPECT_EQ(std::ranges::count(m_log.Texts(2), kWatchEnded), 1) << m_log.Dump();
        m_log.Clear();
    }
}

TEST_F(CardRemoval, BeforeAndAfterTheDialogHasNoEffect) {
    Remove("Reader A");
    EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
    PinRequest request;
    DialogDriver driver([](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, "1234");
        d.Click(IDOK);
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    driver.Join();
    Remove("Reader A");
    EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
    EXPECT_EQ(request.Pin(), "1234");
    request.Free();
}

TEST_F(CardRemoval, WatchingItInitialisesComOnTheThread) {
    std::thread([] {
        const VKDelegateSubscriberCardRemoved watching(nullptr, WM_APP, "Reader A");
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);  // initialised already
    }).join();
}

TEST_F(CardRemoval, WhileTheDialogOpensCloses) {
    PinRequest request;
    // The event arrives between the creation of the window and its first showing.
    std::thread remover([this] {
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [this] {
            return m_log.Contains(16, "VKDelegateSubscriberCardRemoved Constructor");
        }));
        Remove("Reader A");
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    remover.join();
    request.Free();
}

TEST_F(CardRemoval, AroundThePressOfOkCountsWhatIsHandledFirst) {
    enum class First { Ok, Removal, OkSent };
    for (const First first : {First::Ok, First::Removal, First::OkSent}) {
        PinRequest request;
        DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            // In one go, so that the dialog's thread has not taken up what was posted to it.
            d.Run([&] {
                if (first == First::Ok)
                    SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
                Remove("Reader A");
                EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
                if (first == First::Removal)
                    PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
                // Overtakes the removal, which is in the queue.
                if (first == First::OkSent)
                    SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            });
            d.WaitGone();
        });
        EXPECT_EQ(request.Call(), first != First::Removal ? MVPINGUI_OK : MVPINGUI_REFUSED);
        driver.Join();
        request.Free();
    }
}

// What the user and the card do, in an order drawn by chance; the outcome must fit what was done.
class Interleaving {
public:
    Interleaving(unsigned nSeed, std::mt19937& random) : m_nSeed(nSeed), m_random(random) {}

    void Run() {
        PinRequest request;
        // Runs inside the modal loop, once the dialog is idle: no thread switch, thousands a
        // minute.
        m_nSteps = static_cast<int>(m_random() % 5);
        g_pCurrent = this;
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &Interleaving::OnTimer);
        const uint32_t result = request.Call();
        KillTimer(nullptr, timer);
        g_pCurrent = nullptr;
        if (result == MVPINGUI_OK) {
            EXPECT_TRUE(m_bOk) << "seed " << m_nSeed;
            EXPECT_EQ(request.Pin(), m_strTyped) << "seed " << m_nSeed;
        } else {
            EXPECT_TRUE(request.IsUntouched()) << "seed " << m_nSeed;
            EXPECT_TRUE(m_bCancel || m_bRemoved) << "seed " << m_nSeed;
        }
        request.Free();
    }

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
        HWND hDialog = GetActiveWindow();
        char className[16] = "";
        GetClassNameA(hDialog, className, sizeof className);
        if (g_pCurrent != nullptr && std::string(className) == "#32770")
            g_pCurrent->Step(hDialog);
    }

    void Step(HWND hDialog) {
        const bool last = m_nSteps-- <= 0;
        switch (last ? 2 + m_random() % 3 : m_random() % 2) {
            case 0:
                Type(hDialog);
                break;
            case 1:
                Remove("Reader B");
                break;
            case 2:
                if (m_strTyped.size() < 4)
                    Type(hDialog);
                // A removal may come in between, and may be too late.
                if (m_random() % 2 == 0) {
                    Remove("Reader A");
                    m_bRemoved = true;
                }
                m_bOk = true;
                PostMessageA(hDialog, WM_COMMAND, IDOK, 0);
                break;
            case 3:
                m_bCancel = true;
                PostMessageA(hDialog, WM_COMMAND, IDCANCEL, 0);
                if (m_random() % 2 == 0) {
                    Remove("Reader A");
                    m_bRemoved = true;
                }
                break;
            default:
                Remove("Reader A");
                m_bRemoved = true;
                break;
        }
    }

    void Type(HWND hDialog) {
        m_strTyped = "12345678";
        m_strTyped.resize(4 + m_random() % 5);
        SetDlgItemTextA(hDialog, IDC_ENTER_PIN_EDIT, m_strTyped.c_str());
    }

    static inline Interleaving* g_pCurrent = nullptr;
    unsigned m_nSeed;
    std::mt19937& m_random;
    int m_nSteps = 0;
    std::string m_strTyped;
    bool m_bOk = false;
    bool m_bCancel = false;
    bool m_bRemoved = false;
};

TEST_F(CardRemoval, SurvivesEveryOrderOfEvents) {
    // A run by hand may ask for more: MVP_SOAK_ROUNDS=10000.
    const char* pszRounds = std::getenv("MVP_SOAK_ROUNDS");
    const long rounds = pszRounds != nullptr ? std::strtol(pszRounds, nullptr, 10) : 200;
    const unsigned seed = 20261121;
    std::mt19937 random(seed);
    const auto round = [&] { Interleaving(seed, random).Run(); };
    for (int i = 0; i < 20; ++i)
        round();
    EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
    m_log.Clear();
    const auto before = ResourceCounts::Now();
    for (int i = 0; i < rounds && !HasFailure(); ++i) {
        round();
        m_log.Clear();
    }
    EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
    // Blocks, handles and threads are counted strictly. What the heaps have fetched from the system
    // is not: with their checks on they hold freed blocks back for a while.
    ExpectNoGrowth(before, ResourceCounts::Now(), {.privateBytes = 64 << 20});
}

}  // namespace
}  // namespace mvp::test
