// A session between a played client and a played user, out of a transcript.
//
// A transcript is what happened, a line each:
//
//     L: --timeout 5          arguments of the program
//     C: GETPIN               what the client sends; \xHH is a byte, {A*9} nine times A
//     c: GETP                 the same without the line's end
//     W: PIN; label: Code     what the window shows
//     U: types 1234           what the user does
//     S: D 1234               what goes back
//     X: 0                    the exit code, of a program started with a prompt
//
// Playing it gives the lines that really happened. "#" begins a comment.
#pragma once

#include <string>

namespace pinentry {

// The lines that happened when what client and user do in the transcript was played.
std::string Play(const std::string& strTranscript);

// The transcript without its comments, its repetitions written out.
std::string WithoutComments(const std::string& strTranscript);

}  // namespace pinentry
