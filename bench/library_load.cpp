// What loading and attaching the library costs.
//
// Baseline "empty DLL": a library that does nothing, loaded and freed the same way. The modules
// that the library stands on are held loaded meanwhile, as in a process that already uses the
// suite; the second figure loads them anew each time.
#include <windows.h>

#include "bench.h"

namespace {

void LoadAndFree(const char* pszFile) {
    const HMODULE module = LoadLibraryA(pszFile);
    if (module == nullptr) {
        std::fprintf(stderr, "%s does not load: error %lu\n", pszFile, GetLastError());
        std::exit(1);
    }
    FreeLibrary(module);
}

}  // namespace

int main() {
    constexpr int kRepeats = 20;
    const auto load = [] { LoadAndFree("mvpingui.dll"); };
    const auto loadEmpty = [] { LoadAndFree("bench_empty.dll"); };
    mvp::bench::Print("load + attach, everything anew", "empty DLL",
                      mvp::bench::Compare(kRepeats, load, loadEmpty));
    for (const char* pszModule :
         {"dlgfw.dll", "vklog.dll", "vkerrmes.dll", "vkevtsub.dll", "mvcext.dll"})
        LoadLibraryA(pszModule);
    mvp::bench::Print("load + attach, suite loaded", "empty DLL",
                      mvp::bench::Compare(kRepeats, load, loadEmpty));
}
