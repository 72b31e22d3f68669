/* Middleware memory and string functions: the meaning of their C library namesakes. */
#ifndef X_MEM_H
#define X_MEM_H

#include "x_mw_common.h"

X_MW_EXTERN_C_BEGIN

void*    x_mem_alloc(size_t z_size);
void     x_mem_free(void* pv_mem);
void*    x_memset(void* pv_to, int32_t i4_value, size_t z_len);
void*    x_memcpy(void* pv_to, const void* pv_from, size_t z_len);
size_t   x_strlen(const char* ps_str);
char*    x_strncpy(char* ps_to, const char* ps_from, size_t z_len);
int32_t  x_strncmp(const char* ps_a, const char* ps_b, size_t z_len);
int32_t  x_sprintf(char* ps_buf, const char* ps_format, ...) __attribute__((format(printf, 2, 3)));

X_MW_EXTERN_C_END

#endif /* X_MEM_H */
