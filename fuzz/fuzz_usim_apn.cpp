// Feeds arbitrary text as EF ACL's hex to the APN list decoder; every node
// it returns must hold a terminated APN.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "atapi/ats_usim.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string hex(reinterpret_cast<const char *>(data), size);
    SimApnNode *list = ParseSimApn(hex.c_str());
    for (const SimApnNode *n = list; n != nullptr; n = n->next) {
        if (strnlen(n->apn, sizeof n->apn) == sizeof n->apn) __builtin_trap();
    }
    FreeApnList(&list);
    return 0;
}
