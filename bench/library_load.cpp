// What loading and attaching the library costs.
//
// Baseline "empty DLL": a library that does nothing, built as the product's are, loaded and freed
// the same way. The system's libraries are held loaded, as any host with a window holds them; then
// the modules that the library stands on as well. "5 empty DLLs" is the floor of the first case,
// which loads the library and four modules of its own.
#include <windows.h>

#include <array>
#include <initializer_list>

#include "bench.h"

namespace {

HMODULE Load(const char* pszFile) {
    const HMODULE module = LoadLibraryA(pszFile);
    if (module == nullptr) {
        std::fprintf(stderr, "%s does not load: error %lu\n", pszFile, GetLastError());
        std::exit(1);
    }
    return module;
}

void Hold(std::initializer_list<const char*> files) {
    for (const char* file : files) {
        Load(file);
    }
}

void LoadProduct() {
    FreeLibrary(Load("mvpingui.dll"));
}

void LoadEmpty() {
    FreeLibrary(Load("bench_empty.dll"));
}

void LoadFiveEmpty() {
    std::array<HMODULE, 5> modules = {Load("bench_empty.dll"), Load("bench_empty_2.dll"),
                                      Load("bench_empty_3.dll"), Load("bench_empty_4.dll"),
                                      Load("bench_empty_5.dll")};
    for (const HMODULE module : modules) {
        FreeLibrary(module);
    }
}

}  // namespace

int main() {
    // Few in a row, so that on a busy machine some round has the processor to itself.
    constexpr int kRepeats = 1;
    constexpr int kManyRounds = 300;
    using mvp::bench::Compare;
    using mvp::bench::Print;
    Hold({"user32.dll", "gdi32.dll", "advapi32.dll", "comctl32.dll", "ole32.dll"});
    Print("load + attach, the suite's modules anew", "empty DLL",
          Compare(kRepeats, LoadProduct, LoadEmpty, kManyRounds));
    Print("load + attach, the suite's modules anew", "5 empty DLLs",
          Compare(kRepeats, LoadProduct, LoadFiveEmpty, kManyRounds));
    Hold({"dlgfw.dll", "vklog.dll", "vkerrmes.dll", "vkevtsub.dll", "mvcext.dll"});
    Print("load + attach, the suite's modules loaded", "empty DLL",
          Compare(kRepeats, LoadProduct, LoadEmpty, kManyRounds));
}
