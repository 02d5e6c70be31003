/*
 * Preloaded into a process (LD_PRELOAD), this object looks into every heap
 * block the process hands back, through free and through a realloc that
 * moves the block, for the secrets of FREE_SCAN_SECRETS (separated by ','),
 * and appends its findings to the file FREE_SCAN_REPORT:
 *   start <pid> <program>
 *   hit <pid> <program> <block size> <secret>    (as it happens)
 *   end <pid> <program> <blocks scanned>         (when exit handlers run)
 * operator delete ends in free, so C++ blocks are seen as well. For builds
 * without sanitizers only: those bring their own allocator.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
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
static size_t g_secretCount;
static char g_report[512];
static char g_program[64] = "?";
static atomic_ulong g_scanned;
static _Thread_local int g_inside; /* the scan's own allocations are not scanned */

/* Each line goes out in one write to a file opened for appending, so that
 * the lines of several processes do not mix; no stdio, which allocates. */
static void Report(const char *format, ...) {
    char line[256];
    va_list ap;
    va_start(ap, format);
    const int len = vsnprintf(line, sizeof line, format, ap);
    va_end(ap);
    const int fd = len > 0 ? open(g_report, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644) : -1;
    if (fd == -1) return;
    /* a short write shows as a missing line */
    if (write(fd, line, (size_t)len < sizeof line ? (size_t)len : sizeof line - 1) < 0) {
    }
    close(fd);
}

__attribute__((constructor)) static void Start(void) {
    const char *report = getenv("FREE_SCAN_REPORT");
    if (report != NULL && strlen(report) < sizeof g_report) strcpy(g_report, report);
    FILE *comm = fopen("/proc/self/comm", "re");
    if (comm != NULL) {
        if (fscanf(comm, "%63s", g_program) != 1) strcpy(g_program, "?");
        fclose(comm);
    }
    const char *at = getenv("FREE_SCAN_SECRETS");
    while (at != NULL && *at != '\0' && g_secretCount < kMaxSecrets) {
        const size_t len = strcspn(at, ",");
        if (len > 0 && len < kMaxSecretLen) memcpy(g_secrets[g_secretCount++], at, len);
        at = at[len] == ',' ? at + len + 1 : NULL;
    }
    Report("start %d %s\n", (int)getpid(), g_program);
}

__attribute__((destructor)) static void End(void) {
    Report("end %d %s %lu\n", (int)getpid(), g_program, atomic_load(&g_scanned));
}

static void Scan(const void *block, size_t size) {
    if (block == NULL || size == 0 || g_inside) return;
    g_inside = 1;
    atomic_fetch_add(&g_scanned, 1);
    for (size_t i = 0; i < g_secretCount; ++i) {
        if (memmem(block, size, g_secrets[i], strlen(g_secrets[i])) != NULL) {
            Report("hit %d %s %zu %s\n", (int)getpid(), g_program, size, g_secrets[i]);
            break;
        }
    }
    g_inside = 0;
}

void free(void *block) {
    static void (*real)(void *);
    if (real == NULL) real = (void (*)(void *))dlsym(RTLD_NEXT, "free");
    if (block != NULL) Scan(block, malloc_usable_size(block));
    real(block);
}

/* A realloc that moves the block frees the old one without passing through
 * free: its contents are copied first and scanned once the move is known. */
void *realloc(void *block, size_t size) {
    static void *(*real)(void *, size_t);
    if (real == NULL) real = (void *(*)(void *, size_t))dlsym(RTLD_NEXT, "realloc");
    if (block == NULL || size == 0 || g_inside) return real(block, size);
    const size_t oldSize = malloc_usable_size(block);
    g_inside = 1;
    char *before = oldSize <= kCopyLimit ? malloc(oldSize) : NULL;
    if (before != NULL) memcpy(before, block, oldSize);
    g_inside = 0;
    void *moved = real(block, size);
    if (moved != NULL && moved != block && before != NULL) Scan(before, oldSize);
    if (before != NULL) explicit_bzero(before, oldSize);
    g_inside = 1;
    free(before);
    g_inside = 0;
    return moved;
}
