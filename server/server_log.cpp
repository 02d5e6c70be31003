#include "server_log.h"

#include <strings.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <mutex>

#include "platform/bounded.h"
#include "platform/trace.h"

namespace atserver {
namespace {

struct LevelName {
    LogLevel level;
    const char *name;
    int priority;  // syslog's
};

constexpr LevelName kLevels[] = {
    {LogLevel::kError, "error", LOG_ERR},
    {LogLevel::kWarn, "warn", LOG_WARNING},
    {LogLevel::kInfo, "info", LOG_INFO},
    {LogLevel::kDebug, "debug", LOG_DEBUG},
};

const LevelName &Describe(LogLevel level) { return kLevels[static_cast<int>(level)]; }

LogTarget g_target = LogTarget::kStderr;
std::string g_path;
FILE *g_logFile = nullptr;
LogLevel g_threshold = LogLevel::kInfo;
// The request intake logs from its own thread: a line is written whole, and
// never to a file that a reopen is closing.
std::mutex g_fileMutex;

// Library trace lines (errors only) join atserver's log.
void LibrarySink(void *, const char *channel, const char *source, int level, const char *text) {
    if (level > TRACE_LEVEL_ERROR) return;
    LogError("library %s %s: %s", channel, source != nullptr ? source : "", text);
}

void WriteLine(LogLevel level, const char *text) {
    if (g_target == LogTarget::kSyslog) {
        syslog(Describe(level).priority, "%s", text);
        return;
    }
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    std::lock_guard lock(g_fileMutex);
    FILE *out = g_logFile != nullptr ? g_logFile : stderr;
    std::fprintf(out, "%s.%03ld atserver[%d] %s: %s\n", stamp, now.tv_nsec / 1000000L,
                 static_cast<int>(getpid()), Describe(level).name, text);
    std::fflush(out);
}

void VLog(LogLevel level, const char *format, va_list ap) {
    if (level > g_threshold) return;
    const int savedErrno = errno;
    char text[2048];
    std::vsnprintf(text, sizeof text, format, ap);
    // One event, one line: library lines arrive with their own line break,
    // and a modem's text may carry more.
    size_t len = 0;
    while (text[len] != '\0') ++len;
    while (len > 0 && (text[len - 1] == '\n' || text[len - 1] == '\r')) text[--len] = '\0';
    for (size_t i = 0; i < len; ++i) {
        if (text[i] == '\n' || text[i] == '\r') text[i] = ' ';
    }
    WriteLine(level, text);
    // Modem text passes through here too.
    memset_s(text, sizeof text, 0, sizeof text);
    errno = savedErrno;
}

}  // namespace

bool ParseLogLevel(const std::string &name, LogLevel *out) {
    for (const LevelName &entry : kLevels) {
        if (name == entry.name) {
            *out = entry.level;
            return true;
        }
    }
    return false;
}

bool LogOpen(LogTarget target, const std::string &path) {
    PlatformSetLogSink(&LibrarySink, nullptr);
    if (target == LogTarget::kSyslog) openlog("atserver", LOG_PID | LOG_NDELAY, LOG_DAEMON);
    if (target != LogTarget::kFile) {
        g_target = target;
        return true;
    }
    FILE *file = std::fopen(path.c_str(), "ae");
    if (file == nullptr) return false;
    g_target = target;
    g_path = path;
    g_logFile = file;
    return true;
}

bool LogReopen() {
    if (g_target != LogTarget::kFile) return true;
    FILE *file = std::fopen(g_path.c_str(), "ae");
    if (file == nullptr) return false;
    std::lock_guard lock(g_fileMutex);
    std::fclose(g_logFile);
    g_logFile = file;
    return true;
}

void LogClose() {
    PlatformSetLogSink(nullptr, nullptr);
    if (g_logFile != nullptr) std::fclose(g_logFile);
    if (g_target == LogTarget::kSyslog) closelog();
    g_logFile = nullptr;
    g_target = LogTarget::kStderr;
}

void LogSetLevel(LogLevel level) { g_threshold = level; }

#define ATSERVER_LOG_FUNCTION(name, level) \
    void name(const char *format, ...) {   \
        va_list ap;                        \
        va_start(ap, format);              \
        VLog(level, format, ap);           \
        va_end(ap);                        \
    }
ATSERVER_LOG_FUNCTION(LogError, LogLevel::kError)
ATSERVER_LOG_FUNCTION(LogWarn, LogLevel::kWarn)
ATSERVER_LOG_FUNCTION(Logf, LogLevel::kInfo)
ATSERVER_LOG_FUNCTION(LogDebug, LogLevel::kDebug)
#undef ATSERVER_LOG_FUNCTION

std::string LoggableCommand(const std::string &cmd) {
    if (strncasecmp(cmd.c_str(), "ATD", 3) == 0) return "ATD...";
    const size_t equals = cmd.find('=');
    if (equals == std::string::npos) return cmd;
    return cmd.substr(0, equals + 1) + "...";
}

}  // namespace atserver
