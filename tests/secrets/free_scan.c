/*
 * Preloaded into a process (LD_PRELOAD), this object looks into every heap
 * block the process hands back, through free and through a realloc that
 * moves the block, and counts the blocks that still hold one of the planted
 * secrets. operator delete ends in free, so C++ blocks are seen as well.
 *
 * FREE_SCAN_SECRETS  the secrets, separated by ','
 * FREE_SCAN_REPORT   file to which each process appends its lines:
 *                      start <pid> <program>
 *                      hit <pid> <program> <block size> <secret>
 *                      end <pid> <program> <blocks scanned> <hits>
 * Hits are written as they happen, so that a process killed before its end
 * still reports them; "end" says the process ran its exit handlers.
 * FREE_SCAN_BACKTRACE=1 adds the call stack of each hit to stderr.
 *
 * For builds without sanitizers only: those bring their own allocator.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kMaxSecrets = 16, kMaxSecretLen = 64, kCopyLimit = 1 << 20 };

static char g_secrets[kMaxSecrets][kMaxSecretLen];
static size_t g_secretLens[kMaxSecrets];
static size_t g_secretCount;
static char g_report[512];
static char g_program[128];
static atomic_ulong g_scanned;
static atomic_ulong g_hits;
static _Thread_local int g_inside; /* the report's own work is not scanned */
static int g_backtrace;

static void Report(const char *format, ...) {
    if (g_report[0] == '\0') return;
    char line[256];
    va_list ap;
    va_start(ap, format);
    const int len = vsnprintf(line, sizeof line, format, ap);
    va_end(ap);
    if (len <= 0) return;
    const int fd = open(g_report, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd == -1) return;
    const size_t size = (size_t)len < sizeof line ? (size_t)len : sizeof line - 1;
    if (write(fd, line, size) < 0) {
        /* nothing more to do: the missing "end" line tells */
    }
    close(fd);
}

static void ProgramName(void) {
    const int fd = open("/proc/self/comm", O_RDONLY | O_CLOEXEC);
    if (fd == -1) return;
    const ssize_t got = read(fd, g_program, sizeof g_program - 1);
    close(fd);
    if (got <= 0) return;
    g_program[got] = '\0';
    char *newline = strchr(g_program, '\n');
    if (newline != NULL) *newline = '\0';
}

__attribute__((constructor)) static void Start(void) {
    const char *secrets = getenv("FREE_SCAN_SECRETS");
    const char *report = getenv("FREE_SCAN_REPORT");
    const char *trace = getenv("FREE_SCAN_BACKTRACE");
    g_backtrace = trace != NULL && strcmp(trace, "1") == 0;
    if (report != NULL && strlen(report) < sizeof g_report) strcpy(g_report, report);
    ProgramName();
    for (const char *at = secrets; at != NULL && *at != '\0' && g_secretCount < kMaxSecrets;) {
        const char *comma = strchr(at, ',');
        const size_t len = comma != NULL ? (size_t)(comma - at) : strlen(at);
        if (len > 0 && len < kMaxSecretLen) {
            memcpy(g_secrets[g_secretCount], at, len);
            g_secretLens[g_secretCount++] = len;
        }
        at = comma != NULL ? comma + 1 : NULL;
    }
    Report("start %d %s\n", (int)getpid(), g_program);
}

__attribute__((destructor)) static void End(void) {
    Report("end %d %s %lu %lu\n", (int)getpid(), g_program, atomic_load(&g_scanned),
           atomic_load(&g_hits));
}

static void Scan(const void *block, size_t size) {
    if (block == NULL || size == 0 || g_inside) return;
    g_inside = 1;
    atomic_fetch_add(&g_scanned, 1);
    for (size_t i = 0; i < g_secretCount; ++i) {
        if (memmem(block, size, g_secrets[i], g_secretLens[i]) == NULL) continue;
        atomic_fetch_add(&g_hits, 1);
        Report("hit %d %s %zu %s\n", (int)getpid(), g_program, size, g_secrets[i]);
        if (g_backtrace) {
            void *frames[32];
            backtrace_symbols_fd(frames, backtrace(frames, 32), STDERR_FILENO);
        }
        break;
    }
    g_inside = 0;
}

typedef void (*FreeFn)(void *);
typedef void *(*ReallocFn)(void *, size_t);

static FreeFn RealFree(void) {
    static FreeFn fn;
    if (fn == NULL) fn = (FreeFn)dlsym(RTLD_NEXT, "free");
    return fn;
}

static ReallocFn RealRealloc(void) {
    static ReallocFn fn;
    if (fn == NULL) fn = (ReallocFn)dlsym(RTLD_NEXT, "realloc");
    return fn;
}

void free(void *block) {
    if (block != NULL) Scan(block, malloc_usable_size(block));
    RealFree()(block);
}

/* A realloc that moves the block frees the old one without passing through
 * free: its contents are copied first and scanned once the move is known. */
void *realloc(void *block, size_t size) {
    if (block == NULL || size == 0 || g_inside) return RealRealloc()(block, size);
    const size_t oldSize = malloc_usable_size(block);
    char *before = NULL;
    if (oldSize <= kCopyLimit) {
        g_inside = 1;
        before = malloc(oldSize);
        if (before != NULL) memcpy(before, block, oldSize);
        g_inside = 0;
    }
    void *moved = RealRealloc()(block, size);
    if (moved != NULL && moved != block && before != NULL) Scan(before, oldSize);
    if (before != NULL) {
        memset(before, 0, oldSize);
        g_inside = 1;
        RealFree()(before);
        g_inside = 0;
    }
    return moved;
}
