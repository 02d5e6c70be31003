/* Symbol visibility and C linkage for the public atapi interface. */
#ifndef ATAPI_EXPORT_H
#define ATAPI_EXPORT_H

#if defined(__GNUC__)
#define ATAPI_EXPORT __attribute__((visibility("default")))
#else
#define ATAPI_EXPORT
#endif

#ifdef __cplusplus
#define ATAPI_BEGIN_DECLS extern "C" {
#define ATAPI_END_DECLS }
#else
#define ATAPI_BEGIN_DECLS
#define ATAPI_END_DECLS
#endif

#endif
