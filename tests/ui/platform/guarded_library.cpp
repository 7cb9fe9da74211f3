// Tells its own guard value; built twice, as two libraries of one process must not share it.
#include <cstdint>

extern "C" std::uintptr_t __stack_chk_guard;

extern "C" __declspec(dllexport) std::uintptr_t GuardValue() {
    return __stack_chk_guard;
}
