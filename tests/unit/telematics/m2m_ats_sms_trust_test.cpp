// Trusted numbers against the scripted modem: the filter's lines and the
// switches read back, errorId per reply class, and the list filled entry by
// entry up to the caller's count.
#include <string>

#include "atapi/m2m_ats_sms.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
TEST(M2mAtsSmsTrust, Filter) {
    using R = TrustNumCtrl;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtTrustNumCtrl(o, &r); }; };
    const auto errorId = [](int32_t id) { return [id](R &r) { r.errorId = id; }; };
    RunCommandCases<R>(Cases<R>{
        {"set", op(1), {Ok("AT^TNUMCTL=1,0,0").Prefix("").Timeout(30)}, 0, errorId(AT_ERRID_OK)},
        {"query", op(0), {Ok("AT^TNUMCTL?", "^TNUMCTL: 0,1,0").Timeout(30)}, 0,
         [](R &r) { r = {0, 1, AT_ERRID_OK}; }},
        {"query without a row is done", op(0), {Ok("AT^TNUMCTL?", "")}, 0, errorId(AT_ERRID_OK)},
        {"op 2 sends nothing", op(2), {}, -1},
    } + ErrorCases<R>("set", op(1), "AT^TNUMCTL=1,0,0", kSingle, &R::errorId) + ErrorCases<R>("query", op(0), "AT^TNUMCTL?", kSingle, &R::errorId),
      R{1, 0, 0x5A});
    EXPECT_EQ(AtTrustNumCtrl(0, nullptr), -1);
}

TEST(M2mAtsSmsTrust, List) {
    struct R {
        TrustNumEntry entries[3];
        TrustNumList list;
    };
    // The list points into the record only while the call runs.
    const auto read = [](R &r) {
        r.list.entries = r.entries;
        const int32_t ret = AtTrustNumList(&r.list);
        r.list.entries = nullptr;
        return ret;
    };
    const auto entry = [](TrustNumEntry &e, int32_t index, const char *number) {
        e.index = index;
        SetText(e.phonenum, number);
    };
    const std::string tooLong(26, '1');
    R preset = Filled<R>(0);
    preset.list = {2, nullptr, 0};
    SetText(preset.entries[1].phonenum, "kept");
    RunCommandCases<R>(Cases<R>{
        {"count 2 of three numbers", read,
         {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 1,\"+8613800000001\"\r\n^TRUSTNUM: 2,\"10086\"\r\n^TRUSTNUM: 3,\"10010\"").Prefix("").Timeout(30)}, 0,
         [entry](R &r) {
             entry(r.entries[0], 1, "+8613800000001");
             entry(r.entries[1], 2, "10086");
             r.list.errorId = AT_ERRID_OK;
         }},
        {"one number leaves the next entry", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 4,\"10086\"")}, 0,
         [entry](R &r) { entry(r.entries[0], 4, "10086"); r.list.errorId = AT_ERRID_OK; }},
        {"a line that parses to nothing uses no entry", read, {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 5,\"112\"\r\n^RSSI: 20")}, 0,
         // the row runs on to the next "^TRUSTNUM", so its number keeps the
         // line behind it; that line then parses to nothing
         [entry](R &r) { entry(r.entries[0], 5, "112\"\r\n^RSSI: 20"); r.list.errorId = AT_ERRID_OK; }},
        {"26 characters empty their entry, the next goes on", read,
         {Ok("AT^TRUSTNUM?", "^TRUSTNUM: 1,\"" + tooLong + "\"\r\n^TRUSTNUM: 2,\"10086\"")}, 0,
         [entry](R &r) {
             entry(r.entries[0], 1, "");
             entry(r.entries[1], 2, "10086");
             r.list.errorId = AT_ERRID_OK;
         }},
        {"count 0 sends nothing", [read](R &r) {
             r.list.count = 0;
             const int32_t ret = read(r);
             r.list.count = 2;
             return ret;
         }, {}, -1},
    } + ErrorCases<R>("list", read, "AT^TRUSTNUM?", kSingle, [](R &r, int32_t id) { r.list.errorId = id; }), preset);
    EXPECT_EQ(AtTrustNumList(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
