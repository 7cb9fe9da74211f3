// That a PIN stands in one place alone while its dialog is open, and that nothing of it is left in
// the memory of the process, be it the library's or the system's, after every ending of a request.
//
// MVP_SCAN_RUNS sets how many times each ending is reached, each time with another PIN.
#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "common/patched_imports.h"
#include "mvpingui/change_pin_dialog.h"
#include "support/log_recorder.h"
#include "support/memory_scan.h"
#include "support/waiting.h"
#include "ui/dialogs/pin/debugged_end.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

int Runs(int nUsual) {
    const char* wanted = std::getenv("MVP_SCAN_RUNS");
    return wanted != nullptr ? std::stoi(wanted) : nUsual;
}

class Parent : public CWnd {
public:
    Parent() {
        CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 500, 400, nullptr, nullptr);
    }
    ~Parent() override { DestroyWindow(); }
};

// One dialog that a PIN was typed into.
struct Stage {
    Dialog& dialog;
    const Secret& pin;
    CWnd& parent;
};
using End = void (*)(const Stage& stage);

void PressOk(const Stage& s) {
    s.dialog.Click(IDOK);
}
void Cancel(const Stage& s) {
    s.dialog.Escape();
}
void RemoveCard(const Stage& s) {
    VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
    s.dialog.WaitGone();
}
void Close(const Stage& s) {
    PostMessageA(s.dialog.Handle(), WM_SYSCOMMAND, SC_CLOSE, 0);
    s.dialog.WaitGone();
}
void DestroyParent(const Stage& s) {
    s.dialog.Run([&] { s.parent.DestroyWindow(); });
}
void PressOkInVain(const Stage& s) {
    s.dialog.Run([&] { SendMessageA(s.dialog.Handle(), WM_COMMAND, IDOK, 0); });
    ExpectOnPagesOfTheirOwn(s.pin, 1, "refused");
    s.dialog.Escape();
}

std::atomic<size_t> g_cbRefused = 0;
void* RefusingMalloc(size_t cb) {
    return cb == g_cbRefused ? nullptr : std::malloc(cb);
}
void PressOkWithoutMemory(const Stage& s) {
    g_cbRefused = s.pin.size();
    s.dialog.Click(IDOK);
}

// Deletes all of the PIN in every way there is, and types it anew.
void DeleteAndCancel(const Stage& s) {
    const struct {
        UINT nMessage;
        WPARAM wParam;
        LRESULT nLeft;
    } deletions[] = {{WM_CLEAR, 0, 0},
                     {WM_KEYDOWN, VK_DELETE, 0},
                     {WM_CHAR, VK_BACK, 0},
                     {WM_SETTEXT, 0, 0},
                     {WM_CHAR, 'x', 1}};
    const HWND edit = s.dialog.Control(IDC_ENTER_PIN_EDIT);
    for (const auto& deletion : deletions) {
        s.dialog.Run([&] {
            SendMessageA(edit, EM_SETSEL, 0, -1);
            SendMessageA(edit, deletion.nMessage, deletion.wParam, 0);
            EXPECT_EQ(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0), deletion.nLeft);
            EXPECT_FALSE(SendMessageA(edit, EM_CANUNDO, 0, 0));
        });
        EXPECT_EQ(ScanMemory(s.pin), std::vector<MemoryHit>()) << deletion.nMessage;
        EXPECT_FALSE(s.dialog.IsEnabled(IDOK));
        s.dialog.Type(IDC_ENTER_PIN_EDIT, s.pin);
    }
    for (size_t i = 0; i < s.pin.size(); ++i) {
        s.dialog.Send(IDC_ENTER_PIN_EDIT, WM_CHAR, VK_BACK);
    }
    s.dialog.Escape();
}

void EndEditFalsely(const Stage& s) {
    SendMessageA(s.dialog.Control(IDC_ENTER_PIN_EDIT), WM_NCDESTROY, 0, 0);
}
void EndFalsely(const Stage& s) {
    SendMessageA(s.dialog.Handle(), WM_NCDESTROY, 0, 0);
}

struct Ending {
    const char* pszName;
    End end;
    std::uint32_t dwResult = MVPINGUI_REFUSED;
    std::uint32_t dwMax = 100;
};
constexpr Ending kEndings[] = {
    {"OK", PressOk, MVPINGUI_OK},
    {"Cancel", Cancel},
    {"close", Close},
    {"removal", RemoveCard},
    {"parent destroyed", DestroyParent},
    {"no memory", PressOkWithoutMemory},
    {"too long", PressOkInVain, MVPINGUI_REFUSED, 3},
    {"deleted and cancelled", DeleteAndCancel},
    {"a false end of the edit", EndEditFalsely},
    {"a false end of the dialog", EndFalsely},
};

TEST(Wiping, AfterEveryEndingOfARequest) {
    const PatchedImports refusing("mvpingui.dll", {{"malloc", Address(&RefusingMalloc)}});
    for (int run = 0; run < Runs(12) && !testing::Test::HasFailure(); ++run) {
        for (const Ending& ending : kEndings) {
            const LogRecorder log;
            Parent parent;
            const Secret pin = Secret::Pin();
            const SecretWatch watch({&pin});
            PinRequest request{.hParent = parent.m_hWnd, .dwMax = ending.dwMax};
            const auto enter = [&](Dialog& d) {
                d.Type(IDC_ENTER_PIN_EDIT, pin);
                d.Focus(IDCANCEL);
                ExpectOnPagesOfTheirOwn(pin, 1, ending.pszName);
                EXPECT_EQ(d.IsEnabled(IDOK), ending.dwMax == 100);
                ending.end({d, pin, parent});
            };
            ASSERT_EQ(request.Call(enter), ending.dwResult);
            g_cbRefused = 0;
            EXPECT_EQ(PinRequest{}.Call(), MVPINGUI_REFUSED) << "not before it is given back";
            EXPECT_EQ(log.Contains(1, "GetPINFromUser: PIN buffer allocation failed"),
                      ending.end == PressOkWithoutMemory);
            if (ending.dwResult == MVPINGUI_OK) {
                // The caller's buffer holds it, and nothing else does.
                EXPECT_EQ(ScanMemory(pin),
                          std::vector<MemoryHit>(
                              {{reinterpret_cast<ULONG_PTR>(request.pPin), 0, pin.size(), false}}));
            }
            const bool handedOut = !request.IsUntouched();
            FreeGetPinBuffer(handedOut ? request.pPin : nullptr, handedOut ? request.cbPin : 0);
            watch.ExpectNothingLeft(ending.pszName);
        }
    }
}

