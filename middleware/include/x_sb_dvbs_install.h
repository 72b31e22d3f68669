/*
 * Records of the satellite builder's installation notifications: what it detected on the
 * dish (LNB inputs and satellites use the satellite-name record of x_sb_dvbs.h), the
 * distribution system of a multi-dwelling unit, the versions of the network and bouquet
 * tables it read, and its information report (home transponder or regional channel
 * lists). The block's functions at 692, 700, 708 and 716 receive them.
 */
#ifndef X_SB_DVBS_INSTALL_H
#define X_SB_DVBS_INSTALL_H

#include "x_sb_dvbs.h"

X_MW_EXTERN_C_BEGIN

/* MDU detection (function at 692). */
typedef struct {
    uint32_t ui4_mdu_type;      /* 0: the builder's distribution-system code */
    uint16_t ui2_signal_level;  /* 4 */
    uint8_t  aui1_reserved[2];  /* 6 */
} SB_DVBS_MDU_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_MDU_NFY_DATA_T, 8);
X_MW_CHECK_OFFSET(SB_DVBS_MDU_NFY_DATA_T, ui2_signal_level, 4);

/* Network information table built (function at 716). */
typedef struct {
    uint8_t ui1_nit_version;    /* 0 */
    uint8_t aui1_reserved[3];   /* 1 */
} SB_DVBS_NIT_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_NIT_NFY_DATA_T, 4);

/* Bouquet association table built (function at 708). */
typedef struct {
    uint16_t ui2_bat_id;        /* 0 */
    uint8_t  ui1_bat_version;   /* 2 */
    uint8_t  ui1_reserved;      /* 3 */
} SB_DVBS_BAT_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_BAT_NFY_DATA_T, 4);
X_MW_CHECK_OFFSET(SB_DVBS_BAT_NFY_DATA_T, ui1_bat_version, 2);

/* One regional channel list the operator offers. */
#define SB_DVBS_REGION_LIST_NAME_SIZE 32
typedef struct {
    uint16_t ui2_rec_id;                            /* 0 */
    char     ac_name[SB_DVBS_REGION_LIST_NAME_SIZE]; /* 2: NUL-terminated within the field */
} SB_DVBS_REGION_LIST_ENTRY_T;
X_MW_CHECK_SIZE(SB_DVBS_REGION_LIST_ENTRY_T, 34);
X_MW_CHECK_OFFSET(SB_DVBS_REGION_LIST_ENTRY_T, ac_name, 2);

/* The home transponder found: the record it belongs to and three values of the builder's. */
typedef struct {
    uint16_t ui2_rec_id_0;      /* 0 */
    uint16_t ui2_rec_id_1;      /* 2 */
    uint8_t  aui1_reserved[4];  /* 4 */
    uint32_t ui4_tp_value_1;    /* 8 */
    uint32_t ui4_tp_value_2;    /* 12 */
    uint32_t ui4_tp_value_3;    /* 16 */
} SB_DVBS_HTP_INFO_T;
X_MW_CHECK_SIZE(SB_DVBS_HTP_INFO_T, 20);
X_MW_CHECK_OFFSET(SB_DVBS_HTP_INFO_T, ui2_rec_id_1, 2);
X_MW_CHECK_OFFSET(SB_DVBS_HTP_INFO_T, ui4_tp_value_1, 8);
X_MW_CHECK_OFFSET(SB_DVBS_HTP_INFO_T, ui4_tp_value_2, 12);
X_MW_CHECK_OFFSET(SB_DVBS_HTP_INFO_T, ui4_tp_value_3, 16);

/*
 * Information report (function at 700). Without SB_DVBS_INFO_FLAG_LIST it reports the home
 * transponder (only its first 20 bytes are read then); with it, the regional channel
 * lists, as many as the record has room for.
 */
#define SB_DVBS_INFO_FLAG_LIST ((uint8_t)0x10)
#define SB_DVBS_REGION_LIST_MAX 64
typedef struct {
    SB_DVBS_HTP_INFO_T t_htp;    /* 0 */
    uint8_t  ui1_flags;          /* 20: SB_DVBS_INFO_FLAG_* */
    uint8_t  aui1_reserved1[79]; /* 21 */
    uint16_t ui2_list_num;       /* 100 */
    SB_DVBS_REGION_LIST_ENTRY_T at_list[SB_DVBS_REGION_LIST_MAX]; /* 102 */
    uint8_t  aui1_reserved2[2];  /* 2278 */
} SB_DVBS_GET_INFO_NFY_DATA_T;
X_MW_CHECK_SIZE(SB_DVBS_GET_INFO_NFY_DATA_T, 2280);
X_MW_CHECK_OFFSET(SB_DVBS_GET_INFO_NFY_DATA_T, ui1_flags, 20);
X_MW_CHECK_OFFSET(SB_DVBS_GET_INFO_NFY_DATA_T, ui2_list_num, 100);
X_MW_CHECK_OFFSET(SB_DVBS_GET_INFO_NFY_DATA_T, at_list, 102);

/* x_sb_set key of the time zone: key info 0, a 16-bit value by address. */
#define SB_KEY_TYPE_TIME_ZONE ((SB_KEY_TYPE_T)75)

/* Selector values (block offset 8) under which the builder offers regional lists. */
#define SB_DVBS_REGION_SELECTOR_A ((uint32_t)121)
#define SB_DVBS_REGION_SELECTOR_B ((uint32_t)122)
#define SB_DVBS_REGION_SELECTOR_C ((uint32_t)32)

X_MW_EXTERN_C_END

#endif /* X_SB_DVBS_INSTALL_H */
