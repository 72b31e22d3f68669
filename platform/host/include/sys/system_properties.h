/*
 * Bionic's <sys/system_properties.h>, as far as <cutils/properties.h> needs it on a glibc
 * host: the sizes of a property's name and value.
 */
#ifndef HOST_SYS_SYSTEM_PROPERTIES_H
#define HOST_SYS_SYSTEM_PROPERTIES_H

#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92

#endif /* HOST_SYS_SYSTEM_PROPERTIES_H */
