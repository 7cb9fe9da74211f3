// A session between a played client and a played user, out of a transcript.
//
// A transcript is what happened, each in a line or behind " | ":
//
//     L: --timeout=5          an argument of the program; L: hint X: what the environment holds
//     C: GETPIN               what the client sends; \xHH is a byte, {A*9} nine times A
//     c: GETP                 the same without the line's end
//     W: PIN; label: Code     what the window shows
//     U: types 1234           what the user does
//     S: D 1234               what goes back; the greeting is left out
//     X: 0                    the exit code, of a program started with a prompt
//
// Playing it gives what really happened. "#" begins a comment.
#pragma once

#include <string>

namespace pinentry {

// The lines that happened when what client and user do in the transcript was played.
std::string Play(const std::string& strTranscript);

// The transcript, a line for each event, without comments, its repetitions written out.
std::string WithoutComments(const std::string& strTranscript);

}  // namespace pinentry
