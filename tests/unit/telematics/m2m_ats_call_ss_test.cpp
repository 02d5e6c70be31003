// Supplementary services against the scripted modem: the line per
// operation, the records read from realistic replies, the counters that
// only grow, the forwarding query that fails on any active rule, and the
// trusted-number list bounded by its count.

#include "atapi/m2m_ats_call.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
TEST(M2mAtsCallSs, Presentation) {
    const auto call = [](auto fn) { return [fn](NoRecord &) { return fn(); }; };
    RunRows<NoRecord>({
        {"CLIP", call([] { return AtsClip(1); }), {Ok("AT+CLIP=1").Prefix("")}, 0, {}, kFails},
        {"CLIR 16 sends no value", call([] { return AtClir(16); }), {Ok("AT+CLIR=")}, 0},
        {"CLIR 0", call([] { return AtClir(0); }), {Ok("AT+CLIR=0")}, 0},
        {"^CLIP 16 sends no value", call([] { return AtClipEx(16); }), {Ok("AT^CLIP=")}, 0},
        {"CSSN", call([] { AtsCssnInfo c{1, 0}; return AtsCssn(&c); }), {Ok("AT+CSSN=1,0")}, 0, {}, kFails},
    }, NoRecord{0});
    using R = AtClipClirInfo;
    const auto read = [](int32_t n, int32_t m) { return [n, m](R &r) { r = {n, m}; }; };
    const auto clip = [](R &r) { return AtClipQuery(&r); };
    RunRows<R>({
        {"CLIP", clip, {Ok("AT+CLIP?", "+CLIP: 1,2").Prefix("+CLIP:")}, 0, read(1, 2), kFails},
        {"CLIR, read by the CLIP template", [](R &r) { return AtClirQuery(&r); }, {Ok("AT+CLIR?", "+CLIR: 0,4").Prefix("+CLIR:")}, 0, read(0, 4)},
        {"^CLIP", [](R &r) { return AtClipQueryEx(&r); }, {Ok("AT^CLIP?", "^CLIP: 1,1").Prefix("^CLIP:")}, 0, read(1, 1)},
        {"no row", clip, {Ok("AT+CLIP?", "")}, -1},
    }, R{7, 7});
}

std::string WaitingRows(const char *prefix, int rows) {
    std::string text;
    for (int i = 0; i < rows; ++i) text += (i > 0 ? "\r\n" : "") + std::string(prefix) + ": 1," + std::to_string(i + 1);
    return text;
}

TEST(M2mAtsCallSs, CallWaiting) {
    using R = AtsCcwaInfo;
    const auto op = [](int32_t (*fn)(R *), int32_t mode) { return [fn, mode](R &r) { r.mode = mode; return fn(&r); }; };
    const auto after = [](int32_t mode, int32_t entries = 0) {
        return [mode, entries](R &r) { r.mode = mode; for (int32_t i = 0; i < entries; ++i) r.entries[i] = {1, i + 1}; r.ccwaCount += entries; };
    };
    RunRows<R>({
        {"enable for a class", op(AtsCcwa, 1), {Ok("AT+CCWA=1,1,7").Prefix("")}, 0, after(1), kFails, after(1)},
        {"9 rows fill 8 entries", op(AtsCcwa, 2), {Ok("AT+CCWA=1,2,", WaitingRows("+CCWA", 9))}, 0, after(2, 8)},
        {"no row still succeeds", op(AtsCcwa, 2), {Ok("AT+CCWA=1,2,", "")}, 0, after(2)},
        {"read sends only", op(AtsCcwa, 3), {Ok("AT+CCWA?", "+CCWA: 1")}, 0, after(3)},
        {"presentation", op(AtsCcwa, 4), {Ok("AT+CCWA=0")}, 0, after(4)},
        {"16 is refused", op(AtsCcwa, 16), {}, -1, after(16)},
        {"extended classes", op(AtCcwaEx, 2), {Ok("AT^CCWA=1,2,", WaitingRows("^CCWA", 2))}, 0, after(2, 2), kFails, after(2)},
        {"extended read stores n in mode", op(AtCcwaEx, 3), {Ok("AT^CCWA?", "^CCWA: 1").Prefix("^CCWA:")}, 0, [](R &r) { r.mode = 1; ++r.ccwaCount; }},
        {"extended 16", op(AtCcwaEx, 16), {Ok("AT^CCWA=")}, 0, after(16)},
        {"extended 5 is refused", op(AtCcwaEx, 5), {}, -1, after(5)},
    }, R{0, 7, 0, 1, {}});
    using I = AtsCcwaiInfo;
    const auto get = [](I &r) { return AtsGetCcwai(&r); };
    RunRows<I>({
        {"indication set sends mode and ctrlMode", [](I &r) { return AtsSetCcwai(&r); }, {Ok("AT^CCWAI=1,0").Prefix("")}, 0, {}, kFails},
        {"indication get stores mode and ctrlModeRead", get, {Ok("AT^CCWAI?", "^CCWAI: 0,1").Prefix("^CCWAI:")}, 0, [](I &r) { r.mode = 0; r.ctrlModeRead = 1; }, kFails},
        {"indication get leaves a value out of range", get, {Ok("AT^CCWAI?", "^CCWAI: 0,2")}, 0, [](I &r) { r.mode = 0; }},
    }, I{1, 0, 9});
}

