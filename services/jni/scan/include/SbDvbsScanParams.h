/*
 * The satellite builder's scan-parameter block (x_sb_start_scan's pv_scan_data for
 * "sb_dvbs"). A DVB-S configuration fills it; the satellite extensions then write their
 * settings and notification functions into it before the scan starts. The builder reads
 * it at these offsets, so each one is checked.
 */
#ifndef SB_DVBS_SCAN_PARAMS_H
#define SB_DVBS_SCAN_PARAMS_H

#include "x_sb_dvbs.h"

X_MW_EXTERN_C_BEGIN

/* Scan types the configuration knows by name; the builder knows others. */
#define SB_DVBS_SCAN_TYPE_NETWORK    ((uint32_t)3)
#define SB_DVBS_SCAN_TYPE_SINGLE_TP  ((uint32_t)4)

/* Bits of t_eng_cfg_flag. */
#define SB_DVBS_CFG_SVC_TYPE_TV      ((uint32_t)0x8)
#define SB_DVBS_CFG_CHANNEL_FREE     ((uint32_t)0x10)
#define SB_DVBS_CFG_CHANNEL_ALL      ((uint32_t)0x20)
#define SB_DVBS_CFG_CHANNEL_SCRAMBLED ((uint32_t)0x40)
#define SB_DVBS_CFG_SVC_TYPE_RADIO   ((uint32_t)0x40000)
#define SB_DVBS_CFG_HD_MODE          ((uint32_t)0x80000)

#define SB_DVBS_ASSO_SAT_MAX       15
#define SB_DVBS_SVL_NAME_SIZE      32
#define SB_DVBS_HIDDEN_LOCATOR_MAX 20
#define SB_DVBS_VISIBLE_LOCATOR_MAX 5

typedef struct _SB_DVBS_SCAN_PARAMS {  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the middleware's own tag
    char     t_country_code[4];       /* 0: three letters and a NUL */
    char     t_ui_lang[4];            /* 4: three letters and a NUL */
    uint32_t ui4_operator;            /* 8: also the region channel list's selector */
    uint32_t e_scan_type;             /* 12: SB_DVBS_SCAN_TYPE_* and the builder's others */
    uint16_t ui2_sat_id;              /* 16 */
    uint16_t ui2_sat_rec_id;          /* 18 */
    SB_DVBS_FST_OPERATOR_SEL_T t_fst_operator;  /* 20: Fastscan's selected operator */
    uint8_t  aui1_reserved0[4];       /* 156 */
    union {
        uint16_t ui2_nw_id;           /* 160: 0xFFFF, HD+ blind scan continues */
        uint8_t  b_customized_lnb;    /* 160: satellite search */
    } u_160;
    uint8_t  aui1_reserved1[2];       /* 162 */
    uint32_t ui4_freq;                /* 164: manual transponder, MHz */
    uint32_t e_pol;                   /* 168: SB_DVBS_POL_* */
    uint32_t ui4_sym_rate;            /* 172: kBd */
    uint16_t ui2_asso_sat_num;        /* 176 */
    uint16_t aui2_asso_sat_rec_id[SB_DVBS_ASSO_SAT_MAX];  /* 178 */
    uint16_t ui2_bat_id;              /* 208 */
    char     s_svl_name[SB_DVBS_SVL_NAME_SIZE];  /* 210: preferred or user-selected list */
    uint8_t  ui1_bat_version;         /* 242 */
    uint8_t  ui1_nit_version;         /* 243 */
    uint8_t  ui1_tkgs_version;        /* 244: also the HD+ service guide's version */
    uint8_t  ui1_tkgs_mode;           /* 245 */
    uint8_t  aui1_reserved2[10];      /* 246 */
    SB_DVBS_TKGS_LOCATOR_T at_hidden_locator[SB_DVBS_HIDDEN_LOCATOR_MAX];    /* 256 */
    SB_DVBS_TKGS_LOCATOR_T at_visible_locator[SB_DVBS_VISIBLE_LOCATOR_MAX];  /* 576 */
    uint32_t t_eng_cfg_flag;          /* 656: SB_DVBS_CFG_* */
    x_sb_dvbs_svc_update_nfy_fct pf_svc_update_nfy;  /* 660 */
    void*    pv_svc_update_nfy_tag;   /* 664 */
    uint8_t  aui1_reserved3[8];       /* 668 */
    x_sb_sat_name_nfy_fct pf_sat_name_nfy;  /* 676: orbit slot, LNB and satellite detection */
    void*    pv_sat_name_nfy_tag;     /* 680 */
    uint8_t  aui1_reserved4[8];       /* 684 */
    x_sb_dvbs_built_nfy_fct pf_mdu_nfy;       /* 692 */
    void*    pv_mdu_nfy_tag;          /* 696 */
    x_sb_dvbs_built_nfy_fct pf_get_info_nfy;  /* 700: home transponder, region lists */
    void*    pv_get_info_nfy_tag;     /* 704 */
    x_sb_dvbs_built_nfy_fct pf_bat_built_nfy; /* 708 */
    void*    pv_bat_built_nfy_tag;    /* 712 */
    x_sb_dvbs_built_nfy_fct pf_nit_built_nfy; /* 716 */
    void*    pv_nit_built_nfy_tag;    /* 720 */
    x_sb_dvbs_built_nfy_fct pf_fst_built_nfy; /* 724 */
    void*    pv_fst_built_nfy_tag;    /* 728 */
    x_sb_dvbs_built_nfy_fct pf_tkgs_built_nfy; /* 732 */
    void*    pv_tkgs_built_nfy_tag;   /* 736 */
    x_sb_dvbs_built_nfy_fct pf_sgt_built_nfy;  /* 740: HD+ service guide */
    void*    pv_sgt_built_nfy_tag;    /* 744 */
    x_sb_svcnum_details_nfy_fct pf_svcnum_details_nfy;  /* 748 */
    void*    pv_svcnum_details_nfy_tag;  /* 752 */
    x_sb_dvbs_category_nfy_fct pf_category_nfy;  /* 756 */
    void*    pv_category_nfy_tag;     /* 760 */
    uint8_t  b_svc_update;            /* 764 */
    uint8_t  aui1_reserved5[3];       /* 765 */
    uint32_t e_svc_update_type;       /* 768: 1 or 2 when b_svc_update */
    uint8_t  b_get_info;              /* 772: ask for lists / home transponder; TKGS: no preferred list */
    uint8_t  b_mdu;                   /* 773 */
    uint8_t  b_sat_name;              /* 774: LNB or satellite detection */
    uint8_t  aui1_reserved6[5];       /* 775 */
} SB_DVBS_SCAN_PARAMS;

