/*
 * Records of the satellite builder ("sb_dvbs"): its scan-maps commands and their records,
 * and the notifications it sends during a scan. The scan-parameter block itself is
 * SB_DVBS_SCAN_PARAMS (SbDvbsScanParams.h of the scan library), which holds the
 * notification functions below.
 */
#ifndef X_SB_DVBS_H
#define X_SB_DVBS_H

#include "x_sb.h"

X_MW_EXTERN_C_BEGIN

/* Scan-maps commands of the satellite builder. Those without a name are settled between
 * the builder and the application; the library only knows their shapes. */
typedef uint32_t DVBS_SCAN_MAPS_CMD_T;
#define DVBS_SCAN_MAPS_CMD_QUERY_SAT     ((DVBS_SCAN_MAPS_CMD_T)8)
#define DVBS_SCAN_MAPS_CMD_GET_TP_INFO   ((DVBS_SCAN_MAPS_CMD_T)24)
#define DVBS_SCAN_MAPS_CMD_GET_SAT_INFO  ((DVBS_SCAN_MAPS_CMD_T)27)
#define DVBS_SCAN_MAPS_CMD_GET_SVC_INFO  ((DVBS_SCAN_MAPS_CMD_T)66)
/* Records of the single-satellite configuration (SB_DVBS_SAT_TP_REC_T, SB_DVBS_SAT_TP_SHORT_T). */
#define DVBS_SCAN_MAPS_CMD_SAT_TP_REC    ((DVBS_SCAN_MAPS_CMD_T)45)
#define DVBS_SCAN_MAPS_CMD_SAT_TP_SHORT  ((DVBS_SCAN_MAPS_CMD_T)56)

/* Same arguments as every builder's scan-maps function. */
typedef int32_t (*x_sb_dvbs_scan_maps_fct)(DVBS_SCAN_MAPS_CMD_T e_cmd, char* ps_country,
                                           void* pv_input, void* pv_output,
                                           uint32_t* pz_output_len, void* pv_tag);

/* Polarisations as the builder counts them. */
#define SB_DVBS_POL_H ((uint32_t)1)
#define SB_DVBS_POL_V ((uint32_t)2)

/* LNB presets of the satellite record (the builder's two LNB kinds). */
#define SB_DVBS_LNB_TYPE_SINGLE     ((uint32_t)1)
#define SB_DVBS_LNB_TYPE_UNIVERSAL  ((uint32_t)2)

#define SB_DVBS_NAME_LEN 64

/* Input of DVBS_SCAN_MAPS_CMD_QUERY_SAT: a satellite the builder asks about. */
#define SB_DVBS_QUERY_SAT_NAME_SIZE 68
typedef struct {
    uint16_t aui2_value[3];                       /* 0, 2, 4 */
    uint8_t  aui1_reserved[2];                    /* 6 */
    char     ac_name[SB_DVBS_QUERY_SAT_NAME_SIZE]; /* 8: NUL-terminated within the field */
    uint32_t ui4_value_76;                        /* 76 */
    uint32_t ui4_value_80;                        /* 80 */
} SB_DVBS_QUERY_SAT_T;
X_MW_CHECK_SIZE(SB_DVBS_QUERY_SAT_T, 84);
X_MW_CHECK_OFFSET(SB_DVBS_QUERY_SAT_T, aui2_value, 0);
X_MW_CHECK_OFFSET(SB_DVBS_QUERY_SAT_T, ac_name, 8);
X_MW_CHECK_OFFSET(SB_DVBS_QUERY_SAT_T, ui4_value_76, 76);
X_MW_CHECK_OFFSET(SB_DVBS_QUERY_SAT_T, ui4_value_80, 80);

/* Output of DVBS_SCAN_MAPS_CMD_GET_TP_INFO: one transponder. */
typedef struct {
    uint32_t ui4_freq;      /* 0: MHz */
    uint32_t e_pol;         /* 4: SB_DVBS_POL_* */
    uint32_t ui4_sym_rate;  /* 8: kBd */
} SB_DVBS_TP_INFO_T;
X_MW_CHECK_SIZE(SB_DVBS_TP_INFO_T, 12);
X_MW_CHECK_OFFSET(SB_DVBS_TP_INFO_T, e_pol, 4);
X_MW_CHECK_OFFSET(SB_DVBS_TP_INFO_T, ui4_sym_rate, 8);

/* Output of DVBS_SCAN_MAPS_CMD_GET_SAT_INFO: one satellite with its LNB. The unnamed words
 * are carried between the application and the builder unchanged. */
