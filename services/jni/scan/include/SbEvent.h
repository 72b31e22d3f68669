/* One builder notification queued for the scan engine's event thread. */
#ifndef SB_EVENT_H
#define SB_EVENT_H

#include <stddef.h>
#include <stdint.h>

typedef struct {
    uint32_t reason;
    uint32_t data;
} SB_EVENT;
static_assert(sizeof(SB_EVENT) == 8, "SB_EVENT size");
static_assert(offsetof(SB_EVENT, data) == 4, "SB_EVENT.data offset");

/* The engine's own request to end its event thread. */
#define SB_EVENT_REASON_EXIT ((uint32_t)255)

#endif /* SB_EVENT_H */
