// The version reader and its process-wide cache, and the software and
// hardware versions cut out of it, against the scripted modem.

#include "atapi/ats_comm.h"
#include "error_classes.h"
#include "service/ats_comm_internal.h"

namespace atapi::test {
namespace {

constexpr char kQuery[] = "AT^VERSION?";
constexpr char kExtd[] = "EXTD:WEBUI_12.605.02.00.00";
// +CME/+CMS count as done and leave the record; other classes fail.
constexpr Convention kVersionDone{{-1}, {0}, {0}, {-1}, {-1}};

// A reply as the module sends it: the five wanted lines among others.
std::string VersionReply(const std::string &extd = "WEBUI_12.605.02.00.00",
                         const std::string &exts = "12.605.02.00.00") {
    return "^VERSION:BDT:2024-05-17 10:20:30\r\n^VERSION:EXTS:" + exts +
           "\r\n^VERSION:INTS:12.605.02.00.00\r\n^VERSION:EXTD:" + extd +
           "\r\n^VERSION:EXTH:ATS5GM01\r\n^VERSION:EXTU:ATS-5G100\r\n^VERSION:CFG:1004\r\n^VERSION:"
           "INI:ATS_CFG_1.0.2";
}

// clang-format off
void ReadVersions(VersionInfo &v, const char *extd) {
    SetText(v.extdVersion, extd); SetText(v.exthVersion, "EXTH:ATS5GM01"); SetText(v.extsVersion, "EXTS:12.605.02.00.00");
    SetText(v.iniVersion, "INI:ATS_CFG_1.0.2"); SetText(v.extuVersion, "EXTU:ATS-5G100"); v.lineCount = 8; v.errorId = 0;
}

// Every case starts from an empty cache and leaves none behind.
template <typename Record, typename Call>
typename CommandCase<Record>::Call Fresh(Call call) {
    return [call](Record &r) { comm::ResetVersionCache(); const int32_t ret = call(r); comm::ResetVersionCache(); return ret; };
}

TEST(AtsCommVersion, Read) {
    using R = VersionInfo;
    const auto once = Fresh<R>([](R &v) { return AtVersion(&v); });
    const auto twice = Fresh<R>([](R &v) { EXPECT_EQ(AtVersion(&v), 0); return AtVersion(&v); });
    const auto placeholderThenReal = Fresh<R>([](R &v) { EXPECT_EQ(AtVersion(&v), 0); EXPECT_EQ(v.extdVersion[0], '\0'); return AtVersion(&v); });
    RunRows<R>({
        {"the five versions", once, {Ok(kQuery, VersionReply()).Prefix("^VERSION").Timeout(30)}, 0, [](R &v) { ReadVersions(v, kExtd); }, kVersionDone},
        {"a second read is answered from the cache", twice, {Ok(kQuery, VersionReply())}, 0, [](R &v) { ReadVersions(v, kExtd); }},
        {"the placeholder user version is returned empty and not kept", placeholderThenReal, {Ok(kQuery, VersionReply("WEBUI_00.00.00.000.03")), Ok(kQuery, VersionReply())}, 0,
         [](R &v) { std::memset(v.extdVersion, 0, sizeof v.extdVersion); ReadVersions(v, kExtd); }},
        {"no lines", once, {Ok(kQuery)}, -1},
        {"a version missing", once, {Ok(kQuery, "^VERSION:EXTS:1\r\n^VERSION:EXTD:2\r\n^VERSION:EXTH:3\r\n^VERSION:EXTU:4")}, -1, [](R &v) {
             SetText(v.extsVersion, "EXTS:1"); SetText(v.extdVersion, "EXTD:2"); SetText(v.exthVersion, "EXTH:3"); SetText(v.extuVersion, "EXTU:4"); v.lineCount = 4; v.errorId = 0;
         }},
        {"a line without a value", once, {Ok(kQuery, "^VERSION")}, -1, [](R &v) { v.lineCount = 1; }},
    });
}

TEST(AtsCommVersion, SoftAndHardVersion) {
    using R = SoftVersion;
    const auto soft = Fresh<R>([](R &s) { return AtCgmr(&s); });
    const auto hard = Fresh<R>([](R &s) {  // the same layout
        HardVersion h;
        std::memcpy(&h, &s, sizeof h);
        const int32_t ret = AtHwVer(&h);
        std::memcpy(&s, &h, sizeof s);
        return ret;
    });
    const auto read = [](const char *text) { return [text](R &s) { s.valid = 1; SetText(s.version, text); }; };
    RunRows<R>({
        {"software", soft, {Ok(kQuery, VersionReply())}, 0, read("12.605.02.00.00"), kFails},
        {"hardware", hard, {Ok(kQuery, VersionReply())}, 0, read("ATS5GM01"), kFails},
        {"cut at a carriage return", soft, {Ok(kQuery, VersionReply("1", "12.6\r05"))}, 0, read("12.6")},
        {"longer than 31 characters", soft, {Ok(kQuery, VersionReply("1", std::string(32, '1')))}, -1},
    });
}
// clang-format on

// Threads that read at once all get the same versions, whether they query
// the module themselves or find another thread's read published.
TEST(AtsCommVersion, ConcurrentReaders) {
    constexpr int kThreads = 16;
    comm::ResetVersionCache();
    IsolatedRuntime runtime;
    ScriptedModem modem(runtime);
    modem.AnswerAnyWith(Ok(kQuery, VersionReply()));
    VersionInfo expected = Filled<VersionInfo>(0x5A);
    ReadVersions(expected, kExtd);
    const auto readAll = [&] {
        RunAtOnce<VersionInfo>(
            kThreads, [](VersionInfo &v) { return AtVersion(&v); }, Filled<VersionInfo>(0x5A),
            expected);
        return modem.Sent().size();
    };
    const size_t queries = readAll();
    EXPECT_GE(queries, 1u);
    EXPECT_LE(queries, size_t{kThreads});
    EXPECT_EQ(readAll(), queries) << "cached reads asked the module";
    comm::ResetVersionCache();
}

}  // namespace
}  // namespace atapi::test
