#include "reply_builder.h"

#include "platform/bounded.h"

namespace atserver {
namespace {

constexpr size_t kMaxReportChars = AT_REPORT_STR_LEN - 1;
constexpr char kLineBreak[] = "\r\n";
constexpr size_t kLineBreakLen = sizeof kLineBreak - 1;
constexpr char kLineTooLong[] = "ERROR: reply line too long";

}  // namespace

ReplyText OkReply(const std::vector<std::string> &infoLines) {
    for (const std::string &line : infoLines) {
        if (line.size() > kMaxReportChars) return LineTooLongReply(line.size());
    }
    ReplyText reply;
    reply.retVal = AT_RET_OK;
    size_t kept = 0;
    for (const std::string &line : infoLines) {
        const size_t extra = (kept == 0 ? 0 : kLineBreakLen) + line.size();
        if (reply.text.size() + extra > kMaxReportChars) break;
        if (kept != 0) reply.text += kLineBreak;
        reply.text += line;
        ++kept;
    }
    reply.linesCut = infoLines.size() - kept;
    return reply;
}

ReplyText ErrorReply(int32_t retVal, const std::string &finalLine) {
    ReplyText reply;
    reply.retVal = retVal;
    reply.text = finalLine.substr(0, kMaxReportChars);
    return reply;
}

ReplyText LineTooLongReply(size_t length) {
    ReplyText reply = ErrorReply(AT_RET_ERROR, kLineTooLong);
    reply.lineTooLong = length;
    return reply;
}

ReplyText AbortedReply() { return ErrorReply(AT_RET_ABORTED, "AT_ABORTED"); }

ReplyText PlainErrorReply() { return ErrorReply(AT_RET_ERROR, "ERROR"); }

AtSrvMsg MakeReplyRecord(const AtSrvMsg &request, const ReplyText &reply) {
    AtSrvMsg record = request;
    AtSrvRcvMsg &rMsg = record.sndRcvMsg.rMsg;
    memset_s(rMsg.atReportStr, sizeof rMsg.atReportStr, 0, sizeof rMsg.atReportStr);
    // The text is at most kMaxReportChars long by construction; the copy keeps the terminator.
    memcpy_s(rMsg.atReportStr, sizeof rMsg.atReportStr - 1, reply.text.data(), reply.text.size());
    rMsg.retVal = reply.retVal;
    rMsg.atReportLen = static_cast<int32_t>(reply.text.size());
    return record;
}

}  // namespace atserver
