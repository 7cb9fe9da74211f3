// Loads a suite module itself, from the build's bin/, and not the recording one beside the tests.
#pragma once

#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "platform/system_library.h"

class RealModule {
public:
    // `strName` is the module's name without ".dll".
    explicit RealModule(const std::string& strName)
        : m_module(LoadLibraryA((R"(..\bin\)" + strName + ".dll").c_str())) {
        EXPECT_TRUE(m_module) << strName << ": error " << GetLastError();
    }

    template <class Function>
    Function* Get(const char* pszName) const {
        auto* const function = mvp::FindFunction<Function*>(m_module.get(), pszName);
        EXPECT_NE(function, nullptr) << pszName;
        return function;
    }

private:
    mvp::ModuleHandle m_module;
};
