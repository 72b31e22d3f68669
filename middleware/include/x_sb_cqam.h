/* Records of the North-American clear-QAM cable builder ("sb_cqam"). */
#ifndef X_SB_CQAM_H
#define X_SB_CQAM_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t SCAN_MAPS_CQAM_CMD_T;

typedef int32_t (*x_sb_cqam_scan_maps_fct)(SCAN_MAPS_CQAM_CMD_T e_cmd, char* ps_country,
                                           void* pv_input, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Scan types that take a channel-index range, as ATSC's (ui4_index_range). */
#define SB_CQAM_SCAN_TYPE_SINGLE ((uint32_t)4)
#define SB_CQAM_SCAN_TYPE_RANGE  ((uint32_t)5)

/* Scan data of "sb_cqam" (x_sb_start_scan's pv_scan_data). */
typedef struct {
    uint32_t e_scan_type;       /* 0 */
    uint32_t ui4_index_range;   /* 4 */
    uint32_t ui4_mode_mask;     /* 8 */
    uint8_t  ui1_freq_plan;     /* 12 */
    uint8_t  aui1_reserved[3];  /* 13 */
    uint32_t ui4_reserved;      /* 16 */
} SB_CQAM_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_CQAM_SCAN_DATA_T, 20);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, e_scan_type, 0);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, ui4_index_range, 4);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, ui4_mode_mask, 8);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, ui1_freq_plan, 12);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, aui1_reserved, 13);
X_MW_CHECK_OFFSET(SB_CQAM_SCAN_DATA_T, ui4_reserved, 16);

X_MW_EXTERN_C_END

#endif /* X_SB_CQAM_H */