constexpr UINT kEnded = 42;
constexpr UINT kPinStoodThere = 43;

TEST(Wiping, DISABLED_EndsWithTheDialogOpen) {
    const unsigned seed = static_cast<unsigned>(std::stoul(std::getenv("MVP_SCAN_SEED")));
    const Secret pin = Secret::OfSeed(seed);
    if (!ScanMemory(pin).empty()) {
        ExitProcess(kPinStoodThere);
    }
    const auto askAnd = [&](const std::function<void()>& end) {
        PinRequest{.dwMax = 100}.Call([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, pin);
            d.Focus(IDCANCEL);
            d.Run(end);
        });
    };
    if (seed % 2 == 0) {
        askAnd([] { ExitProcess(kEnded); });
    }
    // On another thread than the dialog's, which waits meanwhile: a thread that is ended in the
    // midst of its drawing may leave that locked for ever.
    std::promise<void> typed;
    const std::thread dialog([&] {
        askAnd([&] {
            typed.set_value();
            WaitForSingleObject(GetCurrentThread(), INFINITE);
        });
    });
    typed.get_future().wait();
    ExitProcess(kEnded);
}

TEST(Wiping, WhenTheProcessEndsInADebugger) {
    std::array<char, MAX_PATH> program = {};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    const std::string command = "\"" + std::string(program.data()) +
                                "\" --gtest_also_run_disabled_tests"
                                " --gtest_filter=Wiping.DISABLED_EndsWithTheDialogOpen";
    for (int run = 0; run < Runs(10) && !testing::Test::HasFailure(); ++run) {
        const Secret pin = Secret::Pin();
        SetEnvironmentVariableA("MVP_SCAN_SEED", std::to_string(pin.Seed()).c_str());
        std::vector<MemoryHit> hits[2];
        const DWORD code = DebuggedEnd([&](HANDLE hProcess, bool bTold) {
                               hits[bTold ? 1 : 0] = ScanMemory(pin, hProcess);
                           }).Run(command);
        if (code == kPinStoodThere) {
            --run;
            continue;
        }
        ASSERT_EQ(code, kEnded) << pin;
        EXPECT_EQ(hits[0].size(), 1U) << pin << testing::PrintToString(hits[0]);
        EXPECT_EQ(hits[1], std::vector<MemoryHit>()) << pin;
    }
}

constexpr PwdRuleArgs kLongPins = {0, 0, 1, 1, 4, 64, 0};

// The function's result. The caller's own copies are the caller's affair.
std::uint32_t CallAndWipe(ChangePinRequest&& request) {
    const std::uint32_t result = request.CallAlone();
    SecureZeroMemory(&request, sizeof request);
    return result;
}

TEST(Wiping, AfterAChangeOfThePin) {
    CWnd none;
    for (int run = 0; run < Runs(5) && !testing::Test::HasFailure(); ++run) {
        for (const Ending& ending : std::span(kEndings).first(4)) {
            const Secret currentPin = Secret::Pin();
            const Secret newPin = Secret::Pin();
            const SecretWatch watch({&currentPin, &newPin});
            {
                const DialogDriver driver([&](Dialog& d) {
                    d.Type(kCurrent, currentPin);
                    d.Type(kNew, newPin);
                    d.Type(kConfirm, newPin);
                    d.Focus(IDCANCEL);
                    ExpectOnPagesOfTheirOwn(currentPin, 1, ending.pszName);
                    ExpectOnPagesOfTheirOwn(newPin, 2, ending.pszName);
                    ending.end({d, newPin, none});
                });
                EXPECT_EQ(CallAndWipe({.pRules = &kLongPins}), ending.dwResult);
            }
            watch.ExpectNothingLeft(ending.pszName);
        }
    }
}

TEST(Wiping, AfterAnEmbeddedPanel) {
    const Secret pin;
    const SecretWatch watch({&pin});
    {
        Parent host;
        CChangePINDialog panel(0, 0, false, nullptr, &kLongPins, nullptr, &host, 15, 0, 6);
        ASSERT_NE(panel.LocCreate(&host), 0);
        for (size_t i = 0; i < 2 * pin.size(); ++i) {
            SendDlgItemMessageA(panel.m_hWnd, i % 2 == 0 ? kNew : kConfirm, WM_CHAR,
                                static_cast<unsigned char>(pin[i / 2]), 1);
        }
        // The system may keep what the processor worked on last with the thread, on its stack.
        DispatchAll();
        ExpectOnPagesOfTheirOwn(pin, 2, "typed");
        EXPECT_EQ(CallAndWipe({.hHost = host.m_hWnd}), MVPINGUI_OK);
        ExpectOnPagesOfTheirOwn(pin, 2, "handed out");
    }
    watch.ExpectNothingLeft("embedded");
}

}  // namespace
}  // namespace mvp::test
