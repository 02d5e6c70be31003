#include "emergency_commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace atserver::test {
namespace {

// clang-format off
TEST(EmergencyCommand, DialsOfListedNumbersAndEcallStepsGoFirst) {
    const char *const emergency[] = {
        "ATD112;", "ATD911;", "AT D 1 1 2 ;", "atd112;", "ATDT112;", "ATDP911;", "ATD112I;",
        "ATD112g;", "ATD112",  // without ';' it is still a dial of 112
        "AT^ECLSTART=1,2,\"112\",3", "AT^ECLSTART=?", "at^eclstart?", "AT^ECLMSD=\"0102\"",
        "AT^ECLPUSH", "AT^ECLSTOP", "AT ^ECLABORT", "AT^ECLABORT;"};
    const char *const ordinary[] = {
        "ATD01121234;", "ATD1120;", "ATD0112;", "ATD11;", "ATD+112;",
        "ATD112A;",  // A is a tone, not a modifier
        "ATD>112;", "ATDL;", "ATD;", "AT+CGDCONT=1,\"IP\",\"112\"", "AT^TRUSTCNUM=0,\"112\"",
        "AT^ECLSTARTX", "AT^ECLSTOPPED", "AT^ECLMODE=1", "AT^ECLCFG=1,2,3", "AT^ECLIMSCFG?",
        "^ECLSTART=1", "XT^ECLPUSH", ""};
    for (const char *command : emergency) {
        EXPECT_TRUE(IsEmergencyCommand(command, DefaultEmergencyNumbers())) << command;
    }
    for (const char *command : ordinary) {
        EXPECT_FALSE(IsEmergencyCommand(command, DefaultEmergencyNumbers())) << command;
    }
    // The list decides which numbers are emergency; eCall steps are whatever it holds.
    const EmergencyNumbers numbers{"999", "+112", "*31#"};
    for (const char *command : {"ATD999;", "ATD+112;", "ATD*31#;", "AT^ECLPUSH"}) {
        EXPECT_TRUE(IsEmergencyCommand(command, numbers)) << command;
    }
    EXPECT_FALSE(IsEmergencyCommand("ATD112;", numbers));
    EXPECT_TRUE(IsEmergencyCommand("AT^ECLPUSH", {}));
    EXPECT_FALSE(IsEmergencyCommand("ATD112;", {}));
}

TEST(EmergencyCommand, ParsesTheNumberList) {
    struct Row {
        const char *list;
        EmergencyNumbers numbers;  // empty: refused
    };
    const Row rows[] = {
        {"112", {"112"}}, {"112,911,999", {"112", "911", "999"}}, {"+112,*31#", {"+112", "*31#"}},
        {"", {}}, {"112,", {}}, {",112", {}}, {"112,,911", {}}, {"112 ,911", {}}, {"11a", {}},
    };
    for (const Row &row : rows) {
        EmergencyNumbers parsed{"kept"};
        const bool ok = !row.numbers.empty();
        EXPECT_EQ(ParseEmergencyNumbers(row.list, &parsed), ok) << row.list;
        EXPECT_EQ(parsed, ok ? row.numbers : EmergencyNumbers{"kept"}) << row.list;
    }
}
// clang-format on

}  // namespace
}  // namespace atserver::test
