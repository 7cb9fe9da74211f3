#include "pinhost/popup_user.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <vector>

#include "common/screenshot.h"
#include "common/thread_windows.h"
#include "common/wait_for.h"
#include "pinhost/command.h"
#include "pinhost/ending.h"
#include "pinhost/text.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

using namespace std::chrono_literals;

// It comes step by step; one that has rested for so long where it is wholly seen stands.
constexpr ULONGLONG kRestMs = 250;
// A frame of the popup may lie beyond the work area.
constexpr int kFrames = 10;
constexpr auto kDeadline = 20s;
constexpr auto kForever = 24h;
// How the library numbers the texts and the links of a notice.
constexpr int kTextId = 789;
constexpr int kLinkId = 790;
// Inside the words of a link, which begin behind a margin.
constexpr POINT kInLink = {60, 7};

RECT PlaceOf(HWND hWnd) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    return place;
}

bool IsWhollySeen(const RECT& place) {
    RECT work{};
    RECT seen{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    IntersectRect(&seen, &place, &work);
    return seen.right - seen.left > place.right - place.left - kFrames &&
           seen.bottom - seen.top > place.bottom - place.top - kFrames;
}

// The children in view with the identifier, from the top.
std::vector<HWND> VisibleChildren(HWND hPopup, int nId) {
    std::vector<HWND> found;
    HWND child = nullptr;
    while ((child = FindWindowExA(hPopup, child, nullptr, nullptr)) != nullptr) {
        if (GetDlgCtrlID(child) == nId && IsWindowVisible(child)) {
            found.push_back(child);
        }
    }
    std::sort(found.begin(), found.end(),
              [](HWND one, HWND other) { return PlaceOf(one).top < PlaceOf(other).top; });
    return found;
}

std::string MessageOf(HWND hPopup) {
    const std::vector<HWND> texts = VisibleChildren(hPopup, kTextId);
    std::array<char, 2048> text{};
    if (!texts.empty()) {
        SendMessageA(texts.front(), WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    }
    return text.data();
}

void ClickAt(POINT point) {
    SetCursorPos(point.x, point.y);
    std::array<INPUT, 2> input{};
    for (INPUT& one : input) {
        one.type = INPUT_MOUSE;
    }
    input[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    input[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    if (SendInput(input.size(), input.data(), sizeof(INPUT)) != input.size()) {
        throw std::runtime_error("the system refused the click");
    }
}

}  // namespace

bool IsBusy(HWND hPopup) {
    return FindWindowExA(hPopup, nullptr, "VkProgressBar", nullptr) != nullptr;
}

void PopupUser::Begin(HWND hPopup) {
    m_hPopup = hPopup;
    m_nBegin = GetTickCount64();
    m_thread = std::jthread([this](const std::stop_token& stop) { Main(stop); });
}

PopupSight PopupUser::Finish() {
    m_thread = {};  // asks it to stop, and waits
    if (!m_strFailure.empty()) {
        throw EnvironmentError(m_strFailure);
    }
    return m_sight;
}

void PopupUser::Main(const std::stop_token& stop) noexcept {
    mvp::Guarded(
        [&] {
            try {
                Serve(stop);
            } catch (const std::exception& error) {
                m_strFailure = error.what();
            }
        },
        [] { EndNow("the notice was not served"); });
}

void PopupUser::Serve(const std::stop_token& stop) {
    if (!AwaitPlace(stop)) {
        return;
    }
    TakePicture(m_plan.strScreenshot);
    if (m_plan.bPassword) {
        AwaitPassword(stop);
        TakePicture(m_plan.strNextScreenshot);
    }
    if (stop.stop_requested()) {
        return;
    }
    if (m_plan.dwHover) {
        Hover(stop);
    }
    if (m_plan.click != PopupPlan::Click::Nothing) {
        ClickLink(m_plan.click == PopupPlan::Click::Help);
    }
}

// False when it has gone before.
bool PopupUser::AwaitPlace(const std::stop_token& stop) {
    RECT place{};
    ULONGLONG since = GetTickCount64();
    const bool stands = mvp::WaitFor(kDeadline, [&] {
        const RECT now = PlaceOf(m_hPopup);
        if (EqualRect(&now, &place) == FALSE || !IsWindowVisible(m_hPopup) || !IsWhollySeen(now)) {
            place = now;
            since = GetTickCount64();
        }
        return stop.stop_requested() || GetTickCount64() - since >= kRestMs;
    });
    if (stop.stop_requested()) {
        return false;
    }
    if (!stands) {
        throw std::runtime_error("the notice did not come to its place");
    }
    m_sight.place = place;
    m_sight.nStoodAfter = since - m_nBegin;
    return true;
}

void PopupUser::AwaitPassword(const std::stop_token& stop) {
    // The routine that fetches it takes its time.
    mvp::WaitFor(kForever, [&] { return stop.stop_requested() || !IsBusy(m_hPopup); });
    if (!stop.stop_requested() && IsWindowVisible(m_hPopup)) {
        m_sight.nPasswordAfter = GetTickCount64() - m_nBegin;
        m_sight.passwordText = MessageOf(m_hPopup);
    }
}

void PopupUser::TakePicture(const std::string& strFile) const {
    std::string error;
    if (!strFile.empty() && !mvp::SaveWindowPng(m_hPopup, strFile, error)) {
        throw std::runtime_error("no screenshot " + Utf8FromAnsi(strFile) + ": " + error);
    }
}

void PopupUser::Hover(const std::stop_token& stop) const {
    POINT before{};
    GetCursorPos(&before);
    const RECT place = PlaceOf(m_hPopup);
    SetCursorPos((place.left + place.right) / 2, place.top + 10);
    mvp::WaitFor(std::chrono::milliseconds(*m_plan.dwHover), [&] { return stop.stop_requested(); });
    SetCursorPos(before.x, before.y);
}

// The pointer goes back: a notice stays while it is over it.
void PopupUser::ClickLink(bool bHelp) const {
    const std::vector<HWND> links = VisibleChildren(m_hPopup, kLinkId);
    const std::size_t index = bHelp ? 1 : 0;
    if (index >= links.size()) {
        throw std::runtime_error("the notice has no such link");
    }
    POINT before{};
    GetCursorPos(&before);
    POINT point = kInLink;
    ClientToScreen(links[index], &point);
    ClickAt(point);
    SetCursorPos(before.x, before.y);
}

}  // namespace pinhost
