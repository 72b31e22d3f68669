/* Lets the middleware's filters turn a tuner-pipeline handle back into its Java object. */
#ifndef X_ORVELLA_FILTER_H
#define X_ORVELLA_FILTER_H

#include <jni.h>

#include "x_mw_common.h"

X_MW_EXTERN_C_BEGIN

/* Returns a new global reference owned by the caller, or null. */
typedef jobject (*x_orvella_get_pipeline_obj_fct)(JNIEnv* env, HANDLE_T h_pipeline);

int32_t x_orvella_filter_register_get_pipeline_obj(x_orvella_get_pipeline_obj_fct pf_get);

X_MW_EXTERN_C_END

#endif /* X_ORVELLA_FILTER_H */
