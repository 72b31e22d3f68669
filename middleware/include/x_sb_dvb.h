/* Records of the terrestrial DVB builder ("sb_dvb"). */
#ifndef X_SB_DVB_H
#define X_SB_DVB_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

/* Service-update notification data. */
typedef struct _SB_DVB_SVC_UPDATE_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_num_added;
    uint16_t ui2_num_deleted;
} SB_DVB_SVC_UPDATE_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVB_SVC_UPDATE_NFY_DATA_T, 4);
X_MW_CHECK_OFFSET(SB_DVB_SVC_UPDATE_NFY_DATA_T, ui2_num_deleted, 2);

typedef void (*x_sb_dvb_svc_update_nfy_fct)(struct _SB_DVB_SVC_UPDATE_NFY_DATA* pt_nfy_data,
                                            void* pv_nfy_tag);

/* Scan data of "sb_dvb" (x_sb_start_scan's pv_scan_data). */
typedef struct {
    char     t_country_code[4];      /* 0: three letters and a NUL */
    uint32_t e_scan_type;            /* 4 */
    uint32_t e_svc_update_type;      /* 8 */
    char     t_ui_lang[4];           /* 12: three letters and a NUL */
    uint8_t  aui1_reserved0[16];     /* 16 */
    x_sb_dvb_svc_update_nfy_fct pf_svc_update_nfy; /* 32 */
    void*    pv_svc_update_nfy_tag;  /* 36 */
    uint8_t  aui1_reserved1[24];     /* 40 */
} SB_DVB_SCAN_DATA_T;
X_MW_CHECK_SIZE(SB_DVB_SCAN_DATA_T, 64);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_DATA_T, e_scan_type, 4);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_DATA_T, e_svc_update_type, 8);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_DATA_T, t_ui_lang, 12);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_DATA_T, pf_svc_update_nfy, 32);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_DATA_T, pv_svc_update_nfy_tag, 36);

/* Input of the name-query scan-maps commands (27, 28). */
typedef struct {
    uint16_t aui2_value[3];  /* 0, 2, 4 */
    char     ac_text[];      /* 6: NUL-terminated */
} SB_DVB_SCAN_MAPS_TEXT_INPUT_T;
X_MW_CHECK_OFFSET(SB_DVB_SCAN_MAPS_TEXT_INPUT_T, ac_text, 6);

/* Output of the rules scan-maps command (16). */
#define SB_DVB_SCAN_MAPS_MAX_RULES 17
typedef struct {
    uint32_t aui4_rule[SB_DVB_SCAN_MAPS_MAX_RULES]; /* 0 */
    uint16_t ui2_num_rules;                          /* 68 */
    uint8_t  aui1_reserved[2];
} SB_DVB_SCAN_MAPS_RULES_T;
X_MW_CHECK_SIZE(SB_DVB_SCAN_MAPS_RULES_T, 72);
X_MW_CHECK_OFFSET(SB_DVB_SCAN_MAPS_RULES_T, ui2_num_rules, 68);

/* LCN conflict group (key SB_KEY_TYPE_LCN_CONFLICT_GROUP). */
typedef struct {
    uint8_t  ui1_grp_idx;   /* 0: written by the caller */
    uint8_t  ui1_reserved;  /* 1 */
    uint16_t ui2_lcn;       /* 2: the contested LCN */
    uint16_t ui2_grp_data;  /* 4 */
} SB_LCN_CONFLICT_GROUP_T;
X_MW_CHECK_SIZE(SB_LCN_CONFLICT_GROUP_T, 6);
X_MW_CHECK_OFFSET(SB_LCN_CONFLICT_GROUP_T, ui2_lcn, 2);

/* One service of an LCN conflict group (key SB_KEY_TYPE_LCN_CONFLICT_CHANNEL). */
typedef struct {
    uint16_t ui2_ch_idx;          /* 0: written by the caller */
    uint8_t  aui1_reserved0[6];   /* 2 */
    uint16_t ui2_svl_id;          /* 8 */
    uint16_t ui2_svl_rec_id;      /* 10 */
    uint8_t  aui1_reserved1[76];  /* 12 */
} SB_LCN_CONFLICT_CHANNEL_T;
X_MW_CHECK_SIZE(SB_LCN_CONFLICT_CHANNEL_T, 88);
X_MW_CHECK_OFFSET(SB_LCN_CONFLICT_CHANNEL_T, ui2_svl_id, 8);
X_MW_CHECK_OFFSET(SB_LCN_CONFLICT_CHANNEL_T, ui2_svl_rec_id, 10);

/* Services dropped for want of a free LCN, per kind. */
typedef struct {
    uint16_t ui2_tv;
    uint16_t ui2_radio;
    uint16_t ui2_data;
} SB_LCN_GARBAGE_INFO_T;
X_MW_CHECK_SIZE(SB_LCN_GARBAGE_INFO_T, 6);

/* Per-service LCN information, carried unchanged between Java and the builder. */
typedef struct {
    uint16_t aui2_value[4];  /* 0 */
    uint8_t  aui1_value[2];  /* 8 */
} SB_SVC_LCN_INFO_T;
X_MW_CHECK_SIZE(SB_SVC_LCN_INFO_T, 10);
X_MW_CHECK_OFFSET(SB_SVC_LCN_INFO_T, aui1_value, 8);

/* One entry of the name-sorting list. */
#define SB_NAME_SORTING_NAME_MAX 64
typedef struct {
    uint16_t ui2_value;                              /* 0 */
    char     ac_name[SB_NAME_SORTING_NAME_MAX + 1];  /* 2 */
    uint8_t  ui1_reserved;                           /* 67 */
} SB_NAME_SORTING_ENTRY_T;
X_MW_CHECK_SIZE(SB_NAME_SORTING_ENTRY_T, 68);
X_MW_CHECK_OFFSET(SB_NAME_SORTING_ENTRY_T, ac_name, 2);

/* A target region: up to three levels of codes. */
typedef struct {
    uint8_t  ui1_level;     /* 0: number of significant codes, 0 to 3 */
    uint8_t  ui1_reserved;  /* 1 */
    uint16_t ui2_code[3];   /* 2, 4, 6 */
} SB_REGION_KEY_T;
X_MW_CHECK_SIZE(SB_REGION_KEY_T, 8);
X_MW_CHECK_OFFSET(SB_REGION_KEY_T, ui2_code, 2);

#define SB_REGION_NAME_LEN 34
typedef struct {
    SB_REGION_KEY_T t_key;                    /* 0 */
    char            ac_name[SB_REGION_NAME_LEN]; /* 8 */
} SB_REGION_REC_T;
X_MW_CHECK_SIZE(SB_REGION_REC_T, 42);
X_MW_CHECK_OFFSET(SB_REGION_REC_T, ac_name, 8);

/* One LCN v2 channel list. */
#define SB_LCNV2_CHLIST_NAME_LEN 24
typedef struct {
    char    ac_name[SB_LCNV2_CHLIST_NAME_LEN]; /* 0 */
    uint8_t ui1_lcnv2_chlist_id;               /* 24 */
} SB_LCNV2_CHLIST_REC_T;
X_MW_CHECK_SIZE(SB_LCNV2_CHLIST_REC_T, 25);
X_MW_CHECK_OFFSET(SB_LCNV2_CHLIST_REC_T, ui1_lcnv2_chlist_id, 24);

X_MW_EXTERN_C_END

#endif /* X_SB_DVB_H */
