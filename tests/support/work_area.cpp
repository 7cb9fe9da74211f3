#include "support/work_area.h"

#include <stdexcept>

namespace mvp::test {
namespace {

bool SetWorkArea(RECT rect) {
    return SystemParametersInfoA(SPI_SETWORKAREA, 0, &rect, 0) != FALSE;
}

}  // namespace

WorkArea::WorkArea(const RECT& rect) : m_before(Now()) {
    if (!SetWorkArea(rect))
        throw std::runtime_error("the system refused the work area");
}

WorkArea::~WorkArea() {
    SetWorkArea(m_before);
}

RECT WorkArea::Now() {
    RECT rect = {};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &rect, 0);
    return rect;
}

}  // namespace mvp::test
