// Looks at a notice while the calling thread shows it, and serves it with a real mouse: says where
// it came to stand, takes pictures, keeps the pointer over it, clicks a link.
//
//     PopupUser user(plan);
//     ...  // shows the notice; user.Begin(hPopup) right before it comes
//     const PopupSight sight = user.Finish();
//
// It waits for conditions, each with a deadline. What it could not do Finish throws.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <thread>

namespace pinhost {

struct PopupPlan {
    // PNG files with absolute paths, empty for none: of the notice in its place, and of the
    // one-time password.
    std::string strScreenshot;
    std::string strNextScreenshot;
    bool bPassword = false;                // a one-time password comes
    std::optional<std::uint32_t> dwHover;  // milliseconds that the pointer is over it
    enum class Click : std::uint8_t { Nothing, Close, Help } click = Click::Nothing;
};

// What was seen. Milliseconds count from the moment it was shown.
struct PopupSight {
    std::optional<RECT> place;  // where it came to stand, if it did
    std::uint64_t nStoodAfter = 0;
    std::optional<std::string> passwordText;  // as the notice holds it, markup included; ANSI
    std::uint64_t nPasswordAfter = 0;
};

class PopupUser {
public:
    explicit PopupUser(PopupPlan plan) : m_plan(std::move(plan)) {}
    PopupUser(const PopupUser&) = delete;
    PopupUser& operator=(const PopupUser&) = delete;
    ~PopupUser() = default;

    void Begin(HWND hPopup);

    // To be called when the notice has closed. Throws EnvironmentError.
    PopupSight Finish();

private:
    void Main(const std::stop_token& stop) noexcept;
    void Serve(const std::stop_token& stop);
    bool AwaitPlace(const std::stop_token& stop);
    void AwaitPassword(const std::stop_token& stop);
    void TakePicture(const std::string& strFile) const;
    void Hover(const std::stop_token& stop) const;
    void ClickLink(bool bHelp) const;

    PopupPlan m_plan;
    HWND m_hPopup = nullptr;
    std::uint64_t m_nBegin = 0;
    PopupSight m_sight;
    std::string m_strFailure;
    std::jthread m_thread;  // last: it uses the others
};

// Whether the notice's busy bar runs.
bool IsBusy(HWND hPopup);

}  // namespace pinhost
