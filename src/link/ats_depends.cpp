// Operating-system services of the server link: tasks found by pid file,
// events carried by signals, monotonic seconds, sleeps and notifications.
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "atapi/at_link.h"
#include "link/at_log.h"
#include "link/ats_clock.h"
#include "link/ats_event_map.h"
#include "link/ats_paths.h"
#include "platform/bounded.h"
#include "platform/notify.h"

namespace {
constexpr char kTraceSrc[] = "atapi/src/ats_depends";
}  // namespace

extern "C" {
const AtsEventMap g_atsEventMaps[5] = {
    {1, SIGUSR1}, {2, SIGUSR2}, {4, SIGSYS}, {8, SIGINT}, {-1, -1}};
}

namespace atapi {
namespace {

constexpr int kEventRows = 4;
constexpr size_t kNameBufSize = 255;
constexpr size_t kRealPathSize = 4096;
constexpr int kPidLineSize = 256;  // one line of at most 255 bytes

struct FreeDeleter {
    void operator()(char *p) const { std::free(p); }
};
struct FileCloser {
    void operator()(FILE *f) const { std::fclose(f); }
};

// Resolves the directory of the task's pid file and appends the file name,
// so that a symlinked run directory still leads to the real file.
std::unique_ptr<char, FreeDeleter> PidFileRealPath(const char *name) {
    char fileName[kNameBufSize] = {};
    char path[kNameBufSize] = {};
    if (sprintf_s(fileName, sizeof fileName, "%s.pid", name) < 0 ||
        sprintf_s(path, sizeof path, "%s%s", PidFileDir(), fileName) < 0) {
        return nullptr;
    }
    const char *lastSlash = std::strrchr(path, '/');
    char dir[kNameBufSize] = {};
    if (lastSlash == nullptr ||
        strncpy_s(dir, sizeof dir, path, static_cast<size_t>(lastSlash - path)) != 0) {
        AT_LOG_ERR("path copy failed");
        return nullptr;
    }
    std::unique_ptr<char, FreeDeleter> resolved(static_cast<char *>(std::malloc(kRealPathSize)));
    if (resolved == nullptr || realpath(dir, resolved.get()) == nullptr) {
        AT_LOG_ERR("errno=%d realPath failed", errno);
        return nullptr;
    }
    if (strcat_s(resolved.get(), kRealPathSize, "/") != 0 ||
        strcat_s(resolved.get(), kRealPathSize, lastSlash + 1) != 0) {
        AT_LOG_ERR("path strcat failed");
        return nullptr;
    }
    return resolved;
}

int32_t ReadPid(const char *path) {
    std::unique_ptr<FILE, FileCloser> file(std::fopen(path, "r"));
    if (file == nullptr) return -1;
    char line[kPidLineSize] = {};
    if (std::fgets(line, sizeof line, file.get()) == nullptr) return -1;
    const int pid = std::atoi(line);
    return pid == 0 ? -1 : pid;
}

void PrintToTrace(const char *format, int value) { AT_LOG_ERR(format, value); }

constexpr EventMessages kTraceMessages{
    "Error!pthread_sigmask fail, ret = %d",
    "Error!in AtsEventThreadSend, para is invaild, event:%d",
    "Error!in AtsEventThreadSend, sig = -1",
    "Error!pthread_kill fail, ret = %d",
    "Error!, sigwait failed. errno = %d",
    "Error!, tmpEvent = -1",
    PrintToTrace,
};

}  // namespace

void EventMaskToSignals(uint32_t mask, sigset_t *set) {
    sigemptyset(set);
    for (int row = 0; row < kEventRows; ++row) {
        if ((mask & (1u << row)) != 0) sigaddset(set, g_atsEventMaps[row].signal);
    }
}

int EventToSignal(uint32_t event) {
    for (int row = 0; row < kEventRows; ++row) {
        if (static_cast<uint32_t>(g_atsEventMaps[row].event) == event) {
            return g_atsEventMaps[row].signal;
        }
    }
    return -1;
}

int32_t WaitForEvent(const sigset_t &set, const EventMessages &messages) {
    int sig = 0;
    const int err = sigwait(&set, &sig);
    if (err != 0) {
        messages.print(messages.sigwaitFailed, err);
        return -1;
    }
    const int32_t event = SignalToEvent(sig);
    if (event == -1) messages.print(messages.noEvent, sig);
    return event;
}

int32_t ThreadEventInit(uint32_t mask, const EventMessages &messages) {
    sigset_t set;
    EventMaskToSignals(mask, &set);
    const int ret = pthread_sigmask(SIG_BLOCK, &set, nullptr);
    if (ret != 0) messages.print(messages.sigmaskFailed, ret);
    return ret;
}

int32_t ThreadEventSend(pthread_t thread, uint32_t event, const EventMessages &messages) {
    if (thread == pthread_t{} || event == kAllEvents) {
        messages.print(messages.badArguments, static_cast<int>(event));
        return -1;
    }
    const int sig = EventToSignal(event);
    if (sig == -1) {
        messages.print(messages.noSignal, sig);
        return 0;  // deliberately the same as success
    }
    const int ret = pthread_kill(thread, sig);
    if (ret != 0) messages.print(messages.killFailed, ret);
    return ret;
}

int32_t ThreadEventRecv(uint32_t mask, uint32_t *event, const EventMessages &messages) {
    if (event == nullptr) return 0;
    sigset_t set;
    EventMaskToSignals(mask, &set);
    if (pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0) return 0;
    const int32_t got = WaitForEvent(set, messages);
    if (got == -1) return 0;
    *event = static_cast<uint32_t>(got);
    return 1;
}

int32_t SignalToEvent(int signal) {
    for (int row = 0; row < kEventRows; ++row) {
        if (g_atsEventMaps[row].signal == signal) return g_atsEventMaps[row].event;
    }
    return -1;
}

}  // namespace atapi

