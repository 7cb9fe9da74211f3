// Every transcript is played, and what happens is what it says.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "pinentry/played_session.h"

namespace pinentry {
namespace {

std::vector<std::filesystem::path> Transcripts() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(PINENTRY_TRANSCRIPTS)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string Read(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class TranscriptTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(TranscriptTest, HappensAsWritten) {
    const std::string transcript = Read(GetParam());
    EXPECT_EQ(Play(transcript), WithoutComments(transcript));
}

INSTANTIATE_TEST_SUITE_P(All, TranscriptTest, testing::ValuesIn(Transcripts()),
                         [](const auto& transcript) { return transcript.param.stem().string(); });

}  // namespace
}  // namespace pinentry
