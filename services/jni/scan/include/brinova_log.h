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

extern "C" {
/* 1 when a message of `level` is to be printed for the level property `property`, else 0. */
int __brinova_log_is_loggable(int level, const char* property);
/* Writes `text` to the boot-time trace marker. */
void __brinova_log_write_to_ftrace(const char* text);
}

/* A line exactly as given. */
#define BLOG_PRINT(level, tag, fmt, ...)                                              \
    do {                                                                              \
        if (__brinova_log_is_loggable((level), BRINOVA_LOG_PROPERTY)) {               \
            __android_log_print((level) + 1, (tag), fmt, ##__VA_ARGS__);              \
        }                                                                             \
    } while (0)

/* Engine and configuration form: "[function][line]..." */
#define BLOG_FL(level, fmt, ...) \
    BLOG_PRINT(level, LOG_TAG, "[%s][%d]" fmt, __FUNCTION__, __LINE__, ##__VA_ARGS__)
#define BLOGV(fmt, ...) BLOG_FL(BRINOVA_LOG_VERBOSE, fmt, ##__VA_ARGS__)
#define BLOGD(fmt, ...) BLOG_FL(BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define BLOGI(fmt, ...) BLOG_FL(BRINOVA_LOG_INFO, fmt, ##__VA_ARGS__)
#define BLOGE(fmt, ...) BLOG_FL(BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)

/* Lines without the prefix. */
#define BLOGD_RAW(fmt, ...) BLOG_PRINT(BRINOVA_LOG_DEBUG, LOG_TAG, fmt, ##__VA_ARGS__)
#define BLOGI_RAW(fmt, ...) BLOG_PRINT(BRINOVA_LOG_INFO, LOG_TAG, fmt, ##__VA_ARGS__)
#define BLOGE_RAW(fmt, ...) BLOG_PRINT(BRINOVA_LOG_ERROR, LOG_TAG, fmt, ##__VA_ARGS__)

/* Extension form: "[INFO ][line]{function}..." and "[ERROR][line]{function}...", printed at
 * debug level unless a level is given. */
#define XLOG_AT(level, kind, fmt, ...) \
    BLOG_PRINT(level, LOG_TAG, "[" kind "][%d]{%s}" fmt, __LINE__, __FUNCTION__, ##__VA_ARGS__)
#define XLOGI(fmt, ...) XLOG_AT(BRINOVA_LOG_DEBUG, "INFO ", fmt, ##__VA_ARGS__)
#define XLOGE(fmt, ...) XLOG_AT(BRINOVA_LOG_DEBUG, "ERROR", fmt, ##__VA_ARGS__)

#endif /* BRINOVA_LOG_H */
