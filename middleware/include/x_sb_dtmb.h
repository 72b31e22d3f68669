/* Records of the DTMB terrestrial builder ("sb_dtmb"). */
#ifndef X_SB_DTMB_H
#define X_SB_DTMB_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t DTMB_SCAN_MAPS_CMD_T;

typedef int32_t (*x_sb_dtmb_scan_maps_fct)(DTMB_SCAN_MAPS_CMD_T e_cmd, char* ps_country,
                                           void* pv_input, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Scan modes (e_scan_mode). */
#define SB_DTMB_SCAN_MODE_AUTO   ((uint32_t)1)
#define SB_DTMB_SCAN_MODE_MANUAL ((uint32_t)6)

/* Service-update notification data. */
typedef struct _SB_DTMB_SVC_UPDATE_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_num_added;
    uint16_t ui2_num_deleted;
} SB_DTMB_SVC_UPDATE_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DTMB_SVC_UPDATE_NFY_DATA_T, 4);
X_MW_CHECK_OFFSET(SB_DTMB_SVC_UPDATE_NFY_DATA_T, ui2_num_added, 0);
X_MW_CHECK_OFFSET(SB_DTMB_SVC_UPDATE_NFY_DATA_T, ui2_num_deleted, 2);

typedef void (*x_sb_dtmb_svc_update_nfy_fct)(struct _SB_DTMB_SVC_UPDATE_NFY_DATA* pt_nfy_data,
                                             void* pv_nfy_tag);

/* Scan data of "sb_dtmb" (x_sb_start_scan's pv_scan_data). */
typedef struct {
    char     t_country_code[4];      /* 0: three letters and a NUL */
    char     t_ui_lang[4];           /* 4: three letters and a NUL */
    uint32_t e_scan_mode;            /* 8 */
    uint32_t ui4_svc_id_rule;        /* 12 */
    uint32_t ui4_manual_freq;        /* 16: manual scans only */
    uint8_t  aui1_reserved0[4];      /* 20 */
    uint32_t e_svc_update_type;      /* 24 */
    uint8_t  aui1_reserved1[4];      /* 28 */
    x_sb_dtmb_svc_update_nfy_fct pf_svc_update_nfy; /* 32 */
    void*    pv_svc_update_nfy_tag;  /* 36 */
    uint8_t  aui1_reserved2[8];      /* 40 */
} SB_DTMB_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_DTMB_SCAN_DATA_T, 48);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, t_country_code, 0);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, t_ui_lang, 4);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, e_scan_mode, 8);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, ui4_svc_id_rule, 12);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, ui4_manual_freq, 16);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, aui1_reserved0, 20);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, e_svc_update_type, 24);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, aui1_reserved1, 28);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, pf_svc_update_nfy, 32);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, pv_svc_update_nfy_tag, 36);
X_MW_CHECK_OFFSET(SB_DTMB_SCAN_DATA_T, aui1_reserved2, 40);

X_MW_EXTERN_C_END

#endif /* X_SB_DTMB_H */
