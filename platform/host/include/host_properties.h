/*
 * Host stand-in for Android's system properties. Debian's host libcutils declares
 * property_get but does not define it; this store does. A property that was never set
 * here is looked up in the process environment, so that a user can run a program with,
 * for example, `env vendor.zel.broadcast.log.level=D ...`.
 */
#ifndef HOST_PROPERTIES_H
#define HOST_PROPERTIES_H

#ifdef __cplusplus
extern "C" {
#endif

/* Sets `key` in the in-process store; a null value removes it (the environment shows through again). */
void host_property_set(const char* key, const char* value);
/* Empties the in-process store. */
void host_property_clear_all(void);
/* Number of property_get calls so far (the log gate reads on every call). */
unsigned long host_property_get_count(void);

#ifdef __cplusplus
}
#endif

#endif /* HOST_PROPERTIES_H */
