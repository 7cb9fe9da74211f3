// Makes a test program of the library's code believe in another system. The program is linked with
// --wrap=__imp_GetDeviceCaps,--wrap=__imp_GetVersionExA.
#pragma once

namespace mvp::test {

// As long as the object lives, screens have so many bits per pixel.
class ScreenOfDepth {
public:
    explicit ScreenOfDepth(int nBitsPerPixel);
    ScreenOfDepth(const ScreenOfDepth&) = delete;
    ScreenOfDepth& operator=(const ScreenOfDepth&) = delete;
    ~ScreenOfDepth();
};

// As long as the object lives, the system is the one whose edits do not warn of Caps Lock.
class OldSystem {
public:
    OldSystem();
    OldSystem(const OldSystem&) = delete;
    OldSystem& operator=(const OldSystem&) = delete;
    ~OldSystem();
};

}  // namespace mvp::test
