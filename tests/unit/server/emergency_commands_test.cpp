#include "emergency_commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace atserver::test {
namespace {

TEST(EmergencyCommand, DialsOfListedNumbersAndEcallStepsGoFirst) {
    struct Row {
        const char *command;
        bool emergency;
    };
    const Row rows[] = {
        {"ATD112;", true},
        {"ATD911;", true},
        {"ATD 112;", true},
        {"AT D 1 1 2 ;", true},
        {"atd112;", true},
        {"ATDT112;", true},
        {"ATDP911;", true},
        {"ATD112I;", true},
        {"ATD112g;", true},
        {"ATD112", true},  // without ';' it is still a dial of 112
        {"ATD01121234;", false},
        {"ATD1120;", false},
        {"ATD0112;", false},
        {"ATD11;", false},
        {"ATD+112;", false},
        {"ATD112A;", false},  // A is a tone, not a modifier
        {"ATD>112;", false},
        {"ATDL;", false},
        {"ATD;", false},
        {"AT+CGDCONT=1,\"IP\",\"112\"", false},
        {"AT^TRUSTCNUM=0,\"112\"", false},
        {"AT^ECLSTART=1,2,\"112\",3", true},
        {"AT^ECLSTART=?", true},
        {"at^eclstart?", true},
        {"AT^ECLMSD=\"0102\"", true},
        {"AT^ECLPUSH", true},
        {"AT^ECLSTOP", true},
        {"AT ^ECLABORT", true},
        {"AT^ECLABORT;", true},
        {"AT^ECLSTARTX", false},
        {"AT^ECLSTOPPED", false},
        {"AT^ECLMODE=1", false},
        {"AT^ECLCFG=1,2,3", false},
        {"AT^ECLIMSCFG?", false},
        {"^ECLSTART=1", false},
        {"XT^ECLPUSH", false},
        {"", false},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(IsEmergencyCommand(row.command, DefaultEmergencyNumbers()), row.emergency)
            << row.command;
    }
}

TEST(EmergencyCommand, TheListDecidesWhichNumbersAreEmergency) {
    const EmergencyNumbers numbers{"999", "+112", "*31#"};
    EXPECT_TRUE(IsEmergencyCommand("ATD999;", numbers));
    EXPECT_TRUE(IsEmergencyCommand("ATD+112;", numbers));
    EXPECT_TRUE(IsEmergencyCommand("ATD*31#;", numbers));
    EXPECT_FALSE(IsEmergencyCommand("ATD112;", numbers));
    EXPECT_TRUE(IsEmergencyCommand("AT^ECLPUSH", numbers));
    EXPECT_TRUE(IsEmergencyCommand("AT^ECLPUSH", {}));
    EXPECT_FALSE(IsEmergencyCommand("ATD112;", {}));
}

TEST(EmergencyCommand, ParsesTheNumberList) {
    struct Row {
        const char *list;
        bool ok;
        EmergencyNumbers numbers;
    };
    const Row rows[] = {
        {"112", true, {"112"}},
        {"112,911,999", true, {"112", "911", "999"}},
        {"+112,*31#", true, {"+112", "*31#"}},
        {"", false, {}},
        {"112,", false, {}},
        {",112", false, {}},
        {"112,,911", false, {}},
        {"112 ,911", false, {}},
        {"11a", false, {}},
    };
    for (const Row &row : rows) {
        EmergencyNumbers parsed{"kept"};
        EXPECT_EQ(ParseEmergencyNumbers(row.list, &parsed), row.ok) << row.list;
        EXPECT_EQ(parsed, row.ok ? row.numbers : EmergencyNumbers{"kept"}) << row.list;
    }
}

}  // namespace
}  // namespace atserver::test
