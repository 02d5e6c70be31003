// One exchange whose reply the function reads itself, and the ways the
// command functions turn such a reply into their result and errorId:
//
//   Reply reply(Command(kStateQuery));
//   if (const auto done = ErrorReplyDone(reply, s->errorId)) return *done;
//   return StateFromReply(reply.Text(), *s);
//
// The record, reply text included, is owned by the Reply and wiped when it
// goes out of scope.
#pragma once

#include <cstdint>
#include <optional>

#include "api/command.h"
#include "api/conventions.h"
#include "api/srv_msg_owner.h"
#include "atapi/at_text.h"
#include "atapi/at_types.h"

namespace atapi::api {

class Reply {
  public:
    // Sends cmd's line; a line that was not built sends nothing.
    explicit Reply(const Command &cmd) : status_(cmd.Exchange(msg_)) {}
    Reply(const Reply &) = delete;
    Reply &operator=(const Reply &) = delete;

    // 0 when a reply came; else -1 for a line that was not built, or the
    // failed exchange's own result.
    int32_t Status() const { return status_; }
    // The reply's class; 0 when no reply came.
    int32_t RetVal() const { return status_ == 0 ? msg_.RetVal() : 0; }
    bool Ok() const { return RetVal() == AT_RET_OK; }
    bool Aborted() const { return RetVal() == AT_RET_ABORTED; }
    bool CauseError() const { return IsCauseError(RetVal()); }
    // The id of the error reply's text.
    int32_t MappedErrorId() { return ErrorStrToErrorId(msg_.Report()); }
    // The failed exchange's own code, else 0 for OK and -1 for other classes.
    int32_t Result() const { return status_ != 0 ? status_ : (Ok() ? 0 : -1); }
    char *Text() { return msg_.Report(); }
    // The reply text parsed as description's reply; *status gets the parser's code.
    ParseRows Parse(const CommandDescription &description, int32_t *status) {
        return ParseReply(description, Text(), status);
    }

  private:
    OwnedSrvMsg msg_;
    int32_t status_;
};

// A query that counts an error reply as done. An OK reply gives nothing: the
// caller reads it. An error reply with a cause stores its mapped id and
// gives 0; another reply class gives -1, a failed exchange its own code.
std::optional<int32_t> ErrorReplyDone(Reply &reply, int32_t &errorId);

// Which error replies a set maps to an error id.
enum class Causes { kCmeOrCms, kCmeOnly };

// A set that keeps an error id: OK stores -2 and gives 0; an error reply of
// causes stores its mapped id and gives -1; anything else gives -1 and
// leaves errorId.
int32_t SetOutcome(Reply &reply, int32_t &errorId, Causes causes = Causes::kCmeOrCms);

}  // namespace atapi::api
