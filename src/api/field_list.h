// Field lists: which template field fills which member of a result record.
//
// The value kind and the store size of a row are derived from the record
// member at compile time, so a row cannot write another width than its
// member has:
//
//   constexpr auto kFields = FieldList(Field<&CardLockInfo::state>("state"),
//                                      Field<&CardLockInfo::times>("times", 0, 10));
//
// A member that no kind can store (a pointer, a struct, a one-byte text)
// does not compile, nor does an explicit kind of another width
// (Field<&Rec::count, AT_TYPE_LLONG> on a 32-bit member). Bind() points the
// rows at a caller's record when the call runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "atapi/at_types.h"

namespace atapi::api {

namespace detail {

template <typename Pointer>
struct MemberOf;
template <typename Record, typename Member>
struct MemberOf<Member Record::*> {
    using RecordType = Record;
    using MemberType = Member;
};

// The kind a member is filled with unless the row names another of the
// same width: texts for char arrays, 32-bit integers for 4-byte members
// (as atoi reads them), 64-bit for 8-byte ones, 8-bit for single bytes.
template <typename Member, typename = void>
struct DefaultKind {};  // no value: such a member has no kind
template <size_t N>
struct DefaultKind<char[N]> : std::integral_constant<uint32_t, AT_TYPE_STRING> {};
template <>
struct DefaultKind<signed char> : std::integral_constant<uint32_t, AT_TYPE_CHAR> {};
template <>
struct DefaultKind<unsigned char> : std::integral_constant<uint32_t, AT_TYPE_UCHAR> {};
template <typename Member>
struct DefaultKind<Member, std::enable_if_t<std::is_integral_v<Member> && sizeof(Member) == 4>>
    : std::integral_constant<uint32_t, AT_TYPE_INT> {};
template <typename Member>
struct DefaultKind<Member, std::enable_if_t<std::is_integral_v<Member> && sizeof(Member) == 8>>
    : std::integral_constant<uint32_t, AT_TYPE_LLONG> {};

template <typename Member>
concept HasKind = requires {
    DefaultKind<Member>::value;
};

// Whether a kind stores exactly as many bytes as the member holds.
template <uint32_t Kind, typename Member>
constexpr bool KindFits() {
    if constexpr (std::is_array_v<Member>) {
        return Kind == AT_TYPE_STRING && std::is_same_v<std::remove_extent_t<Member>, char> &&
               std::extent_v<Member> > 1;
    } else if constexpr (std::is_integral_v<Member>) {
        switch (Kind) {
            case AT_TYPE_CHAR:
            case AT_TYPE_UCHAR:
                return sizeof(Member) == 1;
            case AT_TYPE_INT:
            case AT_TYPE_UINT:
            case AT_TYPE_LONG:
            case AT_TYPE_ULONG:
                return sizeof(Member) == 4;
            case AT_TYPE_LLONG:
                return sizeof(Member) == 8;
            default:
                return false;
        }
    } else {
        return false;
    }
}

constexpr bool IsUnsignedKind(uint32_t kind) {
    return kind == AT_TYPE_UCHAR || kind == AT_TYPE_UINT || kind == AT_TYPE_ULONG;
}

template <auto Member>
void *Locate(typename MemberOf<decltype(Member)>::RecordType &record) {
    return &(record.*Member);
}

}  // namespace detail

// One row: a template field name, how its value is stored, where, and its
// accepted range (0..0: no range check).
template <typename Record>
struct FieldRow {
    const char *name;
    uint32_t kind;
    uint32_t size;
    int64_t minVal;
    int64_t maxVal;
    void *(*locate)(Record &record);
};

namespace detail {

template <typename Member, uint32_t... Kind>
consteval uint32_t ChooseKind() {
    if constexpr (sizeof...(Kind) == 1) {
        return (Kind, ...);
    } else {
        static_assert(HasKind<Member>, "no value kind can store this record member");
        return DefaultKind<Member>::value;
    }
}

}  // namespace detail

// Field<&Rec::member>("name") or Field<&Rec::member>("name", min, max);
// Field<&Rec::member, AT_TYPE_UINT>(...) names another kind of the same width.
template <auto Member, uint32_t... Kind>
requires(sizeof...(Kind) <= 1) consteval auto Field(const char *name, int64_t minVal = 0,
                                                    int64_t maxVal = 0) {
    using Traits = detail::MemberOf<decltype(Member)>;
    using MemberType = typename Traits::MemberType;
    constexpr uint32_t kind = detail::ChooseKind<MemberType, Kind...>();
    static_assert(detail::KindFits<kind, MemberType>(),
                  "the value kind does not fit the record member it fills");
    if (name == nullptr) throw "a field row needs a template field name";
    if (minVal > maxVal) throw "a field row's minimum is above its maximum";
    if (detail::IsUnsignedKind(kind) && minVal < 0) throw "an unsigned kind needs a minimum >= 0";
    return FieldRow<typename Traits::RecordType>{name,   kind,   sizeof(MemberType),
                                                 minVal, maxVal, &detail::Locate<Member>};
}

// A text row that stores fewer characters than its member could hold: at
// most size - 1 and the terminator.
template <typename Record>
consteval FieldRow<Record> Capped(FieldRow<Record> row, uint32_t size) {
    if (row.kind != AT_TYPE_STRING) throw "only a text row can be capped";
    if (size < 2 || size > row.size) throw "a capped text row stays inside its member";
    row.size = size;
    return row;
}

template <typename Record, size_t N>
using Fields = std::array<FieldRow<Record>, N>;

template <typename Record, typename... Rest>
consteval auto FieldList(FieldRow<Record> first, Rest... rest) {
    return Fields<Record, 1 + sizeof...(Rest)>{first, rest...};
}

// The rows of a field list, pointed at one record.
template <typename Record, size_t N>
std::array<AtParamDesc, N> Bind(const Fields<Record, N> &fields, Record &record) {
    std::array<AtParamDesc, N> rows{};
    for (size_t i = 0; i < N; ++i) {
        const FieldRow<Record> &f = fields[i];
        rows[i] = {f.name, f.kind, f.locate(record), f.size, f.minVal, f.maxVal};
    }
    return rows;
}

}  // namespace atapi::api
