// What the commands of the call module share beyond the frame: their
// exchange (the frame's Reply, with the module's log line for a line that
// did not fit), their reads of a parsed reply and their argument checks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "api/command.h"
#include "api/reply.h"
#include "atapi/at_types.h"

namespace atapi::call {

// The exchange of the call module's commands: a line that did not fit logs
// formatError (a format taking the formatter's result, -1, or no argument)
// and sends nothing.
class CallReply : public api::Reply {
  public:
    CallReply(const api::Command &cmd, const char *formatError);
};

// Sends cmd: 0 for an OK reply, -1 for any other class (abortMessage, when
// given, is logged for an aborted command); a failed exchange is handed
// back as it is.
int32_t SendForOk(const api::Command &cmd, const char *formatError,
                  const char *abortMessage = nullptr);

using api::Causes;
using api::SetOutcome;

// How a query takes its parsed reply: rows may be absent (nothing is
// stored), a row is required, or a row is required and the parser's own
// result is not looked at.
enum class RowPolicy { kMayBeEmpty, kNeedsRow, kNeedsRowOnly };

// Stores the fields of one parsed row through a field list.
template <typename Record, size_t N>
void StoreRow(const AtCmdParseNode *row, const api::Fields<Record, N> &fields, Record &record) {
    const std::array<AtParamDesc, N> params = api::Bind(fields, record);
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        AtParseNode(node, params.data(), N);
    }
}

// Logs the failed parse of a reply.
void LogParseFailure();

// The first row of an OK reply parsed as description's reply into record; -1 (and
// nothing stored) when the parse fails under policy.
template <typename Record, size_t N>
int32_t ReadFirstRow(CallReply &reply, const api::CommandDescription &description,
                     const api::Fields<Record, N> &fields, Record &record, RowPolicy policy) {
    int32_t status = 0;
    const ParseRows rows = reply.Parse(description, &status);
    const bool statusFails = policy != RowPolicy::kNeedsRowOnly && status != AT_PARSE_OK;
    const bool rowMissing = policy != RowPolicy::kMayBeEmpty && rows.Get() == nullptr;
    if (statusFails || rowMissing) {
        LogParseFailure();
        return -1;
    }
    StoreRow(rows.Get(), fields, record);
    return 0;
}

// The outcome of a query that keeps an error id: as SetOutcome, and an OK
// reply is read into record first (a failed read gives -1 and leaves
// errorId). A failed exchange gives -1.
template <typename Record, size_t N>
int32_t QueryOutcome(CallReply &reply, const api::CommandDescription &description,
                     const api::Fields<Record, N> &fields, Record &record, int32_t &errorId,
                     RowPolicy policy, Causes causes = Causes::kCmeOrCms) {
    if (!reply.Ok()) return SetOutcome(reply, errorId, causes);
    if (ReadFirstRow(reply, description, fields, record, policy) != 0) return -1;
    errorId = AT_ERRID_OK;
    return 0;
}

// The first node of row named name, or null.
const AtCmdParseNode *FindField(const AtCmdParseNode *row, const char *name);

// Whether a caller's text field ends inside its array and so can go into a
// line; logs formatError as a failed format when it does not.
bool TextFits(const char *text, size_t capacity, const char *formatError);
template <size_t N>
bool TextFits(const char (&text)[N], const char *formatError) {
    return TextFits(text, N, formatError);
}

}  // namespace atapi::call
