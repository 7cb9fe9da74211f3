// Loads a suite module itself, from the build's bin/, and not the recording one beside the tests.
#pragma once

#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "platform/handle.h"

class CRealModule {
public:
    // `strName` is the module's name without ".dll".
    explicit CRealModule(const std::string& strName)
        : m_module(LoadLibraryA(PathOf(strName).c_str())) {
        EXPECT_TRUE(m_module) << PathOf(strName) << ": error " << GetLastError();
    }

    // Null when the module or the function is missing; the test has failed then.
    template <class Function>
    Function* Get(const char* pszName) const {
        const FARPROC address = m_module ? GetProcAddress(m_module.get(), pszName) : nullptr;
        EXPECT_TRUE(address != nullptr) << pszName;
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }

    static std::string PathOf(const std::string& strName) {
        char program[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, program, sizeof(program));
        const std::string strProgram = program;
        return strProgram.substr(0, strProgram.rfind('\\')) + R"(\..\bin\)" + strName + ".dll";
    }

private:
    mvp::ModuleHandle m_module;
};
