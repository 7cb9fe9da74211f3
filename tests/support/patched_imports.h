// Functions of a test in the place of those that a module imports, while the object lives:
//
//     const PatchedImports refused("dlgfw.dll", {{"calloc", Address(&Refuse)}});
//
// Calls of the module's own code go to them, on all threads; those of other modules do not.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

namespace mvp::test {

class PatchedImports {
public:
    struct Function {
        const char* pszName;
        void* pReplacement;
        const char* pszLibrary = nullptr;  // where it is imported from; null: from anywhere
    };

    // The module by its file name; null is the program itself. A module that is not loaded, and a
    // function that it does not import, is left out.
    PatchedImports(const char* pszModule, std::initializer_list<Function> functions);
    PatchedImports(const PatchedImports&) = delete;
    PatchedImports& operator=(const PatchedImports&) = delete;
    ~PatchedImports();

    bool IsEmpty() const { return m_originals.empty(); }

private:
    std::vector<std::pair<void**, void*>> m_originals;  // where each stood
};

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace mvp::test
