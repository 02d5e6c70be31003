// The command frame: a command function names its CommandDescription and field
// list as constants and hands them, with its arguments, to a Command:
//
//   constexpr CommandDescription kLockQuery = Reads("AT^CARDLOCK?", "^CARDLOCK", module::kPin);
//   constexpr auto kLockFields = FieldList(Field<&CardLockInfo::state>("state"),
//                                          Field<&CardLockInfo::times>("times"));
//   ...
//   return Command(kLockQuery).Query(kLockFields, *info, &info->errorId);
//
// The line is formatted once, bounded, when the Command is made; a line that
// does not fit leaves the Command false and every send refuses to go out.
// A description marked secret keeps its line in a buffer that is wiped on every
// path and is sent through the secure primitive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "api/command_description.h"
#include "api/command_line.h"
#include "api/field_list.h"
#include "api/reply_lines.h"
#include "api/srv_msg_owner.h"
#include "atapi/at_parse.h"
#include "atapi/at_send.h"
#include "parse/at_parse_rows.h"

namespace atapi::api {

namespace detail {
template <typename T>
concept LineArgument =
    std::is_arithmetic_v<T> || std::is_same_v<T, const char *> || std::is_same_v<T, char *>;
}

class Command {
  public:
    // A description without arguments is sent as written.
    explicit Command(const CommandDescription &description)
        : description_(description), line_(description.secrecy) {
        formatted_ = line_.Format("%s", description.format);
    }
    template <detail::LineArgument... Args>
    requires(sizeof...(Args) > 0) Command(const CommandDescription &description, Args... args)
        : description_(description), line_(description.secrecy) {
        formatted_ = line_.Format(description.format, args...);
    }

    // Whether the line was built; false when it did not fit.
    explicit operator bool() const { return formatted_; }
    const char *Line() const { return line_.Text(); }
    // Hands the line's buffer and capacity to edit(char *, size_t), for the
    // exported helpers that extend a caller's command buffer; false (and the
    // Command false) when edit fails.
    template <typename Edit>
    bool EditLine(Edit edit) {
        formatted_ = formatted_ && edit(line_.Buffer(), CommandLine::kCapacity);
        return formatted_;
    }

    // Without reply data: the simple primitive, or the secure one for a secret.
    int32_t Send(int32_t *errorId) const;

    // The first reply row into record, through the list primitive.
    template <typename Record, size_t N>
    int32_t Query(const Fields<Record, N> &fields, Record &record, int32_t *errorId) const {
        if (!formatted_) return -1;
        std::array<AtParamDesc, N> rows = Bind(fields, record);
        const AtCmdDesc desc = description_.Desc(line_.Text());
        return AtSendAndGetListRspSpecialTimeout(&desc, rows.data(), N, errorId,
                                                 description_.timeoutSec);
    }

    // The reply text after the response prefix's ':' (or the whole text when
    // the description has no prefix) into out, through the single-string primitive.
    template <size_t N>
    int32_t QueryText(char (&out)[N], int32_t *errorId) const {
        return QueryText(out, static_cast<int32_t>(N), errorId);
    }
    int32_t QueryText(char *out, int32_t outSize, int32_t *errorId) const;

    // The reply cut into lines at each response prefix, through the
    // multi-line primitive; lines holds them on success.
    template <int32_t Capacity>
    int32_t SendLines(ReplyLines<Capacity> &lines, int32_t *errorId) const {
        if (!formatted_) return -1;
        const char *const desc[2] = {line_.Text(), description_.rspPrefix};
        int32_t count = Capacity;
        const int32_t ret =
            AtSendMultiCmd(desc, lines.Slots(), &count, errorId, description_.timeoutSec);
        if (ret == 0) lines.SetCount(count);
        return ret;
    }

    // Fills msg with the line and exchanges it: 0 when a reply arrived (its
    // class is msg.RetVal()), -1 when nothing could be sent or no reply came.
    int32_t Exchange(OwnedSrvMsg &msg, uint32_t multiRsp = 0) const;

  private:
    CommandDescription description_;
    CommandLine line_;
    bool formatted_ = false;
};

// As cmd.Send, and a line that was not built is logged at error level as
// formatFailed under the caller's trace source before -1 is returned.
int32_t SendOrLog(const char *traceSrc, const char *formatFailed, const Command &cmd,
                  int32_t *errorId);

// The first row of text parsed as description's reply into record.
template <typename Record, size_t N>
int32_t ParseFields(const CommandDescription &description, char *text,
                    const Fields<Record, N> &fields, Record &record) {
    std::array<AtParamDesc, N> rows = Bind(fields, record);
    const AtCmdDesc desc = description.Desc(nullptr);
    return AtParseNodeFromBuf(&desc, text, rows.data(), N);
}

// text parsed as description's reply; *status gets the parser's code.
ParseRows ParseReply(const CommandDescription &description, char *text, int32_t *status);

// Calls visit(name, value) for each field of row (the first node of a row,
// nextField onwards) whose name and value are both set.
template <typename Visit>
void ForEachField(const AtCmdParseNode *row, Visit visit) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (node->atFieldName != nullptr && node->atFieldValue != nullptr) {
            visit(static_cast<const char *>(node->atFieldName),
                  static_cast<const char *>(node->atFieldValue));
        }
    }
}

}  // namespace atapi::api
