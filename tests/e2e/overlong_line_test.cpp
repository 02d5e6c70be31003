// A modem line longer than a reply can carry: the caller sees an error
// class, never a reply that looks complete; atserver's log says why, and the
// next command is served as usual.
#include <fstream>
#include <memory>
#include <string>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

// The room for text in a reply, without its terminator.
constexpr size_t kRoom = AT_REPORT_STR_LEN - 1;
constexpr char kLineTooLong[] = "ERROR: reply line too long";

const std::string &Widest() {
    static const std::string line = "+E2EWIDE: " + std::string(kRoom - 10, 'w');
    return line;
}
const std::string &TooWide() {
    static const std::string line = Widest() + "w";
    return line;
}
// Beyond atserver's line reader, which drops it whole.
const std::string &Huge() {
    static const std::string line = "+E2EHUGE: " + std::string(3000, 'h');
    return line;
}

class OverlongLineTest : public E2eTest {
  protected:
    void SetUp() override {
        runtime_ = std::make_unique<test::IsolatedRuntime>();
        scenario_ = runtime_->Path("/overlong.scn");
        std::ofstream out(scenario_);
        out << "on AT+E2EWIDEST\n  line " << Widest() << "\n"
            << "on AT+E2ETOOWIDE\n  line +E2E: 1\n  line " << TooWide() << "\n  line +E2E: 3\n"
            << "on AT+E2EHUGE\n  line +E2E: 1\n  line " << Huge() << "\n  line +E2E: 3\n"
            << "on AT+E2EHUGEERR\n  line " << Huge() << "\n  final +CME ERROR: 10\n"
            << "on AT+E2ENEXT\n  line +E2ENEXT: 1\n"
            << "include " << ATSIM_SCENARIO_DIR << "/faults.scn\n";
        out.close();
        ASSERT_TRUE(out) << "cannot write " << scenario_;
        server_ = std::make_unique<AtServerProcess>(*runtime_);
        server_->Start(scenario_, {});
    }
};

TEST_F(OverlongLineTest, TheCallerSeesAnErrorAndTheNextCommandIsServed) {
    const struct {
        const char *cmd;
        int32_t retVal;
        std::string text;
        std::string log;  // what atserver's log says about it (empty: nothing)
    } cases[] = {
        // The widest line a reply holds is carried whole.
        {"AT+E2EWIDEST", AT_RET_OK, Widest(), ""},
        {"AT+E2ETOOWIDE", AT_RET_ERROR, kLineTooLong,
         "a line of " + std::to_string(kRoom + 1) + " bytes is longer than a reply holds"},
        {"AT+E2EHUGE", AT_RET_ERROR, kLineTooLong,
         "over-long modem line (" + std::to_string(Huge().size()) +
             " bytes) in the reply to \"AT+E2EHUGE\""},
        // The shipped fault: binary noise, then a 5000-byte line.
        {"AT+GARBAGE", AT_RET_ERROR, kLineTooLong,
         "over-long modem line (5000 bytes) in the reply to \"AT+GARBAGE\""},
        // An error reply stays the modem's error.
        {"AT+E2EHUGEERR", AT_RET_CME_ERROR, "+CME ERROR: 10", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.cmd);
        const Exchange reply = Send(c.cmd);
        ASSERT_EQ(reply.status, 0);
        EXPECT_EQ(reply.retVal, c.retVal);
        EXPECT_EQ(reply.text, c.text);
        if (!c.log.empty()) {
            EXPECT_TRUE(server_->WaitForLog(c.log)) << server_->Log();
        }
        const Exchange next = Send("AT+E2ENEXT");
        ASSERT_EQ(next.status, 0);
        EXPECT_EQ(next.retVal, AT_RET_OK);
        EXPECT_EQ(next.text, "+E2ENEXT: 1");
    }
}

}  // namespace
}  // namespace atapi::e2e
