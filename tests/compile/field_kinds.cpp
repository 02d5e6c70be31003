// Field rows whose kind does not fit their member must not compile. Built
// as is, this file is the control that does compile; each FIELD_* switch
// selects one row that must be refused.
#include <cstdint>

#include "api/field_list.h"

namespace {

struct Record {
    int32_t count;
    char text[8];
    const char *pointer;
};

using atapi::api::Field;
using atapi::api::FieldList;

#if defined(FIELD_WRONG_WIDTH)
constexpr auto kFields = FieldList(Field<&Record::count, AT_TYPE_LLONG>("count"));
#elif defined(FIELD_NO_KIND)
constexpr auto kFields = FieldList(Field<&Record::pointer>("pointer"));
#elif defined(FIELD_TEXT_AS_NUMBER)
constexpr auto kFields = FieldList(Field<&Record::text, AT_TYPE_INT>("text"));
#else
constexpr auto kFields =
    FieldList(Field<&Record::count, AT_TYPE_UINT>("count", 0, 9), Field<&Record::text>("text"));
#endif

}  // namespace

int main() { return kFields.size() > 0 ? 0 : 1; }
