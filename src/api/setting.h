// A setting kept in a record that has an errorId, with the forms a
// function's cmdType selects: the query and test forms read the first reply
// row into the record through the list primitive, the set form sends the line
// the function builds from the record through the simple primitive.
#pragma once

#include <cstddef>
#include <cstdint>

#include "api/command.h"
#include "api/conventions.h"

namespace atapi::api {

// The test form of a setting that has none.
inline constexpr CommandDescription kNoTest{.format = nullptr};

template <typename Record, size_t N>
struct Setting {
    CommandDescription query;
    CommandDescription test;  // kNoTest: the test form is refused
    Fields<Record, N> fields;
};
template <typename Record, size_t N>
Setting(CommandDescription, CommandDescription, Fields<Record, N>) -> Setting<Record, N>;

// form run for r: the query or test form read into r, or the line set(r)
// builds sent (a line that was not built is logged under traceSrc as
// formatFailed); -1 for a form the setting does not have.
template <typename Record, size_t N, typename MakeSet>
int32_t RunForm(uint32_t form, Record &r, const Setting<Record, N> &s, MakeSet set,
                const char *traceSrc, const char *formatFailed) {
    if (form == kSetForm) return SendOrLog(traceSrc, formatFailed, set(r), &r.errorId);
    const CommandDescription *d = form == kQueryForm  ? &s.query
                                  : form == kTestForm ? &s.test
                                                      : nullptr;
    if (d == nullptr || d->format == nullptr) return -1;
    return Command(*d).Query(s.fields, r, &r.errorId);
}

}  // namespace atapi::api
