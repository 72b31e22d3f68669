/*
 * The log gate: every line of the library is printed only when the level property lets
 * its level through, and then at Android priority level + 1.
 */
#ifndef BRINOVA_LOG_H
#define BRINOVA_LOG_H

#include <log/log.h>

#define SCAN_GATE_EXPORT __attribute__((visibility("default")))

#define BRINOVA_LOG_PROPERTY "vendor.zel.broadcast.log.level"
#define BRINOVA_DEFAULT_LOG_PROPERTY "vendor.zel.default.log.level"

enum {
    BRINOVA_LOG_VERBOSE = 1,
    BRINOVA_LOG_DEBUG = 2,
    BRINOVA_LOG_INFO = 3,
    BRINOVA_LOG_WARN = 4,
    BRINOVA_LOG_ERROR = 5,
};

/* The two names are the platform's log entry points that other modules link against. */
extern "C" {
/* 1 when a message of `level` is to be printed for the level property `property`, else 0. */
int __brinova_log_is_loggable(int level, const char* property);  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
/* Writes `text` to the boot-time trace marker. */
void __brinova_log_write_to_ftrace(const char* text);  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
}

/* A line exactly as given. */
#define BLOG_PRINT(level, tag, fmt, ...)                                              \
    do {                                                                              \
        if (__brinova_log_is_loggable((level), BRINOVA_LOG_PROPERTY)) {               \
            __android_log_print((level) + 1, (tag), fmt, ##__VA_ARGS__);              \
        }                                                                             \
    } while (0)

namespace android {

/*
 * Where a line or an assertion comes from: the calling file's tag and source name, and the
 * function and line of the call. Made only by SCAN_SITE, at the call site, and handed to
 * every shared helper that logs or asserts, so that a helper reports its caller's place.
 */
struct ScanSite {
    const char* tag;
    const char* source;
    const char* function;
    int line;
};

/* A lambda's function name would be "operator()": sites are taken in named functions only. */
constexpr bool scanSiteFunctionIsNamed(const char* f) {
    const char* lambda = "operator()";
    for (int i = 0; lambda[i] != '\0'; ++i) {
        if (f[i] != lambda[i]) return true;
    }
    return false;
}
template <bool Named>
constexpr const char* scanSiteFunction(const char* function) {
    static_assert(Named, "take the ScanSite in the enclosing function and pass it in");
    return function;
}

}  // namespace android

/* The caller's site; LOG_TAG and SCAN_SOURCE_NAME are defined by each per-class file only. */
#define SCAN_SITE                                                                         \
    (::android::ScanSite{LOG_TAG, SCAN_SOURCE_NAME,                                       \
                         ::android::scanSiteFunction<::android::scanSiteFunctionIsNamed(  \
                             __FUNCTION__)>(__FUNCTION__),                                \
                         __LINE__})

/* Engine and configuration form at a given site: "[function][line]..." */
#define SITE_LOG(site, level, fmt, ...) \
    BLOG_PRINT(level, (site).tag, "[%s][%d]" fmt, (site).function, (site).line, ##__VA_ARGS__)
#define SITE_LOGD(site, fmt, ...) SITE_LOG(site, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define SITE_LOGI(site, fmt, ...) SITE_LOG(site, BRINOVA_LOG_INFO, fmt, ##__VA_ARGS__)
#define SITE_LOGE(site, fmt, ...) SITE_LOG(site, BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)
/* Extension form at a given site: "[INFO ][line]{function}..." and "[ERROR][line]{function}...",
 * printed at debug level unless a level is given. */
#define SITE_XLOG(site, level, kind, fmt, ...)                                                  \
    BLOG_PRINT(level, (site).tag, "[" kind "][%d]{%s}" fmt, (site).line, (site).function, \
               ##__VA_ARGS__)
#define SITE_XLOGI(site, fmt, ...) SITE_XLOG(site, BRINOVA_LOG_DEBUG, "INFO ", fmt, ##__VA_ARGS__)
#define SITE_XLOGE(site, fmt, ...) SITE_XLOG(site, BRINOVA_LOG_DEBUG, "ERROR", fmt, ##__VA_ARGS__)
/* Configuration form for failed settings: "[source][function][line]..." */
#define SITE_FLOG(site, level, fmt, ...)                                                       \
    BLOG_PRINT(level, (site).tag, "[%s][%s][%d]" fmt, (site).source, (site).function,     \
               (site).line, ##__VA_ARGS__)
/* A line that carries only its line number: "[line]..." */
#define SITE_LINELOG(site, level, fmt, ...) \
    BLOG_PRINT(level, (site).tag, "[%d]" fmt, (site).line, ##__VA_ARGS__)
/* A line without the prefix, under a given site's tag. */
#define SITE_LOG_RAW(site, level, fmt, ...) BLOG_PRINT(level, (site).tag, fmt, ##__VA_ARGS__)

/* The same at the caller's own site. */
#define BLOGV(fmt, ...) SITE_LOG(SCAN_SITE, BRINOVA_LOG_VERBOSE, fmt, ##__VA_ARGS__)
#define BLOGD(fmt, ...) SITE_LOG(SCAN_SITE, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define BLOGI(fmt, ...) SITE_LOG(SCAN_SITE, BRINOVA_LOG_INFO, fmt, ##__VA_ARGS__)
#define BLOGE(fmt, ...) SITE_LOG(SCAN_SITE, BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)
#define BLOGD_RAW(fmt, ...) SITE_LOG_RAW(SCAN_SITE, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define BLOGI_RAW(fmt, ...) SITE_LOG_RAW(SCAN_SITE, BRINOVA_LOG_INFO, fmt, ##__VA_ARGS__)
#define BLOGE_RAW(fmt, ...) SITE_LOG_RAW(SCAN_SITE, BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)
#define BLOGD_LINE(fmt, ...) SITE_LINELOG(SCAN_SITE, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define BLOGD_FILE(fmt, ...) SITE_FLOG(SCAN_SITE, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define BLOGE_FILE(fmt, ...) SITE_FLOG(SCAN_SITE, BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)
#define XLOGI(fmt, ...) SITE_XLOGI(SCAN_SITE, fmt, ##__VA_ARGS__)
#define XLOGE(fmt, ...) SITE_XLOGE(SCAN_SITE, fmt, ##__VA_ARGS__)
#define XLOG_AT(level, kind, fmt, ...) SITE_XLOG(SCAN_SITE, level, kind, fmt, ##__VA_ARGS__)

#endif /* BRINOVA_LOG_H */
