#include "pinentry/core/errors.h"

namespace pinentry {

const char* NameOf(ErrorCode code) {
    switch (code) {
        case ErrorCode::General:
            return "General error";
        case ErrorCode::InvalidValue:
            return "Invalid value";
        case ErrorCode::Timeout:
            return "Timeout";
        case ErrorCode::TooLarge:
            return "Too large";
        case ErrorCode::NoPinentry:
            return "No pinentry";
        case ErrorCode::Canceled:
            return "Operation cancelled";
        case ErrorCode::NotConfirmed:
            return "Not confirmed";
        case ErrorCode::LocaleProblem:
            return "Character outside the code page";
        case ErrorCode::UnknownOption:
            return "Unknown option";
        case ErrorCode::LineTooLong:
            return "Line too long";
        case ErrorCode::UnexpectedCommand:
            return "Unexpected command";
        case ErrorCode::UnknownCommand:
            return "Unknown command";
        case ErrorCode::Syntax:
            return "Syntax error";
        case ErrorCode::InquiryCanceled:
            return "Inquiry cancelled";
        case ErrorCode::Parameter:
            return "Parameter error";
    }
    return "Error";
}

}  // namespace pinentry
