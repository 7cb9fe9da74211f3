// demoproduct install PACKAGE.msi [VERSION...]: installs the product of the demonstrations, with a
// patch for each version. demoproduct remove: removes it.
#include <windows.h>

#include <array>
#include <cstdio>
#include <exception>
#include <string>

#include "demoproduct/demo_product.h"

namespace {

constexpr int kMostPatches = 9;

int Usage() {
    std::fputs("usage: demoproduct install PACKAGE.msi [VERSION...] | demoproduct remove\n",
               stderr);
    return 2;
}

std::string AbsolutePath(const char* pszPath) {
    std::array<char, MAX_PATH> path{};
    const DWORD length = GetFullPathNameA(pszPath, MAX_PATH, path.data(), nullptr);
    return length > 0 && length < MAX_PATH ? path.data() : pszPath;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    try {
        if (command == "remove" && argc == 2) {
            mvp::RemoveDemoProduct();
            return 0;
        }
        if (command != "install" || argc < 3 || argc > 3 + kMostPatches) {
            return Usage();
        }
        mvp::InstallDemoProduct(AbsolutePath(argv[2]));
        for (int patch = 1; 2 + patch < argc; ++patch) {
            mvp::PatchDemoProduct(patch, argv[2 + patch]);
        }
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "demoproduct: %s\n", error.what());
        return 3;
    }
}
