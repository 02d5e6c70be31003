#include "server_log.h"

#include <strings.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "platform/trace.h"

namespace atserver {
namespace {

FILE *g_logFile = nullptr;  // null: stderr
bool g_verbose = false;

FILE *Out() { return g_logFile != nullptr ? g_logFile : stderr; }

// Library trace lines (errors only) join atserver's log.
void LibrarySink(void *, const char *channel, const char *source, int level, const char *text) {
    if (level > TRACE_LEVEL_ERROR) return;
    Logf("library %s %s: %s", channel, source != nullptr ? source : "", text);
}

}  // namespace

bool LogOpen(const std::string &path) {
    PlatformSetLogSink(&LibrarySink, nullptr);
    if (path.empty()) return true;
    FILE *file = std::fopen(path.c_str(), "ae");
    if (file == nullptr) return false;
    g_logFile = file;
    return true;
}

void LogClose() {
    PlatformSetLogSink(nullptr, nullptr);
    if (g_logFile != nullptr) std::fclose(g_logFile);
    g_logFile = nullptr;
}

void Logf(const char *format, ...) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);

    char text[2048];
    va_list ap;
    va_start(ap, format);
    std::vsnprintf(text, sizeof text, format, ap);
    va_end(ap);

    // Library lines arrive with their own line break.
    size_t len = 0;
    while (text[len] != '\0') ++len;
    while (len > 0 && (text[len - 1] == '\n' || text[len - 1] == '\r')) text[--len] = '\0';

    FILE *out = Out();
    std::fprintf(out, "%s.%03ld atserver[%d]: %s\n", stamp, now.tv_nsec / 1000000L,
                 static_cast<int>(getpid()), text);
    std::fflush(out);
}

void LogSetVerbose(bool verbose) { g_verbose = verbose; }
bool LogVerbose() { return g_verbose; }

std::string LoggableCommand(const std::string &cmd) {
    if (strncasecmp(cmd.c_str(), "ATD", 3) == 0) return "ATD...";
    const size_t equals = cmd.find('=');
    if (equals == std::string::npos) return cmd;
    return cmd.substr(0, equals + 1) + "...";
}

}  // namespace atserver
