/* Records of the cable DVB builders ("sb_dvbc", and "sb_cn_dvbc" for China). */
#ifndef X_SB_DVBC_H
#define X_SB_DVBC_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t DVBC_SCAN_MAPS_CMD_T;

/*
 * The cable builders ask with two more arguments than the others: a number that goes with
 * the command (`ui4_value`) and a reserved pointer. Registered through x_sb_reg_scan_map
 * like every scan-maps function, cast to x_sb_scan_maps_fct; the builder calls it back
 * with this signature.
 */
typedef int32_t (*x_sb_dvbc_scan_maps_fct)(DVBC_SCAN_MAPS_CMD_T e_cmd, char* ps_country,
                                           uint32_t ui4_value, void* pv_input,
                                           void* pv_reserved, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Service-update notification data. */
typedef struct _SB_DVBC_SVC_UPDATE_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_num_added;
    uint16_t ui2_num_deleted;
} SB_DVBC_SVC_UPDATE_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBC_SVC_UPDATE_NFY_DATA_T, 4);
X_MW_CHECK_OFFSET(SB_DVBC_SVC_UPDATE_NFY_DATA_T, ui2_num_added, 0);
X_MW_CHECK_OFFSET(SB_DVBC_SVC_UPDATE_NFY_DATA_T, ui2_num_deleted, 2);

typedef void (*x_sb_dvbc_svc_update_nfy_fct)(struct _SB_DVBC_SVC_UPDATE_NFY_DATA* pt_nfy_data,
                                             void* pv_nfy_tag);

/* What a scanning notification reports (e_nfy_type). */
#define SB_DVBC_NFY_NW_NAME     ((int32_t)0) /* payload: the network's name */
#define SB_DVBC_NFY_FREQ_UNLOCK ((int32_t)1) /* payload: a frequency that did not lock */
#define SB_DVBC_NFY_NO_NW_ID    ((int32_t)2) /* payload: the network id asked for, not found */

/* Room for a network name and its terminating zero. */
#define SB_DVBC_NW_NAME_LEN 33

/* Scanning notification data. */
typedef struct _SB_DVBC_SCANNING_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    int32_t e_nfy_type;        /* 0 */
    char    t_country[4];      /* 4: three letters and a NUL */
    int32_t t_operator_name;   /* 8 */
    union {                    /* 12 */
        char     s_nw_name[SB_DVBC_NW_NAME_LEN]; /* NUL-terminated */
        uint32_t ui4_freq;
        uint16_t ui2_nw_id;    /* read as the whole 32-bit word */
    } u;
} SB_DVBC_SCANNING_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBC_SCANNING_NFY_DATA_T, 48);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, e_nfy_type, 0);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, t_country, 4);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, t_operator_name, 8);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, u.s_nw_name, 12);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, u.ui4_freq, 12);
X_MW_CHECK_OFFSET(SB_DVBC_SCANNING_NFY_DATA_T, u.ui2_nw_id, 12);

typedef void (*x_sb_dvbc_scanning_nfy_fct)(struct _SB_DVBC_SCANNING_NFY_DATA* pt_nfy_data,
                                           void* pv_nfy_tag);

/* Validity flags of the scan data (ui2_valid_mask). */
#define SB_DVBC_VALID_NW_ID      ((uint16_t)0x0001)
#define SB_DVBC_VALID_START_FREQ ((uint16_t)0x0010)
#define SB_DVBC_VALID_END_FREQ   ((uint16_t)0x0020)

/* Scan data of "sb_dvbc" and "sb_cn_dvbc" (x_sb_start_scan's pv_scan_data). */
typedef struct {
    char     t_country_code[4];       /* 0: three letters and a NUL */
    int32_t  t_operator_name;         /* 4 */
    uint32_t e_scan_mode;             /* 8 */
    uint32_t e_svc_update_type;       /* 12 */
    uint32_t e_search_mode;           /* 16 */
    char     t_ui_lang[4];            /* 20: three letters and a NUL */
    uint16_t ui2_valid_mask;          /* 24 */
    uint16_t ui2_nw_id;               /* 26 */
    uint8_t  aui1_reserved0[12];      /* 28 */
    uint32_t ui4_start_freq;          /* 40 */
    uint32_t ui4_end_freq;            /* 44 */
    uint8_t  aui1_reserved1[8];       /* 48 */
    x_sb_dvbc_svc_update_nfy_fct pf_svc_update_nfy; /* 56 */
    void*    pv_svc_update_nfy_tag;   /* 60 */
    uint8_t  aui1_reserved2[8];       /* 64 */
    x_sb_dvbc_scanning_nfy_fct pf_scanning_nfy;     /* 72 */
    void*    pv_scanning_nfy_tag;     /* 76 */
    uint8_t  aui1_reserved3[4];       /* 80 */
} SB_DVBC_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_DVBC_SCAN_DATA_T, 84);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, t_country_code, 0);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, t_operator_name, 4);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, e_scan_mode, 8);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, e_svc_update_type, 12);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, e_search_mode, 16);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, t_ui_lang, 20);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, ui2_valid_mask, 24);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, ui2_nw_id, 26);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, aui1_reserved0, 28);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, ui4_start_freq, 40);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, ui4_end_freq, 44);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, aui1_reserved1, 48);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, pf_svc_update_nfy, 56);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, pv_svc_update_nfy_tag, 60);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, aui1_reserved2, 64);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, pf_scanning_nfy, 72);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, pv_scanning_nfy_tag, 76);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_DATA_T, aui1_reserved3, 80);

/* Room for a service name and its terminating zero in the service-name commands. */
#define SB_DVBC_SVC_NAME_LEN 36

/* Input of the service-name scan-maps commands (17, 58): three words, then the name. */
typedef struct {
    uint32_t aui4_value[3];                   /* 0, 4, 8 */
    char     s_svc_name[SB_DVBC_SVC_NAME_LEN]; /* 12: NUL-terminated */
} SB_DVBC_SCAN_MAPS_SVC_INPUT_T;
X_MW_CHECK_SIZE(SB_DVBC_SCAN_MAPS_SVC_INPUT_T, 48);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_MAPS_SVC_INPUT_T, aui4_value, 0);
X_MW_CHECK_OFFSET(SB_DVBC_SCAN_MAPS_SVC_INPUT_T, s_svc_name, 12);

X_MW_EXTERN_C_END

#endif /* X_SB_DVBC_H */
