/*
 * Records of the satellite builder's operator services: the Fastscan (FST) tables, the
 * Turkish TKGS tables and the HD+ service guide (SGT). The builder hands each to the
 * notification function that the scan-parameter block holds for it (SB_DVBS_SCAN_PARAMS:
 * pf_fst_built_nfy, pf_tkgs_built_nfy, pf_sgt_built_nfy). The Fastscan and TKGS records
 * end one byte short of their structs' alignment: the builder's buffer is *_SIZE bytes, so
 * they are read field by field and never copied whole.
 */
#ifndef X_SB_DVBS_OPERATOR_H
#define X_SB_DVBS_OPERATOR_H

#include "x_sb_dvbs.h"

X_MW_EXTERN_C_BEGIN

/* ---- Fastscan ---------------------------------------------------------------------- */

#define SB_DVBS_FST_OPERATOR_MAX   16  /* operator entries the record has room for */
#define SB_DVBS_FST_ORBIT_MAX      16  /* orbit positions an entry has room for */
#define SB_DVBS_FST_LANG_SIZE       4  /* three letters and a NUL */
#define SB_DVBS_FST_OTT_BRAND_SIZE 32

/* Bits of SB_DVBS_FST_BUILT_NFY_DATA_T.ui4_mask. */
#define SB_DVBS_FST_HOME_TP_VALID   ((uint32_t)0x1)
#define SB_DVBS_FST_OPERATOR_VALID  ((uint32_t)0x2)
#define SB_DVBS_FST_VERSION_VALID   ((uint32_t)0x4)
#define SB_DVBS_FST_VERSION_CHANGED ((uint32_t)0x8)

/* One operator sub-list of the Fastscan tables. */
typedef struct {
    uint16_t ui2_nw_id;                               /* 0 */
    uint8_t  ui1_sub_list_id;                         /* 2 */
    uint8_t  ui1_reserved0;                           /* 3 */
    uint16_t ui2_fst_pid;                             /* 4 */
    uint8_t  ui1_fst_version;                         /* 6 */
    char     ac_name[SB_DVBS_FST_NAME_SIZE];          /* 7: NUL-terminated */
    char     ac_sub_list_name[SB_DVBS_FST_NAME_SIZE]; /* 71: NUL-terminated */
    char     ac_country_code[SB_DVBS_FST_LANG_SIZE];  /* 135 */
    char     ac_menu_lang[SB_DVBS_FST_LANG_SIZE];     /* 139 */
    char     ac_aud1_lang[SB_DVBS_FST_LANG_SIZE];     /* 143 */
    char     ac_aud2_lang[SB_DVBS_FST_LANG_SIZE];     /* 147 */
    char     ac_sbtl_lang[SB_DVBS_FST_LANG_SIZE];     /* 151 */
    uint8_t  ui1_reserved1;                           /* 155 */
    uint16_t ui2_orbit_num;                           /* 156 */
    int16_t  ai2_orbit[SB_DVBS_FST_ORBIT_MAX];        /* 158: tenths of a degree, east positive */
    uint8_t  ui1_pare_con_rate;                       /* 190 */
    uint8_t  ui1_deft_char_set;                       /* 191 */
    uint8_t  b_sbtl_enabled;                          /* 192 */
    uint8_t  b_spec_regn_setup;                       /* 193 */
    char     ac_ott_brand_id[SB_DVBS_FST_OTT_BRAND_SIZE]; /* 194: NUL-terminated */
} SB_DVBS_FST_OPERATOR_INFO_T;
X_MW_CHECK_SIZE(SB_DVBS_FST_OPERATOR_INFO_T, 226);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ui2_fst_pid, 4);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ui1_fst_version, 6);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_name, 7);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_sub_list_name, 71);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_country_code, 135);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_menu_lang, 139);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_aud1_lang, 143);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_aud2_lang, 147);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_sbtl_lang, 151);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ui2_orbit_num, 156);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ai2_orbit, 158);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ui1_pare_con_rate, 190);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ui1_deft_char_set, 191);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, b_sbtl_enabled, 192);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, b_spec_regn_setup, 193);
X_MW_CHECK_OFFSET(SB_DVBS_FST_OPERATOR_INFO_T, ac_ott_brand_id, 194);

