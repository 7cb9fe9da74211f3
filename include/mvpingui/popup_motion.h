// Where the popup stands, how opaque it is and which timer it waits for: everything of it that
// moves, without a window and without a clock.
//
// It slides in beside the taskbar, waits, and slides out again; above a taskbar at the bottom it
// fades out instead. Its window tells what happened and carries out the orders it gets back:
//
//     Apply(m_motion.Tick(nIDEvent, isCursorInside, {m_nWidth, m_nHeight}));
//
// One timer runs at most, none while the popup is hidden. A tick of another timer is one that was
// in the queue when its timer was killed, and does nothing. Pixels, in screen coordinates; those
// beyond kPopupFarthest count as that, and sizes below zero as 0. Nothing allocates; everything is
// called on the window's thread.
#pragma once

#include <cstdint>
#include <optional>

namespace mvp {

inline constexpr int kPopupFarthest = 1 << 24;

// Each moving state has a timer, whose identifier is the state's value. Showing and Hiding begin
// with the first tick of theirs: between Show and the first step the state is still Idle.
enum class PopupState : std::int32_t {
    IDT_IDLE = 0,
    IDT_SHOWING = 1,
    IDT_WAITING = 2,
    IDT_HIDING = 3
};

enum class TaskbarSide : std::int32_t {
    None = 0,
    TASKBAR_TOP = 1,
    TASKBAR_LEFT = 2,
    TASKBAR_RIGHT = 3,
    TASKBAR_BOTTOM = 4
};

// The work area and the size of the whole screen, and its resolution, with which every distance
// that the popup keeps or goes in a step grows.
struct PopupScreen {
    int nWorkLeft = 0;
    int nWorkTop = 0;
    int nWorkRight = 0;
    int nWorkBottom = 0;
    int nScreenWidth = 0;
    int nScreenHeight = 0;
    int nDpi = 96;
};

struct PopupSize {
    int nWidth = 0;
    int nHeight = 0;
};

struct PopupBounds {
    int nLeft = 0;
    int nTop = 0;
    int nWidth = 0;
    int nHeight = 0;
};

struct PopupTimer {
    PopupState id = PopupState::IDT_IDLE;  // Idle: no timer
    std::uint32_t nMilliseconds = 0;
};

// What the window has to do, in the order of the fields.
struct PopupOrders {
    std::uint32_t nKillTimers = 0;  // bit n: timer n
    PopupTimer setTimer;
    bool bHide = false;  // the window's Hide, which calls Hidden
    bool bMove = false;  // to Bounds, without activation, keeping the z-order
    // Of the layered window: not before it is in its place, or it is seen where it was.
    std::optional<std::uint8_t> alpha;
    bool bShow = false;  // make the window visible
    bool bRedraw = false;
    // The popup has come to its place and its state is Waiting: the window calls StartStay, unless
    // something else ends the wait.
    bool bArrived = false;
};

// The side of the screen that the work area leaves to a taskbar; Bottom where it leaves none.
TaskbarSide FindTaskbar(const PopupScreen& screen) noexcept;

class PopupMotion {
public:
    // Milliseconds. They hold from the next Show or change of screen, a stay from its next start.
    void SetSlides(std::uint32_t nShow, std::uint32_t nHide) noexcept;
    void SetStay(std::uint32_t nStay) noexcept;

    // A new window was created: it is hidden, has no timer and full opacity.
    void Created() noexcept;
    // The window has been hidden, whatever the reason.
    PopupOrders Hidden() noexcept;

    // Brings the popup in, or keeps it: a stay starts again, a popup on its way out is put back.
    // Without bAnimated it stands in its place at once, and goes at once after its stay.
    PopupOrders Show(const PopupScreen& screen, PopupSize skin, bool bAnimated) noexcept;
    // The stay begins; nothing happens unless the popup waits.
    PopupOrders StartStay() noexcept;
    // The window's timer nTimer came to its end.
    // Whether it matters for the tick of a timer where the cursor is.
    bool AsksForCursor(std::uintptr_t nTimer) const noexcept;
    PopupOrders Tick(std::uintptr_t nTimer, bool bCursorInside, PopupSize skin) noexcept;
    // The work area or the screen is another: a popup that slides goes on from as far as it has
    // come, any other stands in its new place. A hidden one learns of it at the next Show.
    PopupOrders ScreenChanged(const PopupScreen& screen, PopupSize skin) noexcept;

    PopupState State() const noexcept { return m_nAnimStatus; }
    TaskbarSide Side() const noexcept { return m_side; }
    bool IsVisible() const noexcept;
    // Where the window is to stand. SM_CYDLGFRAME (nFrameY) widens the skin on both sides, and
    // SM_CXDLGFRAME (nFrameX) heightens it, crossed on purpose.
    PopupBounds Bounds(PopupSize skin, int nFrameX, int nFrameY) const noexcept;

private:
    void ShowHidden(PopupOrders& orders, const PopupScreen& screen, PopupSize skin) noexcept;
    void PutBack(PopupOrders& orders, PopupSize skin) noexcept;
    void TickShowing(PopupOrders& orders, PopupSize skin) noexcept;
    void TickWaiting(PopupOrders& orders, bool bCursorInside) noexcept;
    void TickHiding(PopupOrders& orders, bool bCursorInside) noexcept;

    void Place(const PopupScreen& screen, PopupSize skin) noexcept;
    bool IsSliding() const noexcept;
    bool IsUpright() const noexcept;
    int Direction() const noexcept;
    int Distance(PopupSize skin) const noexcept;
    int Travelled() const noexcept;
    void TravelTo(int nDistance) noexcept;
    void SetPercent(PopupOrders& orders, std::uint8_t nPercent) noexcept;
    void StartTimer(PopupOrders& orders, PopupState id, std::uint32_t nMilliseconds) noexcept;
    void StopTimer(PopupOrders& orders) noexcept;

    PopupState m_nAnimStatus = PopupState::IDT_IDLE;
    std::uint32_t m_nShowDuration = 0;
    std::uint32_t m_nStayDuration = 0;
    std::uint32_t m_nHideDuration = 0;
    std::uint32_t m_nShowInterval = 0;
    std::uint32_t m_nHideInterval = 0;
    std::int32_t m_nStartX = 0;
    std::int32_t m_nStartY = 0;
    std::int32_t m_nCurrentX = 0;
    std::int32_t m_nCurrentY = 0;
    TaskbarSide m_side = TaskbarSide::None;
    std::int32_t m_nStep = 2;
    std::int32_t m_nRise = 6;
    std::uint8_t m_nOpacity = 90;
    std::uint8_t m_nCurrentOpacity = 90;

    PopupState m_timer = PopupState::IDT_IDLE;  // the one that runs
    bool m_bAnimated = true;
};

}  // namespace mvp
