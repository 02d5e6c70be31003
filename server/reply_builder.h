// The reply record atserver sends back for a request. Its text is what the
// library's parsers read, so it holds exactly:
//  - OK: the information lines joined by "\r\n" (no echo, no blank lines, no
//    final "OK"; empty when the modem sent only "OK");
//  - an error class: the final result line alone;
//  - aborted: "AT_ABORTED".
// Information lines that do not all fit the record are cut at a line
// boundary. A line that no record can hold (longer than the text area, or
// dropped by the line reader) would leave a reply that looks complete but
// is not: such a command is answered class ERROR with the text
// "ERROR: reply line too long" instead, whatever its lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "atapi/at_types.h"

namespace atserver {

struct ReplyText {
    int32_t retVal = AT_RET_ERROR;
    std::string text;
    size_t linesCut = 0;     // information lines left out because they did not fit
    size_t lineTooLong = 0;  // > 0: the length of a line no record holds (an ERROR reply)
};

ReplyText OkReply(const std::vector<std::string> &infoLines);
ReplyText LineTooLongReply(size_t length);
ReplyText ErrorReply(int32_t retVal, const std::string &finalLine);
ReplyText AbortedReply();
// What requests get when the modem is gone or they are cleared.
ReplyText PlainErrorReply();

// The request record with its reply view filled: header and atName kept,
// the rest of the reply area zeroed (it held the command line).
AtSrvMsg MakeReplyRecord(const AtSrvMsg &request, const ReplyText &reply);

}  // namespace atserver