extern "C" {

uint32_t AtsStrlen(const char *s) { return s == nullptr ? 0 : static_cast<uint32_t>(strlen(s)); }

int32_t AtsTaskGetId(void) { return static_cast<int32_t>(getpid()); }

int32_t AtsTaskExist(int32_t id) { return id != -1 ? 1 : 0; }

int32_t AtsTaskNameToId(const char *name) {
    if (name == nullptr) return -1;
    AT_LOG_DETAIL("enter");
    auto path = atapi::PidFileRealPath(name);
    if (path == nullptr) {
        AT_LOG_ERR("AtsFileRealPath failed");
        return -1;
    }
    AT_LOG_DETAIL("end");
    return atapi::ReadPid(path.get());
}

int32_t AtsEventInit(uint32_t mask) {
    sigset_t set;
    atapi::EventMaskToSignals(mask, &set);
    return sigprocmask(SIG_BLOCK, &set, nullptr) == 0 ? 1 : 0;
}

int32_t AtsEventSend(int32_t pid, uint32_t event) {
    if (pid < 1 || event == atapi::kAllEvents) return 0;
    const int sig = atapi::EventToSignal(event);
    if (sig == -1) {
        AT_LOG_ERR("Error!, sig = -1");
        return 0;
    }
    if (kill(pid, sig) != 0) {
        AT_LOG_ERR("kill Error, errno[%d]", errno);
        return 0;
    }
    return 1;
}

int32_t AtsEventRecv(uint32_t mask, int32_t seconds, uint32_t *event) {
    if (event == nullptr) return 0;
    sigset_t set;
    atapi::EventMaskToSignals(mask, &set);
    if (seconds >= 0) sigaddset(&set, SIGALRM);
    if (sigprocmask(SIG_BLOCK, &set, nullptr) != 0) return 0;
    if (seconds >= 0) atapi::Alarm(static_cast<unsigned>(seconds));
    const int32_t got = atapi::WaitForEvent(set, atapi::kTraceMessages);
    if (seconds >= 0) atapi::Alarm(0);
    if (got == -1) return 0;
    *event = static_cast<uint32_t>(got);
    return 1;
}

int32_t AtsElapse(void) {
    timespec now{};
    if (atapi::Monotonic(&now) != 0 || now.tv_sec < 0 || now.tv_sec > INT32_MAX) return -1;
    return static_cast<int32_t>(now.tv_sec);
}

void AtsSleep(uint32_t ms) { atapi::SleepUs(1000u * ms); }

int32_t AtsPostNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return UMO_NOTIFYCLT_PostSimpleAsynNotify(a, b, c, d);
}

int32_t AtsPostNotifyExt(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return UMO_NOTIFYCLT_PostAsynNotify(a, b, c, d);
}

int32_t AtsEventThreadInit(uint32_t mask) {
    return atapi::ThreadEventInit(mask, atapi::kTraceMessages);
}

int32_t AtsEventThreadSend(pthread_t thread, uint32_t event) {
    return atapi::ThreadEventSend(thread, event, atapi::kTraceMessages);
}

int32_t AtsEventThreadRecv(uint32_t mask, uint32_t *event) {
    if (mask == atapi::kAllEvents) return 0;
    return atapi::ThreadEventRecv(mask, event, atapi::kTraceMessages);
}

}  // extern "C"
