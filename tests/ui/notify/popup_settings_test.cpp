// What the administrator says of the popup, from the registry to what is seen.
#include "ui/notify/popup_probe.h"

namespace mvp::test {
namespace {

// One value in the place of what a popup is set up with.
struct Setting {
    const char* pszName;
    DWORD dwType;  // REG_NONE: it is not there
    std::string bytes;
    const char* pszStay = "2:3000";
    std::string strText = "Said.";  // "default": the library's own
    bool bShown = true;
};

std::string Bytes(DWORD dwValue) {
    return {reinterpret_cast<const char*>(&dwValue), sizeof dwValue};
}

std::vector<Setting> Settings() {
    const std::string most(259, 'm');
    return {
        {"Enable", REG_NONE, "", "2:0", "", false},
        {"Enable", REG_DWORD, Bytes(0), "2:0", "", false},
        {"Enable", REG_DWORD, Bytes(0x80000000)},
        {"Enable", REG_SZ, "1", "2:0", "", false},
        {"Enable", REG_QWORD, Bytes(1) + Bytes(0), "2:0", "", false},
        {"Duration", REG_NONE, "", "2:0"},
        {"Duration", REG_DWORD, Bytes(0), "2:1000"},
        {"Duration", REG_DWORD, Bytes(4294968), "2:2147483647"},
        {"Duration", REG_SZ, "9", "2:0"},
        {"Message", REG_NONE, "", "2:3000", ""},
        {"Message", REG_DWORD, Bytes(65), "2:3000", ""},
        {"Message", REG_SZ, std::string(1, '\0'), "2:3000", ""},
        {"Message", REG_SZ, {most.c_str(), 260}, "2:3000", most},
        {"Message", REG_SZ, most + std::string("m\0", 2), "2:3000", ""},
        {"Message", REG_SZ, most + "m", "2:3000", most + "m"},  // without its terminator
        {"Message", REG_SZ, "caf\xE9 \x80", "2:3000", "caf\xE9 \x80"},
        {"Message", REG_SZ, R"(<b>\na\n)", "2:3000", "<b>\na\n"},
        {"Message", REG_SZ, R"(<a href\n="http://x.example/">go</a>)", "2:3000", "default"},
    };
}

TEST_F(PopupTest, FollowsTheRegistry) {
    const Animation none(false);
    for (const bool card : {false, true}) {
        const char* key = card ? kCardAlert : kNoReader;
        const std::string name = card ? "DIALOG_POPUP_CARD_ALERT" : "DIALOG_POPUP_NO_READER";
        for (const Setting& setting : Settings()) {
            SCOPED_TRACE(key + (": " + setting.bytes));
            Configure(key);
            if (setting.dwType == REG_NONE) {
                m_hive.DeleteValue(key, setting.pszName);
            } else {
                m_hive.SetRaw(key, setting.pszName, setting.dwType, setting.bytes);
            }
            m_log.Clear();
            EXPECT_EQ(Init(card ? 1 : 0), setting.bShown);
            const bool isDefault = setting.strText == "default";
            const std::string text = isDefault ? TextOf(card ? 3039 : 3038) : setting.strText;
            EXPECT_EQ(TextIn(Controls()[0]), text);
            m_popup->Show();
            EXPECT_EQ(Timers(), setting.pszStay);
            const auto logged = [&](const std::string& line) {
                return m_log.Contains(2, "CPopupAlert::GetRegistryParameters: " + line);
            };
            EXPECT_TRUE(logged("returning csText = " + text)) << m_log.Dump();
            EXPECT_EQ(logged("Security pattern matched !"), isDefault);
            EXPECT_EQ(logged("Displaying default message " + name), isDefault);
        }
        m_hive.DeleteKey(key);
        EXPECT_FALSE(Init(card ? 1 : 0));
    }
}

TEST_F(PopupTest, FollowsTheTimeoutOfPasswords) {
    const Animation none(false);
    for (const Setting& setting : {Setting{"", REG_DWORD, Bytes(0), "2:0"},
                                   {"", REG_DWORD, Bytes(4), "2:4000"},
                                   {"", REG_DWORD, Bytes(4294968), "2:2147483647"},
                                   {"", REG_SZ, "4", "2:15000"}}) {
        m_hive.SetRaw(kAgent, "OTPWindowTimeout", setting.dwType, setting.bytes);
        EXPECT_TRUE(Init(DIALOG_POPUP_CARD_OTP));
        m_popup->Show();
        EXPECT_EQ(Timers(), setting.pszStay) << setting.dwType;
    }
}

}  // namespace
}  // namespace mvp::test
