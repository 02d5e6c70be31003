// Trusted numbers against the scripted modem: the filter's lines and the
// switches read back, errorId per reply class, and the list filled entry by
// entry up to the caller's count.
#include <utility>

#include "atapi/m2m_ats_sms.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
TEST(M2mAtsSmsTrust, Filter) {
    using R = TrustNumCtrl;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtTrustNumCtrl(o, &r); }; };
    RunRows<R>({
        {"set", op(1), {Ok("AT^TNUMCTL=1,0,0").Prefix("").Timeout(30)}, 0, Done<R>, kSingle},
        {"query", op(0), {Ok("AT^TNUMCTL?", "^TNUMCTL: 0,1,0").Timeout(30)}, 0, [](R &r) { r = {0, 1, AT_ERRID_OK}; }, kSingle},
        {"query without a row is done", op(0), {Ok("AT^TNUMCTL?", "")}, 0, Done<R>},
        {"op 2 sends nothing", op(2), {}, -1},
    }, R{1, 0, 0x5A});
}

TEST(M2mAtsSmsTrust, List) {
    struct R {
        TrustNumEntry entries[3];
        TrustNumList list;
    };
    // The list points into the record only while the call runs.
    const auto read = [](R &r) { r.list.entries = r.entries; const int32_t ret = AtTrustNumList(&r.list); r.list.entries = nullptr; return ret; };
    const auto listed = [](std::vector<std::pair<int32_t, std::string>> entries) {
        return [entries](R &r) {
            for (size_t i = 0; i < entries.size(); ++i) { r.entries[i].index = entries[i].first; SetText(r.entries[i].phonenum, entries[i].second.c_str()); }
            r.list.errorId = AT_ERRID_OK;
        };
    };
    R preset = Filled<R>(0);
    preset.list = {2, nullptr, 0};
    SetText(preset.entries[1].phonenum, "kept");
    RunRows<R>({
        {"count 2 of three numbers", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 1,\"+8613800000001\"\r\n^TRUSTNUM: 2,\"10086\"\r\n^TRUSTNUM: 3,\"10010\"").Prefix("").Timeout(30)}, 0,
         listed({{1, "+8613800000001"}, {2, "10086"}}), kSingle},
        {"one number leaves the next entry", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 4,\"10086\"")}, 0, listed({{4, "10086"}})},
        // The row runs on to the next "^TRUSTNUM", so its number keeps the
        // line behind it; that line then parses to nothing.
        {"a line that parses to nothing uses no entry", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 5,\"112\"\r\n^RSSI: 20")}, 0, listed({{5, "112\"\r\n^RSSI: 20"}})},
        {"26 characters empty their entry, the next goes on", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 1,\"" + std::string(26, '1') + "\"\r\n^TRUSTNUM: 2,\"10086\"")}, 0,
         listed({{1, ""}, {2, "10086"}})},
        {"count 0 sends nothing", [read](R &r) { r.list.count = 0; const int32_t ret = read(r); r.list.count = 2; return ret; }, {}, -1},
    }, preset, [](R &r, int32_t id) { r.list.errorId = id; });
}

TEST(M2mAtsSmsTrust, NullArguments) {
    ExpectRefused({{"AtTrustNumCtrl", [] { return AtTrustNumCtrl(0, nullptr); }}, {"AtTrustNumList", [] { return AtTrustNumList(nullptr); }}});
}
// clang-format on

}  // namespace
}  // namespace atapi::test
