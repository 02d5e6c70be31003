/*
 * The system shell of the platform: runs one command line with system().
 * A sink, when installed (tests, tools), takes the command instead, so that
 * nothing reaches the machine's shell.
 */
#ifndef ATAPI_PLATFORM_SHELL_H
#define ATAPI_PLATFORM_SHELL_H

#ifdef __cplusplus
extern "C" {
#endif

/* system(command), or the sink's result when a sink is installed. */
int PlatformSystem(const char *command);

typedef int (*PlatformShellSink)(void *ctx, const char *command);
/* Installs a sink that receives every command instead of the shell; null
 * restores the shell. */
void PlatformSetShellSink(PlatformShellSink sink, void *ctx);

#ifdef __cplusplus
}
#endif

#endif
