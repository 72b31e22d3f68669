/*
 * The middleware's scan builder: open a builder engine by name, register the
 * standard's scan-maps function, start and cancel scans, get and set keys.
 */
#ifndef X_SB_H
#define X_SB_H

#include "x_mw_common.h"

X_MW_EXTERN_C_BEGIN

typedef uint32_t SB_COND_T;
typedef uint32_t SCAN_MAPS_CMD_T;
typedef uint32_t SB_KEY_TYPE_T;
typedef void*    SB_KEY_INFO_T; /* a pointer, or a small index passed as one */

/* Notify reasons of a running scan (the `ui4_nfy_reason` of x_sb_scan_nfy_fct). */
#define SB_REASON_COMPLETE       ((uint32_t)1)
#define SB_REASON_PROGRESS       ((uint32_t)2)   /* data: done channels (low 16), transponders (bits 16-30) */
#define SB_REASON_CANCEL         ((uint32_t)4)
#define SB_REASON_ABORT          ((uint32_t)8)
#define SB_REASON_FREQ_REPORT    ((uint32_t)16)  /* data: frequency */
#define SB_REASON_PROGRESS_ONLY  ((uint32_t)32)  /* data: done channels (low 16), builder-specific high half */
#define SB_REASON_STOPPED        ((uint32_t)512)

/* Builder condition callback given to x_sb_open_builder. */
typedef void (*x_sb_nfy_fct)(HANDLE_T h_builder, SB_COND_T e_builder_cond, void* pv_tag);
/* Scan notification callback given to x_sb_start_scan. */
typedef void (*x_sb_scan_nfy_fct)(HANDLE_T h_builder, uint32_t ui4_nfy_reason, uint32_t ui4_nfy_data,
                                  void* pv_tag);
/*
 * Scan-maps function: the builder asks the application a question (`e_cmd`) and the
 * answer goes into pv_output; *pz_output_len is the buffer size in, bytes written out.
 * Cable builders call theirs with two more arguments (x_sb_dvbc_scan_maps_fct).
 */
typedef int32_t (*x_sb_scan_maps_fct)(SCAN_MAPS_CMD_T e_cmd, char* ps_country, void* pv_input,
                                      void* pv_output, uint32_t* pz_output_len, void* pv_tag);

/* Open data of every builder (x_sb_open_builder's pv_open_data). */
typedef struct {
    uint32_t    ui4_svl_id;       /* 0 */
    const char* ps_svl_name;      /* 4: "fs_Svl_<n>", copied by the builder */
    const char* ps_file_name;     /* 8: "/dev" */
    const char* ps_tuner_name;    /* 12 */
    uint8_t     ui1_flags;        /* 16: 1 */
    uint8_t     aui1_reserved[3]; /* 17 */
    HANDLE_T    h_data_source;    /* 20: the tuner pipeline */
} SB_OPEN_DATA_T;
X_MW_CHECK_SIZE(SB_OPEN_DATA_T, 24);
X_MW_CHECK_OFFSET(SB_OPEN_DATA_T, ps_svl_name, 4);
X_MW_CHECK_OFFSET(SB_OPEN_DATA_T, ps_file_name, 8);
X_MW_CHECK_OFFSET(SB_OPEN_DATA_T, ps_tuner_name, 12);
X_MW_CHECK_OFFSET(SB_OPEN_DATA_T, ui1_flags, 16);
X_MW_CHECK_OFFSET(SB_OPEN_DATA_T, h_data_source, 20);

/* The satellite builder takes 24 more bytes. */
typedef struct {
    SB_OPEN_DATA_T t_common;
    uint8_t        aui1_sat_reserved[24];
} SB_DVBS_OPEN_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_OPEN_DATA_T, 48);

int32_t x_sb_open_builder(const char* ps_builder_name, void* pv_open_data, void* pv_tag,
                          x_sb_nfy_fct pf_nfy, HANDLE_T* ph_builder, SB_COND_T* pe_builder_cond);
int32_t x_sb_reg_scan_map(const char* ps_builder_name, x_sb_scan_maps_fct pf_scan_maps,
                          void* pv_tag);
int32_t x_sb_start_scan(HANDLE_T h_builder, void* pv_scan_data, void* pv_tag,
                        x_sb_scan_nfy_fct pf_nfy, SB_COND_T* pe_builder_cond);
int32_t x_sb_cancel_scan(HANDLE_T h_builder);
int32_t x_sb_close_builder(HANDLE_T h_builder);

/* Keys: *pz_key_data_len is the buffer size in, bytes written out. */
int32_t x_sb_get(HANDLE_T h_builder, SB_KEY_TYPE_T e_key_type, SB_KEY_INFO_T pv_key_info,
                 uint32_t* pz_key_data_len, void* pv_key_data);
/* Keys whose value is a small number take it in pv_key_data itself, by value. */
int32_t x_sb_set(HANDLE_T h_builder, SB_KEY_TYPE_T e_key_type, SB_KEY_INFO_T pv_key_info,
                 uint32_t z_key_data_len, void* pv_key_data);

/* Key values of the terrestrial builders. */
#define SB_KEY_TYPE_FAV_NWL_REC_ID          ((SB_KEY_TYPE_T)19)
#define SB_KEY_TYPE_LCN_CONFLICT_NUM        ((SB_KEY_TYPE_T)21)
#define SB_KEY_TYPE_LCN_CONFLICT_GROUP      ((SB_KEY_TYPE_T)22)
#define SB_KEY_TYPE_LCN_CONFLICT_CHANNEL    ((SB_KEY_TYPE_T)23)
#define SB_KEY_TYPE_LCNV2_CHLIST_NUM        ((SB_KEY_TYPE_T)26)
#define SB_KEY_TYPE_LCNV2_CHLIST_INFO       ((SB_KEY_TYPE_T)27)
#define SB_KEY_TYPE_SET_LCNV2_CHLIST        ((SB_KEY_TYPE_T)28)
#define SB_KEY_TYPE_SET_REGION              ((SB_KEY_TYPE_T)30)
#define SB_KEY_TYPE_REGION_NUM              ((SB_KEY_TYPE_T)31)
#define SB_KEY_TYPE_REGION_TABLE            ((SB_KEY_TYPE_T)32)
#define SB_KEY_TYPE_QUERY_PREFERED_REGION   ((SB_KEY_TYPE_T)33)
#define SB_KEY_TYPE_NWL_HANDLE              ((SB_KEY_TYPE_T)76)
#define SB_KEY_TYPE_SELECTED_TARGET_REGION  ((SB_KEY_TYPE_T)77)
#define SB_KEY_TYPE_SELECTED_LCNV2_CHLIST   ((SB_KEY_TYPE_T)78)
#define SB_KEY_TYPE_SVC_LCN_NUM             ((SB_KEY_TYPE_T)79)
#define SB_KEY_TYPE_LCN_GARBAGE_INFO        ((SB_KEY_TYPE_T)80)
#define SB_KEY_TYPE_SET_LCN_GARBAGE_INFO    ((SB_KEY_TYPE_T)81)
#define SB_KEY_TYPE_SVC_LCN_INFO            ((SB_KEY_TYPE_T)82)
#define SB_KEY_TYPE_SET_SVC_LCN_INFO        ((SB_KEY_TYPE_T)83)
#define SB_KEY_TYPE_NAME_SORTING_NUM        ((SB_KEY_TYPE_T)84)
#define SB_KEY_TYPE_NAME_SORTING_INFO       ((SB_KEY_TYPE_T)85)

X_MW_EXTERN_C_END

#endif /* X_SB_H */
