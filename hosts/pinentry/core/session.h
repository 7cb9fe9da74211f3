// A client's connection: requests come line by line, each is answered before the next one is read.
//
//     Session session(channel, userInterface, codePage, {1234, "1.0.0"});
//     session.Run();
//
// A client that goes ends it, also while a window is open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pinentry/core/channel.h"
#include "pinentry/core/responses.h"
#include "pinentry/core/settings.h"
#include "pinentry/core/user_interface.h"

namespace pinentry {

struct ProcessInfo {
    std::uint32_t nId = 0;
    std::string strVersion;
};

class Session {
public:
    // Refers to the first three as long as it lives. The options are those of the command line;
    // nTimeout, in seconds, counts until the client sets another, and again after RESET.
    Session(Channel& channel, UserInterface& user, const CodePage& codePage, ProcessInfo process,
            ConnectionOptions options = {}, std::uint32_t nTimeout = 0);

    // Returns when the client has said goodbye or has gone.
    void Run();

private:
    struct Command;
    static const Command* Find(std::string_view name);

    bool Handle(const InputLine& line);
    bool Dispatch(std::string_view text);
    bool SetText(const Command& command, std::string_view text);

    bool OnSetTimeout(std::string_view text);
    bool OnSetRepeat(std::string_view text);
    bool OnSetQualityBar(std::string_view text);
    bool OnAccepted(std::string_view text);
    bool OnGetPin(std::string_view text);
    bool OnConfirm(std::string_view text);
    bool OnMessage(std::string_view text);
    bool OnGetInfo(std::string_view text);
    bool OnOption(std::string_view text);
    bool OnReset(std::string_view text);
    bool OnHelp(std::string_view text);
    bool OnBye(std::string_view text);

    bool AskPin(PinQuestion& question);
    Answer AskOnce(const PinQuestion& question, Secret& pin);
    // False: the new PIN was refused and is to be asked for again. None: the request is over.
    std::optional<bool> IsNewPinTaken(const Secret& pin);
    std::optional<bool> MeetsConstraints(const Secret& pin);
    std::optional<bool> IsGoodEnough(const Secret& pin);
    std::optional<std::string> Inquire(std::string_view keyword, const Secret& pin);
    void TellRefusal(const std::string& strTitle, const std::string& strText);
    bool ShowConfirmation(bool bOneButton);
    bool RefuseFor(Answer answer);
    bool Fail(ErrorCode code);
    // After the result of Responses: the session ends when the client has gone.
    bool Sent(bool bSent);

    Channel& m_channel;
    UserInterface& m_user;
    const CodePage& m_codePage;
    ProcessInfo m_process;
    Responses m_responses;
    RequestSettings m_settings;
    ConnectionOptions m_options;
    std::uint32_t m_nTimeout;  // what RESET goes back to
    bool m_bOver = false;
};

}  // namespace pinentry
