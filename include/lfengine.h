/* Load-flow engine: the public C interface.
 *
 * A host starts the engine once with LFInit, asks for any number of
 * calculations with LFCal and ends it with LFFinilize.  LFPstring sends one
 * line of text through the engine's output channels.  All arguments are
 * passed by address.
 */
#ifndef LFENGINE_H
#define LFENGINE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(LFENGINE_BUILD)
#define LFENGINE_API __attribute__((visibility("default")))
#else
#define LFENGINE_API
#endif

/* Flag bits of LFInit and LFCal. */
#define LF_FLAG_WINDOW 1    /* progress window */
#define LF_FLAG_LINK 2      /* message link to the status server */
#define LF_FLAG_PRINT 4     /* lines to the host callback */
#define LF_FLAG_NONLINEAR 8 /* LFCal: the nonlinear method in place of the case's method */

/* The host callback: called with one NUL-terminated line a call. */
typedef int (*LFPrintFunc)(const char* line);

LFENGINE_API int LFInit(int* flags, char* title, int* session, intptr_t* callback, int* mode);
LFENGINE_API int LFCal(int* flags);
LFENGINE_API int LFFinilize(void);
LFENGINE_API int LFPstring(char* text);

#ifdef __cplusplus
}
#endif

#endif
