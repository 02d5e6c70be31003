#include "service_notify.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "server_log.h"

namespace atserver {
namespace {

std::string g_socketName;  // empty: not run by a service manager

// "/path" names a socket file, "@name" a socket in the abstract namespace.
bool MakeAddress(const std::string &name, sockaddr_un *addr, socklen_t *len) {
    if (name.size() < 2 || (name[0] != '/' && name[0] != '@') ||
        name.size() >= sizeof addr->sun_path) {
        return false;
    }
    *addr = {};
    addr->sun_family = AF_UNIX;
    std::memcpy(addr->sun_path, name.data(), name.size());
    if (name[0] == '@') addr->sun_path[0] = '\0';
    *len = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() +
                                  (name[0] == '/' ? 1 : 0));
    return true;
}

}  // namespace

void ServiceNotifyInit() {
    const char *name = std::getenv("NOTIFY_SOCKET");
    if (name == nullptr) return;
    g_socketName = name;
    unsetenv("NOTIFY_SOCKET");
}

bool ServiceNotify(const char *state) {
    if (g_socketName.empty()) return true;
    sockaddr_un addr;
    socklen_t len = 0;
    if (!MakeAddress(g_socketName, &addr, &len)) {
        LogWarn("NOTIFY_SOCKET %s is not a socket path or abstract name", g_socketName.c_str());
        return false;
    }
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd == -1) {
        LogWarn("cannot report \"%s\" to the service manager: %s", state, std::strerror(errno));
        return false;
    }
    const size_t size = std::strlen(state);
    const ssize_t sent =
        sendto(fd, state, size, MSG_NOSIGNAL, reinterpret_cast<const sockaddr *>(&addr), len);
    const int error = errno;
    close(fd);
    if (sent != static_cast<ssize_t>(size)) {
        LogWarn("cannot report \"%s\" to %s: %s", state, g_socketName.c_str(),
                std::strerror(error));
        return false;
    }
    LogDebug("reported \"%s\" to the service manager", state);
    return true;
}

}  // namespace atserver
