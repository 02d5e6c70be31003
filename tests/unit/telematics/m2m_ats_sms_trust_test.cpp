// Trusted numbers against the scripted modem: the filter's lines and the
// switches read back, errorId per reply class, and the list filled entry by
// entry up to the caller's count.
#include <string>

#include "atapi/m2m_ats_sms.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr int32_t kCme10 = 13;  // id of "+CME ERROR: 10"
constexpr int32_t kCms316 = 12;

// clang-format off
TEST(M2mAtsSmsTrust, Filter) {
    using R = TrustNumCtrl;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtTrustNumCtrl(o, &r); }; };
    const auto errorId = [](int32_t id) { return [id](R &r) { r.errorId = id; }; };
    RunCommandCases<R>({
        {"set", op(1), {Ok("AT^TNUMCTL=1,0,0").Prefix("").Timeout(30)}, 0, errorId(AT_ERRID_OK)},
        {"set +CME ERROR", op(1), {Fails("AT^TNUMCTL=1,0,0", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1, errorId(kCme10)},
        {"set ERROR leaves errorId", op(1), {Fails("AT^TNUMCTL=1,0,0", AT_RET_ERROR, "ERROR")}, -1},
        {"query", op(0), {Ok("AT^TNUMCTL?", "^TNUMCTL: 0,1,0").Timeout(30)}, 0,
         [](R &r) { r = {0, 1, AT_ERRID_OK}; }},
        {"query without a row is done", op(0), {Ok("AT^TNUMCTL?", "")}, 0, errorId(AT_ERRID_OK)},
        {"query +CMS ERROR", op(0), {Fails("AT^TNUMCTL?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")}, -1, errorId(kCms316)},
        {"query, exchange failed", op(0), {ExchangeFails("AT^TNUMCTL?")}, -1},
        {"op 2 sends nothing", op(2), {}, -1},
    }, R{1, 0, 0x5A});
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
    RunCommandCases<R>({
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
        {"+CME ERROR", read, {Fails("AT^TRUSTNUM?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1,
         [](R &r) { r.list.errorId = kCme10; }},
        {"count 0 sends nothing", [read](R &r) {
             r.list.count = 0;
             const int32_t ret = read(r);
             r.list.count = 2;
             return ret;
         }, {}, -1},
    }, preset);
    EXPECT_EQ(AtTrustNumList(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
