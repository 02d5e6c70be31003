/*
 * Bounded memory and string functions under their C11 Annex K names.
 * Every function returns 0 (or a length) on success and fails, rather than
 * overrunning, when the destination is too small.
 */
#ifndef ATAPI_PLATFORM_BOUNDED_H
#define ATAPI_PLATFORM_BOUNDED_H

#include <stdarg.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int errno_t;

/* Copies count bytes; fails (dest zeroed) when count > destMax or on overlap. */
errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count);
/* Sets count bytes; the write is never optimised away (use it for wipes). */
errno_t memset_s(void *dest, size_t destMax, int c, size_t count);
/* Copies src with its terminator; fails (dest = "") when it does not fit. */
errno_t strcpy_s(char *dest, size_t destMax, const char *src);
/* Copies at most count characters of src and a terminator; fails when the
 * result does not fit. */
errno_t strncpy_s(char *dest, size_t destMax, const char *src, size_t count);
errno_t strcat_s(char *dest, size_t destMax, const char *src);
errno_t strncat_s(char *dest, size_t destMax, const char *src, size_t count);
/* Formats into dest; -1 (dest = "") when the output does not fit. */
int sprintf_s(char *dest, size_t destMax, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
/* Formats at most count characters (count < destMax) into dest; when the
 * output is longer it is truncated to count characters and -1 is returned. */
int snprintf_s(char *dest, size_t destMax, size_t count, const char *format, ...)
    __attribute__((format(printf, 4, 5)));
/* snprintf_s with a va_list. */
int vsnprintf_s(char *dest, size_t destMax, size_t count, const char *format, va_list ap)
    __attribute__((format(printf, 4, 0)));
/* Reentrant tokenizer (strtok_r semantics). */
char *strtok_s(char *str, const char *delim, char **context);

#ifdef __cplusplus
}
#endif

#endif