TEST(M2mAtsCallSs, CallForwarding) {
    using R = AtsCcfcInfo;
    R preset = Filled<R>(0x5A);
    preset.reason = preset.time = preset.ccfcCount = 0;
    preset.mode = 2;
    preset.type = 145;
    preset.classx = 1;
    SetText(preset.number, "+4912345");
    const auto ccfc = [](int32_t mode, int32_t time = 0) { return [mode, time](R &r) { r.mode = mode; r.time = time; return AtsCcfc(&r); }; };
    const auto set = [](int32_t mode, int32_t time = 0) { return [mode, time](R &r) { r.mode = mode; r.time = time; }; };
    RunRows<R>({
        {"query of inactive rules", ccfc(2), {Ok("AT+CCFC=0,2", "+CCFC: 0,1\r\n+CCFC: 0,4").Prefix("")}, 0,
         [](R &r) { r.entries[0].status = r.entries[1].status = 0; r.entries[0].classx = 1; r.entries[1].classx = 4; r.ccfcCount = 2; }, kFails},
        {"an active rule fails the query, its status text in number", ccfc(2), {Ok("AT+CCFC=0,2", "+CCFC: 1,1,\"+4912345\",145,,,20")}, -1,
         [](R &r) { r.entries[0].status = 1; SetText(r.entries[0].number, "1"); }},
        {"register without time", ccfc(3), {Ok("AT+CCFC=0,3,\"+4912345\",145,1,,,")}, 0, set(3), kFails, set(3)},
        {"register with time", ccfc(3, 20), {Ok("AT+CCFC=0,3,\"+4912345\",145,1,,,20")}, 0, set(3, 20)},
        {"an unterminated number is not sent", [](R &r) { R copy = r; copy.mode = 3; std::memset(copy.number, '1', sizeof copy.number); return AtsCcfc(&copy); }, {}, -1},
    }, preset);
}

TEST(M2mAtsCallSs, TrustedNumbers) {
    using R = AtTrustNumInfo;
    const auto op = [](int32_t operation) { return [operation](R &r) { return AtTrustSpecialNum(operation, &r); }; };
    RunRows<R>({
        {"store", op(1), {Ok("AT^TRUSTCNUM=3,\"13800000000\"")}, 0, Done<R>, kMarked},
        {"index range", op(2), {Ok("AT^TRUSTCNUM=?", "^TRUSTCNUM: 20")}, 0, [](R &r) { r.index = 20; Done(r); }, kMarked},
        {"unknown operation", op(3), {}, -1, [](R &r) { r.errorId = AT_ERRID_NOT_COMPLETED; }},
    }, R{3, "13800000000", 0});

    struct TrustList {
        AtTrustNumEntry entries[3];
        AtTrustNumList list;
    };
    // The list points into the record only while the call runs.
    const auto read = [](TrustList &r) { r.list.entries = r.entries; const int32_t ret = AtTrustSpecialNumList(&r.list); r.list.entries = nullptr; return ret; };
    const auto entry = [](AtTrustNumEntry &e, uint32_t index, const char *number) { e.index = index; SetText(e.phonenum, number); };
    TrustList preset = Filled<TrustList>(0);
    preset.list = {2, nullptr, 0};
    RunRows<TrustList>({
        {"count 2 of three numbers", read, {Ok("AT^TRUSTCNUM?", "^TRUSTCNUM: 1,\"111\"\r\n^TRUSTCNUM: 2,\"222\"\r\n^TRUSTCNUM: 3,\"333\"")}, 0,
         [entry](TrustList &r) { entry(r.entries[0], 1, "111"); entry(r.entries[1], 2, "222"); r.list.errorId = AT_ERRID_OK; }, kMarked},
        {"a number of 26 characters fails", read, {Ok("AT^TRUSTCNUM?", "^TRUSTCNUM: 1,\"" + std::string(26, '1') + "\"")}, -1,
         [](TrustList &r) { r.entries[0].index = 1; r.list.errorId = AT_ERRID_OK; }},
        {"count 0 sends nothing", [read](TrustList &r) { r.list.count = 0; const int32_t ret = read(r); r.list.count = 2; return ret; }, {}, -1},
    }, preset, [](TrustList &r, int32_t id) { r.list.errorId = id; });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
