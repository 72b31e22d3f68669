/*
 * Common types of the TV middleware's C API. The middleware is built for a 32-bit
 * (ILP32) target: handles are 32-bit and pointers inside wire records are 32-bit.
 */
#ifndef X_MW_COMMON_H
#define X_MW_COMMON_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define X_MW_EXTERN_C_BEGIN extern "C" {
#define X_MW_EXTERN_C_END }
#else
#define X_MW_EXTERN_C_BEGIN
#define X_MW_EXTERN_C_END
#endif

typedef uint32_t HANDLE_T;
typedef uint32_t HANDLE_TYPE_T;
typedef int32_t  MW_BOOL;

#define NULL_HANDLE ((HANDLE_T)0)

/* Every middleware call answers 0 on success and a negative number otherwise. */
#define MWR_OK          ((int32_t)0)
#define MWR_FAIL        ((int32_t)-1)
#define MWR_INV_ARG     ((int32_t)-2)
#define MWR_INV_HANDLE  ((int32_t)-3)
#define MWR_NOT_FOUND   ((int32_t)-4)
#define MWR_OUT_OF_MEM  ((int32_t)-5)
#define MWR_NOT_ALLOWED ((int32_t)-6)

/* Wire records are fixed by the 32-bit middleware: each one's size and offsets are checked. */
#ifdef __cplusplus
#define X_MW_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define X_MW_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif
#ifndef ORVELLA_RACE_CHECK
#define X_MW_CHECK_SIZE(type, size) X_MW_STATIC_ASSERT(sizeof(type) == (size), #type " size")
#define X_MW_CHECK_OFFSET(type, field, off) \
    X_MW_STATIC_ASSERT(offsetof(type, field) == (off), #type "." #field " offset")
#else
/* The race-checking build (x86-64 with ThreadSanitizer, never shipped) has 64-bit pointers
 * in the records: library and simulator agree on the layout, which is not the TV's. */
#define X_MW_CHECK_SIZE(type, size) X_MW_STATIC_ASSERT(sizeof(type) > 0, #type " size")
#define X_MW_CHECK_OFFSET(type, field, off) \
    X_MW_STATIC_ASSERT(offsetof(type, field) <= sizeof(type), #type "." #field " offset")
#endif

#endif /* X_MW_COMMON_H */
