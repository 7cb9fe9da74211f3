// The library as a host has it after loading, in a white-box test program: attached while this
// object lives.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "frame/module.h"

namespace mvp::test {

class AttachedLibrary {
public:
    AttachedLibrary() { EXPECT_TRUE(AttachLibrary(GetModuleHandleA(nullptr))); }
    AttachedLibrary(const AttachedLibrary&) = delete;
    AttachedLibrary& operator=(const AttachedLibrary&) = delete;
    ~AttachedLibrary() { DetachLibrary(); }
};

}  // namespace mvp::test