#define SB_DVBS_CHECK_OFFSET(field, off) X_MW_CHECK_OFFSET(SB_DVBS_SCAN_PARAMS, field, off)
X_MW_CHECK_SIZE(SB_DVBS_SCAN_PARAMS, 780);
SB_DVBS_CHECK_OFFSET(t_country_code, 0);
SB_DVBS_CHECK_OFFSET(t_ui_lang, 4);
SB_DVBS_CHECK_OFFSET(ui4_operator, 8);
SB_DVBS_CHECK_OFFSET(e_scan_type, 12);
SB_DVBS_CHECK_OFFSET(ui2_sat_id, 16);
SB_DVBS_CHECK_OFFSET(ui2_sat_rec_id, 18);
SB_DVBS_CHECK_OFFSET(t_fst_operator, 20);
SB_DVBS_CHECK_OFFSET(u_160.ui2_nw_id, 160);
SB_DVBS_CHECK_OFFSET(u_160.b_customized_lnb, 160);
SB_DVBS_CHECK_OFFSET(ui4_freq, 164);
SB_DVBS_CHECK_OFFSET(e_pol, 168);
SB_DVBS_CHECK_OFFSET(ui4_sym_rate, 172);
SB_DVBS_CHECK_OFFSET(ui2_asso_sat_num, 176);
SB_DVBS_CHECK_OFFSET(aui2_asso_sat_rec_id, 178);
SB_DVBS_CHECK_OFFSET(ui2_bat_id, 208);
SB_DVBS_CHECK_OFFSET(s_svl_name, 210);
SB_DVBS_CHECK_OFFSET(ui1_bat_version, 242);
SB_DVBS_CHECK_OFFSET(ui1_nit_version, 243);
SB_DVBS_CHECK_OFFSET(ui1_tkgs_version, 244);
SB_DVBS_CHECK_OFFSET(ui1_tkgs_mode, 245);
SB_DVBS_CHECK_OFFSET(at_hidden_locator, 256);
SB_DVBS_CHECK_OFFSET(at_visible_locator, 576);
SB_DVBS_CHECK_OFFSET(t_eng_cfg_flag, 656);
SB_DVBS_CHECK_OFFSET(pf_svc_update_nfy, 660);
SB_DVBS_CHECK_OFFSET(pv_svc_update_nfy_tag, 664);
SB_DVBS_CHECK_OFFSET(pf_sat_name_nfy, 676);
SB_DVBS_CHECK_OFFSET(pv_sat_name_nfy_tag, 680);
SB_DVBS_CHECK_OFFSET(pf_mdu_nfy, 692);
SB_DVBS_CHECK_OFFSET(pv_mdu_nfy_tag, 696);
SB_DVBS_CHECK_OFFSET(pf_get_info_nfy, 700);
SB_DVBS_CHECK_OFFSET(pv_get_info_nfy_tag, 704);
SB_DVBS_CHECK_OFFSET(pf_bat_built_nfy, 708);
SB_DVBS_CHECK_OFFSET(pv_bat_built_nfy_tag, 712);
SB_DVBS_CHECK_OFFSET(pf_nit_built_nfy, 716);
SB_DVBS_CHECK_OFFSET(pv_nit_built_nfy_tag, 720);
SB_DVBS_CHECK_OFFSET(pf_fst_built_nfy, 724);
SB_DVBS_CHECK_OFFSET(pv_fst_built_nfy_tag, 728);
SB_DVBS_CHECK_OFFSET(pf_tkgs_built_nfy, 732);
SB_DVBS_CHECK_OFFSET(pv_tkgs_built_nfy_tag, 736);
SB_DVBS_CHECK_OFFSET(pf_sgt_built_nfy, 740);
SB_DVBS_CHECK_OFFSET(pv_sgt_built_nfy_tag, 744);
SB_DVBS_CHECK_OFFSET(pf_svcnum_details_nfy, 748);
SB_DVBS_CHECK_OFFSET(pv_svcnum_details_nfy_tag, 752);
SB_DVBS_CHECK_OFFSET(pf_category_nfy, 756);
SB_DVBS_CHECK_OFFSET(pv_category_nfy_tag, 760);
SB_DVBS_CHECK_OFFSET(b_svc_update, 764);
SB_DVBS_CHECK_OFFSET(e_svc_update_type, 768);
SB_DVBS_CHECK_OFFSET(b_get_info, 772);
SB_DVBS_CHECK_OFFSET(b_mdu, 773);
SB_DVBS_CHECK_OFFSET(b_sat_name, 774);

X_MW_EXTERN_C_END

#endif /* SB_DVBS_SCAN_PARAMS_H */
