/* The registration function of every Java class of the scan package, in load order. */
#ifndef SCAN_REGISTRATIONS_H
#define SCAN_REGISTRATIONS_H

#include <jni.h>

int register_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvNameSorting(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDvbtConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDvbcConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDvbsConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanIsdbConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanAtscConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanCqamConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDtmbConfig(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanEngine(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanBouquet(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanNetwork(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanMDU(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDetectLNB(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDetectSAT(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanDetectHTP(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanAssoList(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvDvbsSatelliteConfig(JNIEnv* env);

int register_com_brinova_tv_orvella_scan_ZelTvScanFST(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanHDPlus(JNIEnv* env);
int register_com_brinova_tv_orvella_scan_ZelTvScanTKGS(JNIEnv* env);
/* {registration function, message logged when it fails}, in the order of loading. */
#define SCAN_REGISTRATIONS                                                             \
    {register_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict,                        \
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanLcnConflict registration failed"},    \
    {register_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList,                  \
     "ERROR: scan engine native ZelTvScanLcnV2ChannelList registration failed"},       \
    {register_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion,                       \
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanTargetRegion registration failed"},   \
    {register_com_brinova_tv_orvella_scan_ZelTvNameSorting,                            \
     "ERROR: ZelTvScanDvbtConfig native ZelTvNameSorting registration failed"},        \
    {register_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork,                         \
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanFavNetwork registration failed"},     \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDvbtConfig,                         \
     "ERROR: ZelTvScanDvbtConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDvbcConfig,                         \
     "ERROR: ZelTvScanDvbcConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDvbsConfig,                         \
     "ERROR: ZelTvScanDvbsConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanIsdbConfig,                         \
     "ERROR: ZelTvScanIsdbConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanAtscConfig,                         \
     "ERROR: ZelTvScanAtscConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanCqamConfig,                         \
     "ERROR: ZelTvScanCqamConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDtmbConfig,                         \
     "ERROR: ZelTvScanDtmbConfig native registration failed"},                         \
    {register_com_brinova_tv_orvella_scan_ZelTvScanEngine,                             \
     "ERROR: ZelTvScanEngine native registration failed"},                             \
    {register_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList,                       \
     "ERROR: ZelTvScanRegionCHList native registration failed"},                       \
    {register_com_brinova_tv_orvella_scan_ZelTvScanBouquet,                            \
     "ERROR: ZelTvScanBouquet native registration failed"},                            \
    {register_com_brinova_tv_orvella_scan_ZelTvScanNetwork,                            \
     "ERROR: ZelTvScanNetwork native registration failed"},                            \
    {register_com_brinova_tv_orvella_scan_ZelTvScanMDU,                                \
     "ERROR: ZelTvScanMDU native registration failed"},                                \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDetectLNB,                          \
     "ERROR: ZelTvScanDetectLNB native registration failed"},                          \
    {register_com_brinova_tv_orvella_scan_ZelTvScanFST,                                \
     "ERROR: ZelTvScanFST native registration failed"},                                \
    {register_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch,                    \
     "ERROR: ZelTvScanSatSearch native registration failed"},                          \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDetectSAT,                          \
     "ERROR: ZelTvScanDetectSatellite native registration failed"},                    \
    {register_com_brinova_tv_orvella_scan_ZelTvScanDetectHTP,                          \
     "ERROR: ZelTvScanDetectTransponder native registration failed"},                  \
    {register_com_brinova_tv_orvella_scan_ZelTvScanAssoList,                           \
     "ERROR: ZelTvScanAssociateList native registration failed"},                      \
    {register_com_brinova_tv_orvella_scan_ZelTvDvbsSatelliteConfig,                   \
     "ERROR: ZelTvDvbsSatelliteConfig native registration failed"},                    \
    {register_com_brinova_tv_orvella_scan_ZelTvScanHDPlus,                             \
     "ERROR: ZelTvScanHDPlus native registration failed"},                             \
    {register_com_brinova_tv_orvella_scan_ZelTvScanTKGS,                               \
     "ERROR: ZelTvScanTKGS native registration failed"},

#endif /* SCAN_REGISTRATIONS_H */