typedef struct {
    char     ac_name[SB_DVBS_NAME_LEN + 1];  /* 0: at most 64 characters, then a NUL */
    uint8_t  ui1_reserved0;                  /* 65 */
    int16_t  i2_orbit;                       /* 66: tenths of a degree, east positive */
    uint32_t e_lnb_type;                     /* 68: SB_DVBS_LNB_TYPE_* */
    uint16_t ui2_lnb_low_freq;               /* 72: MHz */
    uint16_t ui2_lnb_high_freq;              /* 74: MHz, 0 for a single-band LNB */
    uint32_t ui4_lnb_switch_freq;            /* 76: MHz, 0 for a single-band LNB */
    uint32_t ui4_value_80;                   /* 80 */
    uint32_t ui4_value_84;                   /* 84 */
    uint32_t ui4_freq;                       /* 88: home transponder, MHz */
    uint8_t  aui1_reserved1[8];              /* 92 */
    uint16_t ui2_value_100;                  /* 100 */
    uint16_t ui2_ts_id;                      /* 102 */
    uint16_t ui2_value_104;                  /* 104 */
    uint16_t ui2_value_106;                  /* 106 */
    uint8_t  aui1_reserved2[4];              /* 108 */
} SB_DVBS_SAT_INFO_T;
X_MW_CHECK_SIZE(SB_DVBS_SAT_INFO_T, 112);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, i2_orbit, 66);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, e_lnb_type, 68);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_lnb_low_freq, 72);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_lnb_high_freq, 74);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui4_lnb_switch_freq, 76);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui4_value_80, 80);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui4_value_84, 84);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui4_freq, 88);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_value_100, 100);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_ts_id, 102);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_value_104, 104);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_INFO_T, ui2_value_106, 106);

/* Output of DVBS_SCAN_MAPS_CMD_GET_SVC_INFO: one service. */
typedef struct {
    uint16_t ui2_rank;                       /* 0 */
    uint8_t  ui1_valid;                      /* 2: 1 once answered */
    uint8_t  ui1_reserved0;                  /* 3 */
    uint16_t ui2_vtul_svc_id;                /* 4 */
    uint8_t  aui1_reserved1[8];              /* 6 */
    char     ac_name[SB_DVBS_NAME_LEN + 1];  /* 14: at most 64 characters, then a NUL */
    uint8_t  ui1_reserved2;                  /* 79 */
} SB_DVBS_SVC_INFO_T;
X_MW_CHECK_SIZE(SB_DVBS_SVC_INFO_T, 80);
X_MW_CHECK_OFFSET(SB_DVBS_SVC_INFO_T, ui1_valid, 2);
X_MW_CHECK_OFFSET(SB_DVBS_SVC_INFO_T, ui2_vtul_svc_id, 4);
X_MW_CHECK_OFFSET(SB_DVBS_SVC_INFO_T, ac_name, 14);

/* Output of DVBS_SCAN_MAPS_CMD_SAT_TP_REC: a transponder of the scanned satellite. */
typedef struct {
    uint16_t ui2_value_0;         /* 0 */
    uint8_t  aui1_reserved0[66];  /* 2 */
    uint16_t ui2_value_68;        /* 68 */
    uint16_t ui2_value_70;        /* 70 */
    uint32_t ui4_freq;            /* 72 */
    uint32_t ui4_sym_rate;        /* 76 */
    uint32_t e_pol;               /* 80 */
    uint8_t  aui1_reserved1[12];  /* 84 */
} SB_DVBS_SAT_TP_REC_T;
X_MW_CHECK_SIZE(SB_DVBS_SAT_TP_REC_T, 96);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_REC_T, ui2_value_68, 68);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_REC_T, ui2_value_70, 70);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_REC_T, ui4_freq, 72);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_REC_T, ui4_sym_rate, 76);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_REC_T, e_pol, 80);

/* Output of DVBS_SCAN_MAPS_CMD_SAT_TP_SHORT: the same transponder, short form. */
typedef struct {
    uint16_t ui2_reserved;   /* 0 */
    uint16_t ui2_value_2;    /* 2 */
    uint16_t ui2_value_4;    /* 4 */
    uint16_t ui2_value_6;    /* 6 */
    uint32_t ui4_freq;       /* 8 */
    uint32_t ui4_sym_rate;   /* 12 */
    uint32_t e_pol;          /* 16 */
} SB_DVBS_SAT_TP_SHORT_T;
X_MW_CHECK_SIZE(SB_DVBS_SAT_TP_SHORT_T, 20);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, ui2_value_2, 2);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, ui2_value_4, 4);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, ui2_value_6, 6);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, ui4_freq, 8);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, ui4_sym_rate, 12);
X_MW_CHECK_OFFSET(SB_DVBS_SAT_TP_SHORT_T, e_pol, 16);

/* Service-update notification: services added and deleted per kind. */
typedef struct _SB_DVBS_SVC_UPDATE_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint32_t ui4_tv_add;     /* 0 */
    uint32_t ui4_tv_del;     /* 4 */
    uint32_t ui4_radio_add;  /* 8 */
    uint32_t ui4_radio_del;  /* 12 */
    uint32_t ui4_app_add;    /* 16 */
    uint32_t ui4_app_del;    /* 20 */
} SB_DVBS_SVC_UPDATE_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_SVC_UPDATE_NFY_DATA_T, 24);
X_MW_CHECK_OFFSET(SB_DVBS_SVC_UPDATE_NFY_DATA_T, ui4_radio_add, 8);
X_MW_CHECK_OFFSET(SB_DVBS_SVC_UPDATE_NFY_DATA_T, ui4_app_del, 20);

