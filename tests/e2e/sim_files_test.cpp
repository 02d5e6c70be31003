// The SIM of the default scenario read through atserver and atsim: its
// files found under the directory the card's type asks for, decoded by the
// library in this process and by atcli.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "atapi/ats_usim.h"
#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

using SimFilesTest = ShippedScenarioTest;

TEST_F(SimFilesTest, Library_ReadsTheCardsFiles) {
    IccidInfo iccid{};
    ASSERT_EQ(AtGetIccidByCrsm(&iccid), 0) << server_->Log();
    EXPECT_STREQ(iccid.iccid, "8901001234567890128");
    EXPECT_EQ(iccid.errorId, AT_ERRID_OK);

    char spn[64] = "";
    EXPECT_EQ(AtGetSpnByCrsm(spn, sizeof spn), 0);
    EXPECT_STREQ(spn, "01417473696D204D6F62696C65FFFFFFFF");

    AphPlmnInfo home{};
    EXPECT_EQ(AtAphPlmnByCrsm(&home), 0);
    EXPECT_STREQ(home.plmn, "00101");

    char display[64] = "";
    AtGetEfspdiPlmn(display, sizeof display);
    EXPECT_STREQ(display, " 00101 310260 26201");

    SimApnNode *apns = nullptr;
    ASSERT_EQ(AtGetSimApn(&apns), 0);
    std::vector<std::string> names;
    for (const SimApnNode *n = apns; n != nullptr; n = n->next) names.emplace_back(n->apn);
    FreeApnList(&apns);
    EXPECT_EQ(names, (std::vector<std::string>{"internet", "ims"}));

    // A file under another directory than the card keeps it in is not found.
    CrsmRequest q{AT_CRSM_READ_BINARY, 0x6F07, 0, 0, 9, nullptr, "3F007F20"};
    CrsmResult r{};
    EXPECT_EQ(AtCrsm(&q, &r), 0);
    EXPECT_EQ(r.sw1, 106u);
    EXPECT_EQ(r.sw2, 130u);
    std::free(r.response);
}

TEST_F(SimFilesTest, Atcli_SimAll) {
    const ProcessResult sim = RunProcess({CliProgram(), "sim", "all", "--json"}, runtime_->Root());
    EXPECT_EQ(sim.exitCode, 0) << sim.err;
    EXPECT_EQ(sim.out,
              "{\"iccid\":\"8901001234567890128\",\"spn\":\"Atsim Mobile\","
              "\"spn_file\":\"01417473696D204D6F62696C65FFFFFFFF\",\"home_plmn\":\"00101\","
              "\"display_plmns\":[\"00101\",\"310260\",\"26201\"],"
              "\"numbers\":[\"+15551230001\",\"15551230002\"],\"apns\":[\"internet\",\"ims\"]}\n");
}

}  // namespace
}  // namespace atapi::e2e
