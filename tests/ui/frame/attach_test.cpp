// What the library does when it is loaded and unloaded.
#include <windows.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "frame/module.h"
#include "frame/resource_module.h"
#include "support/log_recorder.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

constexpr char kInstallKey[] = "Software\\Quillon\\Veskara";

// A current directory without a resource module, left at the end.
class EmptyDirectory {
public:
    EmptyDirectory()
        : m_old(std::filesystem::current_path()),
          m_path(m_old / ("attach_test_" + std::to_string(GetCurrentProcessId()))) {
        std::filesystem::create_directories(m_path);
        std::filesystem::current_path(m_path);
    }
    EmptyDirectory(const EmptyDirectory&) = delete;
    EmptyDirectory& operator=(const EmptyDirectory&) = delete;
    ~EmptyDirectory() {
        std::filesystem::current_path(m_old);
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::filesystem::path& Old() const { return m_old; }

private:
    std::filesystem::path m_old;
    std::filesystem::path m_path;
};

class Attached {
public:
    Attached() : m_bAttached(AttachLibrary(GetModuleHandleA(nullptr))) {}
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;
    ~Attached() { DetachLibrary(); }
    bool Succeeded() const { return m_bAttached; }

private:
    bool m_bAttached;
};

bool IsProgressBarClassKnown() {
    WNDCLASSA info{};
    return GetClassInfoA(GetModuleHandleA(nullptr), "VkProgressBar", &info) != FALSE &&
           info.style == 0x4003;
}

TEST(Attach, FindsTheModuleBelowTheCurrentDirectory) {
    RegistryHive hive;
    LogRecorder log;
    {
        const Attached library;
        EXPECT_TRUE(library.Succeeded());
        EXPECT_NE(ResourceModule(), nullptr);
        EXPECT_TRUE(log.Lines().empty()) << log.Dump();
        EXPECT_TRUE(IsProgressBarClassKnown());
        EXPECT_EQ(ModuleInstance(), GetModuleHandleA(nullptr));
    }
    EXPECT_EQ(ResourceModule(), nullptr);
    EXPECT_FALSE(IsProgressBarClassKnown());
}

TEST(Attach, FallsBackToTheInstallPath) {
    RegistryHive hive;
    const EmptyDirectory directory;
    hive.SetString(kInstallKey, "VeskaraInstallPath", directory.Old().string() + "\\");
    LogRecorder log;
    const Attached library;
    EXPECT_TRUE(library.Succeeded());
    EXPECT_NE(ResourceModule(), nullptr);
    EXPECT_TRUE(log.Texts(1).empty() && log.Texts(2).empty()) << log.Dump();
}

TEST(Attach, WithoutAnInstallPathAsksTheLoaderItself) {
    RegistryHive hive;
    const EmptyDirectory directory;
    LogRecorder log;
    const Attached library;
    // The loader finds the relative path beside the program.
    EXPECT_NE(ResourceModule(), nullptr);
    EXPECT_TRUE(log.Contains(2, "Warning : RegOpenKeyEx returns 2")) << log.Dump();
}

TEST(Attach, LivesWithoutTheModule) {
    struct Case {
        std::string strInstallPath;
        std::string strTried;
    };
    // A path that leaves no room is cut at the buffer's end, never written beyond it.
    const std::string full(511, 'x');
    const std::string nearlyFull(500, 'y');
    const Case cases[] = {
        {"C:\\nowhere\\", R"(C:\nowhere\Resources\Localized\mvpinguirc.dll)"},
        {nearlyFull, nearlyFull + "Resources\\L"},
        {full, full},
    };
    for (const Case& c : cases) {
        RegistryHive hive;
        hive.SetString(kInstallKey, "VeskaraInstallPath", c.strInstallPath);
        const EmptyDirectory directory;
        LogRecorder log;
        const Attached library;
        EXPECT_TRUE(library.Succeeded());
        EXPECT_EQ(ResourceModule(), nullptr);
        EXPECT_TRUE(log.ContainsPart("LoadLibrary(" + c.strTried + ") failed with error code 0x"))
            << log.Dump();
        // Nothing is searched in the host's own resources instead.
        CString text("before");
        EXPECT_FALSE(LoadResourceString(1, text));
        EXPECT_EQ(std::string(text), "before");
        EXPECT_EQ(LoadResourceIcon(1, 16), nullptr);
    }
}

TEST(Attach, SurvivesAnInstallPathWithoutTerminator) {
    RegistryHive hive;
    hive.SetUnterminated(kInstallKey, "VeskaraInstallPath", std::string(512, 'z'));
    const EmptyDirectory directory;
    LogRecorder log;
    const Attached library;
    EXPECT_TRUE(library.Succeeded());
    EXPECT_TRUE(log.ContainsPart("LoadLibrary(" + std::string(511, 'z') + ") failed"))
        << log.Dump();
}

}  // namespace
}  // namespace mvp::test
