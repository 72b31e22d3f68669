/* Middleware handles: a 32-bit name for an object of a given type. */
#ifndef X_HANDLE_H
#define X_HANDLE_H

#include "x_mw_common.h"

X_MW_EXTERN_C_BEGIN

/* Asked before a handle is freed; a true (non-zero) answer lets the middleware free it. */
typedef MW_BOOL (*handle_free_fct)(HANDLE_T h_handle, HANDLE_TYPE_T e_type, void* pv_obj,
                                   void* pv_tag, MW_BOOL b_req_handle);

int32_t handle_alloc(HANDLE_TYPE_T e_type, void* pv_obj, void* pv_tag, handle_free_fct pf_free,
                     HANDLE_T* ph_handle);
int32_t handle_get_obj(HANDLE_T h_handle, void** ppv_obj);
int32_t x_handle_free(HANDLE_T h_handle);

X_MW_EXTERN_C_END

#endif /* X_HANDLE_H */