/* Satellite-name notification: the orbit slot found, and for the detections the name and
 * the signal level. */
#define SB_SAT_NAME_NFY_NAME_SIZE 70
typedef struct _SB_SAT_NAME_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_sat_id;                         /* 0 */
    uint16_t ui2_sat_rec_id;                     /* 2 */
    int16_t  i2_orbit;                           /* 4: tenths of a degree, east positive */
    char     ac_sat_name[SB_SAT_NAME_NFY_NAME_SIZE]; /* 6: NUL-terminated within the field */
    uint16_t ui2_signal_level;                   /* 76 */
} SB_SAT_NAME_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_SAT_NAME_NFY_DATA_T, 78);
X_MW_CHECK_OFFSET(SB_SAT_NAME_NFY_DATA_T, ui2_sat_rec_id, 2);
X_MW_CHECK_OFFSET(SB_SAT_NAME_NFY_DATA_T, i2_orbit, 4);
X_MW_CHECK_OFFSET(SB_SAT_NAME_NFY_DATA_T, ac_sat_name, 6);
X_MW_CHECK_OFFSET(SB_SAT_NAME_NFY_DATA_T, ui2_signal_level, 76);

/* TKGS category list: a count, then up to 30 names of 130 bytes each. */
#define DVBS_TKGS_CATEGORY_MAX       30
#define DVBS_TKGS_CATEGORY_NAME_SIZE 130
typedef struct _DVBS_TKGS_CATEGORY_LIST {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint16_t ui2_num;                       /* 0 */
    uint8_t  aui1_reserved[2];              /* 2 */
    char     aac_name[DVBS_TKGS_CATEGORY_MAX][DVBS_TKGS_CATEGORY_NAME_SIZE]; /* 4 */
} DVBS_TKGS_CATEGORY_LIST_T;
X_MW_CHECK_SIZE(DVBS_TKGS_CATEGORY_LIST_T, 4 + 30 * 130);
X_MW_CHECK_OFFSET(DVBS_TKGS_CATEGORY_LIST_T, aac_name, 4);

/* Notification functions the satellite block carries (offsets in SB_DVBS_SCAN_PARAMS). */
typedef void (*x_sb_dvbs_svc_update_nfy_fct)(struct _SB_DVBS_SVC_UPDATE_NFY_DATA* pt_nfy_data,
                                             void* pv_nfy_tag);
typedef void (*x_sb_sat_name_nfy_fct)(struct _SB_SAT_NAME_NFY_DATA* pt_nfy_data, void* pv_nfy_tag);
typedef void (*x_sb_svcnum_details_nfy_fct)(uint16_t ui2_tv, uint16_t ui2_radio, uint16_t ui2_app,
                                            void* pv_nfy_tag);
typedef void (*x_sb_dvbs_category_nfy_fct)(struct _DVBS_TKGS_CATEGORY_LIST* pt_nfy_data,
                                           void* pv_nfy_tag);
/* The satellite extensions' table and information notifications; each extension gives its
 * record's layout. */
typedef void (*x_sb_dvbs_built_nfy_fct)(void* pt_nfy_data, void* pv_nfy_tag);

/* Fastscan operator selection, copied into the block as it is. */
#define SB_DVBS_FST_NAME_SIZE 64
typedef struct {
    uint16_t ui2_nw_id;                          /* 0 */
    uint8_t  ui1_sub_list_id;                    /* 2 */
    uint8_t  ui1_reserved;                       /* 3 */
    uint16_t ui2_fst_pid;                        /* 4 */
    uint8_t  ui1_fst_version;                    /* 6 */
    char     ac_name[SB_DVBS_FST_NAME_SIZE];     /* 7 */
    char     ac_sub_list_name[SB_DVBS_FST_NAME_SIZE]; /* 71 */
    uint8_t  ui1_deft_char_set;                  /* 135 */
} SB_DVBS_FST_OPERATOR_SEL_T;
X_MW_CHECK_SIZE(SB_DVBS_FST_OPERATOR_SEL_T, 136);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ui1_sub_list_id, 2);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ui2_fst_pid, 4);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ui1_fst_version, 6);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ac_name, 7);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ac_sub_list_name, 71);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_SEL_T, ui1_deft_char_set, 135);

/* TKGS locator: a transponder that carries the TKGS tables. */
typedef struct {
    uint16_t ui2_pid;       /* 0 */
    uint8_t  aui1_zero[2];  /* 2 */
    uint32_t ui4_freq;      /* 4 */
    uint32_t e_pol;         /* 8 */
    uint32_t ui4_sym_rate;  /* 12 */
} SB_DVBS_TKGS_LOCATOR_T;
X_MW_CHECK_SIZE(SB_DVBS_TKGS_LOCATOR_T, 16);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_LOCATOR_T, ui4_freq, 4);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_LOCATOR_T, e_pol, 8);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_LOCATOR_T, ui4_sym_rate, 12);

X_MW_EXTERN_C_END

#endif /* X_SB_DVBS_H */