/* What the builder found in the Fastscan tables; ui4_mask says which parts are valid. */
typedef struct _SB_DVBS_FST_BUILT_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint32_t ui4_mask;                 /* 0: SB_DVBS_FST_* */
    uint32_t ui4_freq;                 /* 4: home transponder, MHz */
    uint32_t e_pol;                    /* 8: SB_DVBS_POL_* */
    uint32_t ui4_sym_rate;             /* 12: kBd */
    uint16_t ui2_sat_id;               /* 16 */
    uint16_t ui2_sat_rec_id;           /* 18 */
    uint16_t ui2_operator_num;         /* 20 */
    SB_DVBS_FST_OPERATOR_INFO_T at_operator[SB_DVBS_FST_OPERATOR_MAX]; /* 22 */
    uint8_t  ui1_fst_version;          /* 3638 */
} SB_DVBS_FST_BUILT_NFY_DATA_T;
#define SB_DVBS_FST_BUILT_NFY_DATA_SIZE 3639
X_MW_STATIC_ASSERT(offsetof(SB_DVBS_FST_BUILT_NFY_DATA_T, ui1_fst_version) + 1 ==
                       SB_DVBS_FST_BUILT_NFY_DATA_SIZE, "SB_DVBS_FST_BUILT_NFY_DATA_T size");
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui4_freq, 4);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, e_pol, 8);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui4_sym_rate, 12);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui2_sat_id, 16);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui2_sat_rec_id, 18);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui2_operator_num, 20);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, at_operator, 22);
X_MW_CHECK_OFFSET(SB_DVBS_FST_BUILT_NFY_DATA_T, ui1_fst_version, 3638);

/* ---- TKGS -------------------------------------------------------------------------- */

#define SB_DVBS_TKGS_CATEGORY_MAX       30  /* room between the category and list counts */
#define SB_DVBS_TKGS_CATEGORY_NAME_SIZE 128
#define SB_DVBS_TKGS_SVC_LIST_MAX        9  /* room between the list count and the version */
#define SB_DVBS_TKGS_SVC_LIST_NAME_SIZE 34
/* The user message field: the text and its NUL. */
#define SB_DVBS_TKGS_USER_MSG_SIZE      1024

/* Bits of SB_DVBS_TKGS_BUILT_NFY_DATA_T.ui4_mask. */
#define SB_DVBS_TKGS_HIDDEN_LOCATOR ((uint32_t)0x1)
#define SB_DVBS_TKGS_CATEGORY       ((uint32_t)0x2)
#define SB_DVBS_TKGS_SVC_LIST       ((uint32_t)0x4)
#define SB_DVBS_TKGS_VERSION        ((uint32_t)0x8)
#define SB_DVBS_TKGS_USER_MSG       ((uint32_t)0x10)

typedef struct {
    uint16_t ui2_no;                                 /* 0 */
    char     ac_name[SB_DVBS_TKGS_CATEGORY_NAME_SIZE]; /* 2: NUL-terminated */
} SB_DVBS_TKGS_CATEGORY_T;
X_MW_CHECK_SIZE(SB_DVBS_TKGS_CATEGORY_T, 130);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_CATEGORY_T, ac_name, 2);

/* What the builder found in the TKGS tables; ui4_mask says which parts are valid. */
typedef struct _SB_DVBS_TKGS_BUILT_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint32_t ui4_mask;                                             /* 0: SB_DVBS_TKGS_* */
    uint16_t ui2_hidden_locator_num;                               /* 4 */
    uint8_t  aui1_reserved0[2];                                    /* 6 */
    SB_DVBS_TKGS_LOCATOR_T at_hidden_locator[SB_DVBS_HIDDEN_LOCATOR_MAX]; /* 8 */
    uint16_t ui2_category_num;                                     /* 328 */
    SB_DVBS_TKGS_CATEGORY_T at_category[SB_DVBS_TKGS_CATEGORY_MAX]; /* 330 */
    uint16_t ui2_svc_list_num;                                     /* 4230 */
    uint8_t  aui1_reserved1[4];                                    /* 4232 */
    char     aac_svc_list_name[SB_DVBS_TKGS_SVC_LIST_MAX][SB_DVBS_TKGS_SVC_LIST_NAME_SIZE]; /* 4236 */
    uint8_t  aui1_reserved2[32];                                   /* 4542 */
    uint8_t  ui1_tkgs_version;                                     /* 4574 */
    char     s_user_msg[SB_DVBS_TKGS_USER_MSG_SIZE];               /* 4575: NUL-terminated */
} SB_DVBS_TKGS_BUILT_NFY_DATA_T;
#define SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE (4575 + SB_DVBS_TKGS_USER_MSG_SIZE)
X_MW_STATIC_ASSERT(offsetof(SB_DVBS_TKGS_BUILT_NFY_DATA_T, s_user_msg) +
                       SB_DVBS_TKGS_USER_MSG_SIZE == SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE,
                   "SB_DVBS_TKGS_BUILT_NFY_DATA_T size");
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, ui2_hidden_locator_num, 4);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, at_hidden_locator, 8);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, ui2_category_num, 328);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, at_category, 330);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, ui2_svc_list_num, 4230);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, aac_svc_list_name, 4236);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, ui1_tkgs_version, 4574);
X_MW_CHECK_OFFSET(SB_DVBS_TKGS_BUILT_NFY_DATA_T, s_user_msg, 4575);

/* ---- HD+ service guide --------------------------------------------------------------- */

/* The service guide table the builder found. */
typedef struct _SB_DVBS_SGT_BUILT_NFY_DATA {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    uint8_t ui1_sgt_version; /* 0 */
} SB_DVBS_SGT_BUILT_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_SGT_BUILT_NFY_DATA_T, 1);

X_MW_EXTERN_C_END

#endif /* X_SB_DVBS_OPERATOR_H */
