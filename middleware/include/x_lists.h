/*
 * The middleware's channel lists: service list (SVL), transport-stream list (TSL)
 * and network list (NWL), with every-change notifications.
 */
#ifndef X_LISTS_H
#define X_LISTS_H

#include "x_mw_common.h"

X_MW_EXTERN_C_BEGIN

/* Change reasons of an every-notify. */
#define LIST_REASON_RECORD_ADD  ((uint16_t)1)
#define LIST_REASON_RECORD_DEL  ((uint16_t)2)
#define LIST_REASON_RECORD_MOD  ((uint16_t)4)

/* One change, as handed to every-notify functions (an array of them). */
typedef struct {
    uint16_t ui2_event_type;
    uint16_t ui2_event_record;
} SVL_EVERY_NTF_EVT;
X_MW_CHECK_SIZE(SVL_EVERY_NTF_EVT, 4);
X_MW_CHECK_OFFSET(SVL_EVERY_NTF_EVT, ui2_event_record, 2);
typedef SVL_EVERY_NTF_EVT TSL_EVERY_NTF_EVT;
typedef SVL_EVERY_NTF_EVT NWL_EVERY_NTF_EVT;

#define SVL_NAME_LEN 64

/* Service record. */
typedef struct {
    uint16_t ui2_svl_rec_id;     /* 0 */
    uint16_t ui2_svl_id;         /* 2 */
    uint16_t ui2_on_id;          /* 4: original network */
    uint16_t ui2_ts_id;          /* 6 */
    uint16_t ui2_svc_id;         /* 8 */
    uint16_t ui2_nw_id;          /* 10 */
    uint8_t  ui1_svc_type;       /* 12: TV, radio, data... */
    uint8_t  ui1_brdcst_type;    /* 13: DVB-T, DVB-C... */
    uint16_t ui2_lcn;            /* 14 */
    uint32_t ui4_channel_id;     /* 16 */
    uint32_t ui4_nw_mask;        /* 20: visibility and favourite flags */
    char     ac_name[SVL_NAME_LEN]; /* 24 */
    uint32_t ui4_freq;           /* 88 */
} SVL_REC_T;
X_MW_CHECK_SIZE(SVL_REC_T, 92);
X_MW_CHECK_OFFSET(SVL_REC_T, ui1_svc_type, 12);
X_MW_CHECK_OFFSET(SVL_REC_T, ui4_channel_id, 16);
X_MW_CHECK_OFFSET(SVL_REC_T, ac_name, 24);
X_MW_CHECK_OFFSET(SVL_REC_T, ui4_freq, 88);

/* Transport-stream record. */
typedef struct {
    uint16_t ui2_tsl_rec_id;     /* 0 */
    uint16_t ui2_on_id;          /* 2 */
    uint16_t ui2_ts_id;          /* 4 */
    uint16_t ui2_nwl_rec_id;     /* 6 */
    uint32_t ui4_freq;           /* 8 */
} TSL_REC_T;
X_MW_CHECK_SIZE(TSL_REC_T, 12);

/* Network record, as x_nwl_get_rec fills it (304 bytes). */
#define NWL_FLAG_FAV_CANDIDATE ((uint8_t)0x02)
#define NWL_NAME_LEN 32
typedef struct {
    uint8_t  ui1_flags;            /* 0 */
    uint8_t  aui1_reserved0[3];    /* 1 */
    uint16_t ui2_nwl_rec_id;       /* 4 */
    uint16_t ui2_nw_id;            /* 6 */
    uint16_t ui2_on_id;            /* 8 */
    uint8_t  aui1_reserved1[3];    /* 10 */
    char     ac_nw_name[NWL_NAME_LEN]; /* 13 */
    uint8_t  aui1_reserved2[259];  /* 45 */
} NWL_REC_T;
X_MW_CHECK_SIZE(NWL_REC_T, 304);
X_MW_CHECK_OFFSET(NWL_REC_T, ui2_nwl_rec_id, 4);
X_MW_CHECK_OFFSET(NWL_REC_T, ac_nw_name, 13);

/* Filters decide whether a change is notified; non-zero lets it through. */
typedef MW_BOOL (*svl_every_filter_fct)(uint16_t ui2_svl_id, uint16_t ui2_reason,
                                        SVL_REC_T* pt_new, const SVL_REC_T* pt_old);
typedef MW_BOOL (*tsl_every_filter_fct)(uint16_t ui2_tsl_id, uint16_t ui2_reason,
                                        TSL_REC_T* pt_new, const TSL_REC_T* pt_old);
typedef MW_BOOL (*nwl_every_filter_fct)(uint16_t ui2_nwl_id, uint16_t ui2_reason,
                                        NWL_REC_T* pt_new, const NWL_REC_T* pt_old);

typedef void (*svl_every_nfy_fct)(uint16_t ui2_svl_id, uint32_t ui4_nfy_count,
                                  const SVL_EVERY_NTF_EVT* pt_changes, void* pv_tag);
typedef void (*tsl_every_nfy_fct)(uint16_t ui2_tsl_id, uint32_t ui4_nfy_count,
                                  const TSL_EVERY_NTF_EVT* pt_changes, void* pv_tag);
typedef void (*nwl_every_nfy_fct)(uint16_t ui2_nwl_id, uint32_t ui4_nfy_count,
                                  const NWL_EVERY_NTF_EVT* pt_changes, void* pv_tag);

int32_t c_svl_register_every_notify(uint16_t ui2_svl_id, svl_every_filter_fct pf_filter,
                                    svl_every_nfy_fct pf_nfy, void* pv_tag, HANDLE_T* ph_nfy);
int32_t c_svl_unreg_every_notify(HANDLE_T h_nfy);
int32_t c_tsl_register_every_notify(uint16_t ui2_tsl_id, tsl_every_filter_fct pf_filter,
                                    tsl_every_nfy_fct pf_nfy, void* pv_tag, HANDLE_T* ph_nfy);
int32_t c_tsl_unreg_every_notify(HANDLE_T h_nfy);
int32_t c_nwl_register_every_notify(uint16_t ui2_nwl_id, nwl_every_filter_fct pf_filter,
                                    nwl_every_nfy_fct pf_nfy, void* pv_tag, HANDLE_T* ph_nfy);
int32_t c_nwl_unreg_every_notify(HANDLE_T h_nfy);

/* Network list access (the list's handle comes from the builder's NWL key). */
int32_t x_nwl_get_num_rec(HANDLE_T h_nwl, uint16_t* pui2_num_recs, uint32_t* pui4_ver_id);
int32_t x_nwl_get_rec(HANDLE_T h_nwl, uint16_t ui2_nwl_rec_id, NWL_REC_T* pt_nwl_rec,
                      uint32_t* pui4_ver_id);

X_MW_EXTERN_C_END

#endif /* X_LISTS_H */
