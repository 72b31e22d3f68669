/* Records of the ISDB-T terrestrial builder ("sb_isdb"). */
#ifndef X_SB_ISDB_H
#define X_SB_ISDB_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t SCAN_MAPS_ISDB_CMD_T;

typedef int32_t (*x_sb_isdb_scan_maps_fct)(SCAN_MAPS_ISDB_CMD_T e_cmd, char* ps_country,
                                           void* pv_input, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Scan types that take channels (ui2_first_ch, ui2_last_ch). */
#define SB_ISDB_SCAN_TYPE_SINGLE ((uint32_t)6) /* the first channel only */
#define SB_ISDB_SCAN_TYPE_RANGE  ((uint32_t)7) /* first to last channel */

/* Service-update notification data. */
typedef struct _SB_ISDB_SVC_UPDATE_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_num_added;
    uint16_t ui2_num_deleted;
} SB_ISDB_SVC_UPDATE_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_ISDB_SVC_UPDATE_NFY_DATA_T, 4);
X_MW_CHECK_OFFSET(SB_ISDB_SVC_UPDATE_NFY_DATA_T, ui2_num_added, 0);
X_MW_CHECK_OFFSET(SB_ISDB_SVC_UPDATE_NFY_DATA_T, ui2_num_deleted, 2);

typedef void (*x_sb_isdb_svc_update_nfy_fct)(struct _SB_ISDB_SVC_UPDATE_NFY_DATA* pt_nfy_data,
                                             void* pv_nfy_tag);

/* Scan data of "sb_isdb" (x_sb_start_scan's pv_scan_data). The builder calls the
 * service-update function with a null tag: the block has no room for one. */
typedef struct {
    char     t_country_code[4];   /* 0: three letters and a NUL */
    uint32_t e_scan_type;         /* 4 */
    uint16_t ui2_first_ch;        /* 8 */
    uint16_t ui2_last_ch;         /* 10 */
    uint8_t  aui1_reserved0[8];   /* 12 */
    x_sb_isdb_svc_update_nfy_fct pf_svc_update_nfy; /* 20 */
    uint8_t  aui1_reserved1[4];   /* 24 */
} SB_ISDB_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_ISDB_SCAN_DATA_T, 28);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, t_country_code, 0);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, e_scan_type, 4);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, ui2_first_ch, 8);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, ui2_last_ch, 10);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, aui1_reserved0, 12);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, pf_svc_update_nfy, 20);
X_MW_CHECK_OFFSET(SB_ISDB_SCAN_DATA_T, aui1_reserved1, 24);

X_MW_EXTERN_C_END

#endif /* X_SB_ISDB_H */
