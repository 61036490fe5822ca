/* What the driving program of driven_test.py has in use. For C and C++. */
#ifndef KOVADX_PROGRAMS_STARTXD_DRIVER_USAGE_H
#define KOVADX_PROGRAMS_STARTXD_DRIVER_USAGE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Descriptors or handles. */
int usedHandles(void);

/* Bytes that the program has allocated and not freed, all threads together. */
int usedBytes(void);

#ifdef __cplusplus
}
#endif

#endif
