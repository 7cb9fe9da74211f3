#include "mvpingui/popup_motion.h"

#include <algorithm>

#include "platform/resolution.h"

namespace mvp {
namespace {

// At 96 dpi. Above a taskbar at the bottom the popup keeps clear of the corner.
constexpr int kBottomInset = 7;
constexpr int kBottomRise = 6;
constexpr int kStep = 2;
constexpr std::uint32_t kHoverInterval = 10;
// The longest time that the system's timers take as it is.
constexpr std::uint32_t kLongestTimer = 0x7FFFFFFF;

// No screen reaches that far, and sums of a few of these stay within an int.
constexpr int Coordinate(int nPixels) noexcept {
    return std::clamp(nPixels, -kPopupFarthest, kPopupFarthest);
}

constexpr int Length(int nPixels) noexcept {
    return std::clamp(nPixels, 0, kPopupFarthest);
}

constexpr std::uint32_t Interval(std::uint32_t nDuration, int nSteps) noexcept {
    return nSteps > 0 ? nDuration / static_cast<std::uint32_t>(nSteps) : nDuration;
}

constexpr std::uint32_t Bit(PopupState timer) noexcept {
    return 1U << static_cast<std::uint32_t>(timer);
}

}  // namespace

TaskbarSide FindTaskbar(const PopupScreen& screen) noexcept {
    const std::int64_t width = std::int64_t{screen.nWorkRight} - screen.nWorkLeft;
    const std::int64_t height = std::int64_t{screen.nWorkBottom} - screen.nWorkTop;
    if (width < screen.nScreenWidth) {
        return screen.nWorkLeft == 0 ? TaskbarSide::TASKBAR_RIGHT : TaskbarSide::TASKBAR_LEFT;
    }
    if (height < screen.nScreenHeight && screen.nWorkTop != 0) {
        return TaskbarSide::TASKBAR_TOP;
    }
    return TaskbarSide::TASKBAR_BOTTOM;
}

void PopupMotion::SetSlides(std::uint32_t nShow, std::uint32_t nHide) noexcept {
    m_nShowDuration = nShow;
    m_nHideDuration = nHide;
}

void PopupMotion::SetStay(std::uint32_t nStay) noexcept {
    m_nStayDuration = nStay;
}

void PopupMotion::Created() noexcept {
    m_nAnimStatus = PopupState::IDT_IDLE;
    m_timer = PopupState::IDT_IDLE;
    m_nCurrentOpacity = m_nOpacity;
}

PopupOrders PopupMotion::Hidden() noexcept {
    PopupOrders orders;
    // Every timer: until its first tick a state is still the one before.
    orders.nKillTimers =
        Bit(PopupState::IDT_SHOWING) | Bit(PopupState::IDT_WAITING) | Bit(PopupState::IDT_HIDING);
    m_nAnimStatus = PopupState::IDT_IDLE;
    m_timer = PopupState::IDT_IDLE;
    return orders;
}

PopupOrders PopupMotion::Show(const PopupScreen& screen, PopupSize skin, bool bAnimated) noexcept {
    m_bAnimated = bAnimated;
    PopupOrders orders;
    if (m_nAnimStatus == PopupState::IDT_IDLE) {
        ShowHidden(orders, screen, skin);
        return orders;
    }

    // The message that tells of a change may still be on its way.
    orders = ScreenChanged(screen, skin);
    orders.bRedraw = true;
    if (m_nAnimStatus == PopupState::IDT_WAITING) {
        StartTimer(orders, PopupState::IDT_WAITING, m_nStayDuration);
    } else if (m_nAnimStatus == PopupState::IDT_HIDING) {
        PutBack(orders, skin);
    }
    return orders;
}

void PopupMotion::ShowHidden(PopupOrders& orders, const PopupScreen& screen,
                             PopupSize skin) noexcept {
    Place(screen, skin);
    TravelTo(0);
    orders.bShow = true;
    if (m_bAnimated) {
        StartTimer(orders, PopupState::IDT_SHOWING, m_nShowInterval);
        return;
    }
    StopTimer(orders);
    TravelTo(Distance(skin));
    SetPercent(orders, m_nOpacity);
    m_nAnimStatus = PopupState::IDT_WAITING;
    orders.bMove = true;
    orders.bArrived = true;
}

// The state changes with the next tick of the stay.
void PopupMotion::PutBack(PopupOrders& orders, PopupSize skin) noexcept {
    // At the bottom it stands on the edge of the work area from then on.
    TravelTo(Distance(skin) - (m_side == TaskbarSide::TASKBAR_BOTTOM ? m_nRise : 0));
    SetPercent(orders, m_nOpacity);
    StartTimer(orders, PopupState::IDT_WAITING, m_nStayDuration);
    orders.bMove = true;
}

PopupOrders PopupMotion::StartStay() noexcept {
    PopupOrders orders;
    if (m_nAnimStatus == PopupState::IDT_WAITING) {
        StartTimer(orders, PopupState::IDT_WAITING, m_nStayDuration);
    }
    return orders;
}

bool PopupMotion::AsksForCursor(std::uintptr_t nTimer) const noexcept {
    const bool fading = m_timer == PopupState::IDT_HIDING && m_side == TaskbarSide::TASKBAR_BOTTOM;
    return nTimer == static_cast<std::uintptr_t>(m_timer) &&
           (m_timer == PopupState::IDT_WAITING || fading);
}

PopupOrders PopupMotion::Tick(std::uintptr_t nTimer, bool bCursorInside, PopupSize skin) noexcept {
    PopupOrders orders;
    if (nTimer != static_cast<std::uintptr_t>(m_timer)) {
        return orders;
    }
    switch (m_timer) {
        case PopupState::IDT_IDLE:
            break;
        case PopupState::IDT_SHOWING:
            TickShowing(orders, skin);
            break;
        case PopupState::IDT_WAITING:
            TickWaiting(orders, bCursorInside);
            break;
        case PopupState::IDT_HIDING:
            TickHiding(orders, bCursorInside);
            break;
    }
    return orders;
}

void PopupMotion::TickShowing(PopupOrders& orders, PopupSize skin) noexcept {
    m_nAnimStatus = PopupState::IDT_SHOWING;
    SetPercent(orders, m_nOpacity);
    if (Travelled() < Distance(skin)) {
        TravelTo(Travelled() + m_nStep);
    } else {
        StopTimer(orders);
        m_nAnimStatus = PopupState::IDT_WAITING;
        orders.bArrived = true;
    }
    orders.bMove = true;
}

void PopupMotion::TickWaiting(PopupOrders& orders, bool bCursorInside) noexcept {
    m_nAnimStatus = PopupState::IDT_WAITING;
    if (bCursorInside) {
        StartTimer(orders, PopupState::IDT_WAITING, kHoverInterval);
    } else if (m_bAnimated) {
        StartTimer(orders, PopupState::IDT_HIDING, m_nHideInterval);
    } else {
        StopTimer(orders);
        orders.bHide = true;
    }
}

void PopupMotion::TickHiding(PopupOrders& orders, bool bCursorInside) noexcept {
    m_nAnimStatus = PopupState::IDT_HIDING;
    orders.bMove = true;
    const bool isFading = m_side == TaskbarSide::TASKBAR_BOTTOM;
    if (isFading ? m_nCurrentOpacity == 0 : Travelled() <= 0) {
        StopTimer(orders);
        orders.bHide = true;
    } else if (!isFading) {
        TravelTo(Travelled() - m_nStep);
    } else if (bCursorInside) {
        SetPercent(orders, m_nOpacity);
        StartTimer(orders, PopupState::IDT_WAITING, kHoverInterval);
    } else {
        SetPercent(orders, static_cast<std::uint8_t>(m_nCurrentOpacity - 1));
    }
}

PopupOrders PopupMotion::ScreenChanged(const PopupScreen& screen, PopupSize skin) noexcept {
    PopupOrders orders;
    if (!IsVisible()) {
        return orders;
    }
    const bool wasSliding = IsSliding();
    const int travelled = Travelled();
    const TaskbarSide side = m_side;
    const int startX = m_nStartX;
    const int startY = m_nStartY;
    Place(screen, skin);
    // What changed elsewhere moves nothing, not even the pixel that a last step may reach too far.
    if (m_side == side && m_nStartX == startX && m_nStartY == startY) {
        return orders;
    }
    const int distance = Distance(skin);
    TravelTo(wasSliding && IsSliding() ? std::min(travelled, distance) : distance);
    orders.bMove = true;
    return orders;
}

bool PopupMotion::IsVisible() const noexcept {
    return m_nAnimStatus != PopupState::IDT_IDLE || m_timer != PopupState::IDT_IDLE;
}

PopupBounds PopupMotion::Bounds(PopupSize skin, int nFrameX, int nFrameY) const noexcept {
    return {m_nCurrentX, m_nCurrentY, Length(skin.nWidth) + 2 * Length(nFrameY),
            Length(skin.nHeight) + 2 * Length(nFrameX)};
}

void PopupMotion::Place(const PopupScreen& screen, PopupSize skin) noexcept {
    m_side = FindTaskbar(screen);
    m_nStep = std::max(1, PixelsAt(screen.nDpi, kStep));
    m_nRise = PixelsAt(screen.nDpi, kBottomRise);
    m_nStartX = Coordinate(screen.nWorkRight);
    m_nStartY = Coordinate(screen.nWorkBottom) - Length(skin.nHeight);
    switch (m_side) {
        case TaskbarSide::None:
        case TaskbarSide::TASKBAR_RIGHT:
            break;
        case TaskbarSide::TASKBAR_LEFT:
            m_nStartX = Coordinate(screen.nWorkLeft) - Length(skin.nWidth);
            break;
        case TaskbarSide::TASKBAR_TOP:
            m_nStartX -= Length(skin.nWidth);
            m_nStartY = Coordinate(screen.nWorkTop) - Length(skin.nHeight);
            break;
        case TaskbarSide::TASKBAR_BOTTOM:
            m_nStartX -= Length(skin.nWidth) + PixelsAt(screen.nDpi, kBottomInset);
            m_nStartY = Coordinate(screen.nWorkBottom) - m_nRise;
            break;
    }
    const int steps = Distance(skin) / m_nStep;
    m_nShowInterval = Interval(m_nShowDuration, steps);
    m_nHideInterval = Interval(m_nHideDuration, steps);
}

// A popup that has been put back, or that fades, stands in its place although it is Hiding.
bool PopupMotion::IsSliding() const noexcept {
    return m_timer == PopupState::IDT_SHOWING ||
           (m_nAnimStatus == PopupState::IDT_HIDING && m_timer == PopupState::IDT_HIDING &&
            m_side != TaskbarSide::TASKBAR_BOTTOM);
}

bool PopupMotion::IsUpright() const noexcept {
    return m_side == TaskbarSide::TASKBAR_TOP || m_side == TaskbarSide::TASKBAR_BOTTOM;
}

// In which the coordinate goes while the popup slides in.
int PopupMotion::Direction() const noexcept {
    return m_side == TaskbarSide::TASKBAR_TOP || m_side == TaskbarSide::TASKBAR_LEFT ? 1 : -1;
}

// From the start to the place where the popup is wholly shown.
int PopupMotion::Distance(PopupSize skin) const noexcept {
    return Length(IsUpright() ? skin.nHeight : skin.nWidth);
}

int PopupMotion::Travelled() const noexcept {
    return (IsUpright() ? m_nCurrentY - m_nStartY : m_nCurrentX - m_nStartX) * Direction();
}

void PopupMotion::TravelTo(int nDistance) noexcept {
    m_nCurrentX = m_nStartX;
    m_nCurrentY = m_nStartY;
    (IsUpright() ? m_nCurrentY : m_nCurrentX) += Direction() * nDistance;
}

void PopupMotion::SetPercent(PopupOrders& orders, std::uint8_t nPercent) noexcept {
    m_nCurrentOpacity = nPercent;
    orders.alpha = static_cast<std::uint8_t>(nPercent * 255 / 100);
}

void PopupMotion::StartTimer(PopupOrders& orders, PopupState id,
                             std::uint32_t nMilliseconds) noexcept {
    StopTimer(orders);
    m_timer = id;
    orders.setTimer = {id, std::min(nMilliseconds, kLongestTimer)};
}

void PopupMotion::StopTimer(PopupOrders& orders) noexcept {
    if (m_timer != PopupState::IDT_IDLE) {
        orders.nKillTimers |= Bit(m_timer);
    }
    m_timer = PopupState::IDT_IDLE;
}

}  // namespace mvp
