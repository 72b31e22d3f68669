/* Records of the ATSC terrestrial builder ("sb_atsc"). */
#ifndef X_SB_ATSC_H
#define X_SB_ATSC_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t SCAN_MAPS_ATSC_CMD_T;

typedef int32_t (*x_sb_atsc_scan_maps_fct)(SCAN_MAPS_ATSC_CMD_T e_cmd, char* ps_country,
                                           void* pv_input, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Scan types that take a channel-index range (ui4_index_range). */
#define SB_ATSC_SCAN_TYPE_SINGLE ((uint32_t)4) /* one index, in both halves */
#define SB_ATSC_SCAN_TYPE_RANGE  ((uint32_t)5) /* first index high, last index low */

/* Scan data of "sb_atsc" (x_sb_start_scan's pv_scan_data). */
typedef struct {
    uint32_t e_scan_type;     /* 0 */
    uint32_t ui4_index_range; /* 4 */
} SB_ATSC_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_ATSC_SCAN_DATA_T, 8);
X_MW_CHECK_OFFSET(SB_ATSC_SCAN_DATA_T, e_scan_type, 0);
X_MW_CHECK_OFFSET(SB_ATSC_SCAN_DATA_T, ui4_index_range, 4);

X_MW_EXTERN_C_END

#endif /* X_SB_ATSC_H */
