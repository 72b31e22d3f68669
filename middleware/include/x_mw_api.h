/* Everything the scan library uses of the middleware. */
#ifndef X_MW_API_H
#define X_MW_API_H

#include "x_handle.h"
#include "x_lists.h"
#include "x_mem.h"
#include "x_orvella_filter.h"
#include "x_sb.h"
#include "x_sb_atsc.h"
#include "x_sb_cqam.h"
#include "x_sb_dtmb.h"
#include "x_sb_dvb.h"
#include "x_sb_dvbc.h"
#include "x_sb_isdb.h"
#include "x_sb_dvbs.h"

#endif /* X_MW_API_H */
