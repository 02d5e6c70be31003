// SIM extensions and voice path settings through atserver and atsim on the
// shipped default scenario, from the library in this process and from
// atcli.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "atapi/m2m_ats_usim.h"
#include "atapi/m2m_ats_voice_call.h"
#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

using UsimExtTest = ShippedScenarioTest;

TEST_F(UsimExtTest, UsimExt_SimStateEuiccIdAndFileByPath) {
    SimSqInfo state{-1, -1};
    ASSERT_EQ(AtSimSqQuery(&state), 0) << server_->Log();
    EXPECT_EQ(state.mode, 0);
    EXPECT_EQ(state.simStatus, 1);

    char eid[AT_EUICC_ID_SIZE] = {};
    ASSERT_EQ(AtEuiccIdQuery(eid), 0);
    EXPECT_STREQ(eid, "89049032123451234512345678901235");

    // EF AD under the USIM's directory, with the empty data quoted.
    const CrsmPidReq q{176, 0x6FAD, 0, 0, 4, nullptr, "3F007FFF"};
    CrsmPidResult r{0, 0, nullptr, 0};
    ASSERT_EQ(AtCrsmPid(&q, &r), 0);
    EXPECT_EQ(r.sw1, 144);
    EXPECT_EQ(r.sw2, 0);
    ASSERT_NE(r.response, nullptr);
    EXPECT_STREQ(r.response, "00000002");
    EXPECT_EQ(r.errorId, AT_ERRID_OK);
    std::free(r.response);
}

TEST_F(UsimExtTest, UsimExt_VoicePathWrittenAndReadBack) {
    int32_t level = 11;
    ASSERT_EQ(AtCmic(AT_VOICE_SET, &level), 0) << server_->Log();
    level = -1;
    ASSERT_EQ(AtCmic(AT_VOICE_QUERY, &level), 0);
    EXPECT_EQ(level, 11);

    PcmFrqInfo frq{"16000", 0};
    ASSERT_EQ(AtPcmfr(AT_VOICE_SET, &frq), 0);
    EXPECT_EQ(frq.errorId, AT_ERRID_OK);
    PcmFrqInfo read{};
    ASSERT_EQ(AtPcmfr(AT_VOICE_QUERY, &read), 0);
    EXPECT_STREQ(read.pcmFrq, "16000");
    EXPECT_EQ(read.errorId, AT_ERRID_OK);

    EXPECT_EQ(AtVmSet(AT_VOICE_MODE_MAX), 0);

    const ProcessResult set = Cli({"voice", "mic", "--set", "7", "--json"});
    EXPECT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(set.out, "{\"mic_gain\":7}\n");
    const ProcessResult get = Cli({"voice", "frequency"});
    EXPECT_EQ(get.exitCode, 0) << get.err;
    EXPECT_EQ(get.out, "pcm_frequency: 16000\n");
    EXPECT_EQ(Cli({"voice", "mode", "7"}).exitCode, 64);
}

}  // namespace
}  // namespace atapi::e2e
