/*
 * liblogclient - the logging library of the Norvex client family.
 *
 * Four groups of free functions over process-wide state:
 *
 *  - the shared log configuration area: a 516-byte file that every program of
 *    the client maps shared, holding a flags word, one level per log class,
 *    the client's log file path and three tuning values;
 *  - the link to the log daemon `logd` and the record writer, with the system
 *    log as the fallback when the daemon is not reachable;
 *  - the library's own path, install-root and installed-version lookups;
 *  - a shell-less child-process pipe (popen/pclose without a shell).
 *
 * Every failure is a return value: 0 (or -1) for numbers, NULL for texts and
 * streams. Nothing here aborts the calling program. Truth values are int
 * (0 false, anything else true).
 */
#ifndef NORVEX_LOGCLIENT_H
#define NORVEX_LOGCLIENT_H

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/types.h>

#if defined(LOGCLIENT_BUILDING)
#define LOGCLIENT_API __attribute__((visibility("default")))
#else
#define LOGCLIENT_API
#endif

#if defined(__GNUC__)
#define LOGCLIENT_PRINTF(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define LOGCLIENT_PRINTF(fmt, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Levels and classes
 * ------------------------------------------------------------------------ */

/* Log levels, 0..7. A class stored at 0 inherits its parent's level. */
enum {
  LOG_LEVEL_INHERIT = 0,
  LOG_LEVEL_VERBOSE = 1,
  LOG_LEVEL_INFO = 2,
  LOG_LEVEL_WARNING = 3,
  LOG_LEVEL_ERROR = 4,
  LOG_LEVEL_FATAL = 5,
  LOG_LEVEL_AOL = 6, /* always on: never filtered out */
  LOG_LEVEL_NONE = 7
};

/* Number of log classes; class 0 ("ALL") is the root of the class tree. */
#define LOG_CLASS_COUNT 60

/* Flags bit: put "[<thread name>]: " in front of every record text. */
#define LOG_FLAG_THREAD_NAME 0x1000u
/* Flags bits read by logd when it writes a record as a line of the log file
 * (both set by default): the date in front of the time of day, and the time
 * to the microsecond. The other bits are carried but read by nobody here. */
#define LOG_FLAG_LOGD_DATE 0x0001u
#define LOG_FLAG_LOGD_MICROSECONDS 0x0002u

/* ------------------------------------------------------------------------
 * Shared log configuration area
 *
 * Setters return 1 on store and 0 when there is no area or an argument is
 * out of range. Getters return -1 (numbers) or NULL (texts) on failure.
 * ------------------------------------------------------------------------ */

/* Maps the area without connecting to logd, for programs that only read or
 * change settings. Counts as initialising the library. 1 if mapped. */
LOGCLIENT_API int log_config_open(void);

/* class 0..59, level 0..7. */
LOGCLIENT_API int log_set_class_level(int log_class, int level);
/* The stored level (0 = inherit). */
LOGCLIENT_API int log_get_class_level(int log_class);
/* The level in force: the class's own, else the first non-zero level up its
 * parent chain; -1 when the chain reaches the root without one. */
LOGCLIENT_API int log_get_effective_level(int log_class);
/* The class's level in a freshly initialised area. */
LOGCLIENT_API int log_get_default_level(int log_class);
/* Parent class index, -1 for the root. */
LOGCLIENT_API int log_get_class_parent(int log_class);
LOGCLIENT_API const char* log_get_class_name(int log_class);
LOGCLIENT_API const char* log_get_class_display_name(int log_class);
LOGCLIENT_API const char* log_get_level_name(int level);
LOGCLIENT_API const char* log_get_level_display_name(int level);

/* flags |= mask; flags &= ~mask. Read-modify-write without a lock. */
LOGCLIENT_API int log_set_flags(uint32_t mask);
LOGCLIENT_API int log_clear_flags(uint32_t mask);
/* Copy the current (or default) flags word to *out; 0 with no area or NULL out. */
LOGCLIENT_API int log_get_flags(uint32_t* out);
LOGCLIENT_API int log_get_default_flags(uint32_t* out);

/* The client's log file path, a 256-byte field. A 256-byte text fills the
 * field with no terminator, so readers must bound their read to 256 bytes. */
LOGCLIENT_API int log_set_shared_path(const char* path);
/* Points into the mapping itself; NOT necessarily NUL-terminated. */
LOGCLIENT_API const char* log_get_shared_path(void);

/* Tuning values read by logd, each time it needs one:
 *  A 1..2000, default 200: milliseconds logd may gather received lines
 *    before it appends them to the log file (it writes sooner when many
 *    arrive, and always before it follows a new log file path);
 *  B 0..100, default 2: seconds a stopping logd keeps taking records that
 *    its clients are still sending after it has written all they had sent
 *    before the stop (it stops sooner once they fall quiet);
 *  C 0..2000, default 200: clients logd serves at once, further ones are
 *    turned away; 0 means as many as its descriptors allow. logd never
 *    serves fewer than 16 nor more than its descriptor limit allows.
 * logd reads a copy of the area; values out of range count as the defaults. */
LOGCLIENT_API int log_set_tuning_a(int value);
LOGCLIENT_API int log_set_tuning_b(int value);
LOGCLIENT_API int log_set_tuning_c(int value);
LOGCLIENT_API int log_get_tuning_a(void);
LOGCLIENT_API int log_get_tuning_b(void);
LOGCLIENT_API int log_get_tuning_c(void);

/* ------------------------------------------------------------------------
 * logd link and record writer
 *
 * logd appends every record it receives to the log file named in the area
 * as one line: the time it arrived, the level's and the class's short names,
 * the sender's process and user id (from the socket, not the record), the
 * thread id and the text, with control characters escaped, for example
 *   2026-11-23 14:05:09.123456 VERBOSE LOG_CONNECT pid=1234 uid=1000 tid=4321 [main]: connected
 * ------------------------------------------------------------------------ */

/* Opens the system log as "norvex-<program>", maps the area and connects to
 * logd. Only the first call does the work; every call while the link is down
 * writes "Failed to connect with logd." to the system log. Returns 1 when the
 * system log is open. */
LOGCLIENT_API int log_client_init(void);
/* Closes the link, the system log and the mapping; a later init starts over. */
LOGCLIENT_API void log_client_shutdown(void);

/* Unclassed message, level 1..5, sent to the system log and to logd without
 * class filtering. origin_a and origin_b must be non-NULL; they and
 * origin_number only identify the caller and are not recorded.
 *
 * The record writer does not guard against SIGPIPE: a program that may
 * outlive its logd must ignore or handle SIGPIPE itself. */
LOGCLIENT_API void log_write(int level, const char* origin_a, const char* origin_b,
                             int origin_number, const char* format, ...)
    LOGCLIENT_PRINTF(5, 6);
/* Classed message, level 1..6, filtered by the class's effective level
 * (level 6 always passes), sent to logd, or to the system log when the link
 * is down. */
LOGCLIENT_API void log_write_class(int log_class, int level, const char* origin_a,
                                   const char* origin_b, int origin_number,
                                   const char* format, ...) LOGCLIENT_PRINTF(6, 7);
LOGCLIENT_API void log_write_class_v(int log_class, int level, const char* origin_a,
                                     const char* origin_b, int origin_number,
                                     const char* format, va_list args)
    LOGCLIENT_PRINTF(6, 0);

/* ------------------------------------------------------------------------
 * Client paths, install root and version
 *
 * Texts returned as const char* are cached for the life of the process and
 * must not be freed. System-wide mode keeps the files in /var/log/norvex/;
 * per-user mode keeps them below $HOME/.ORBClient/.
 * ------------------------------------------------------------------------ */

LOGCLIENT_API const char* log_config_file_path(void);
LOGCLIENT_API const char* client_log_file_path(void);
LOGCLIENT_API const char* log_socket_path(void);
/* Evaluated on every call; the three paths above keep its first answer. */
LOGCLIENT_API int log_system_wide_mode(void);
/* home + "/" + relative, malloc'd (free it); "" when there is no home or the
 * per-user logs folder cannot be made; NULL only when out of memory. */
LOGCLIENT_API char* user_path(const char* relative);
/* Creates path and its missing parents; 1 on success or if it exists. */
LOGCLIENT_API int mkdir_p(const char* path, mode_t mode);
/* 1 when folder holds both "libproxy.so" and "gtk/glade/main.glade". */
LOGCLIENT_API int is_client_install_root(const char* folder);
/* The client's install root, "" if none was found. */
LOGCLIENT_API const char* client_install_root(void);
/* ID_VERSION from the install root's pkginf/Ver.core.* file, or "unknown". */
LOGCLIENT_API const char* client_installed_version(void);
/* 1 when path was modified less than a day ago; 0 for a missing file. */
LOGCLIENT_API int file_is_recent(const char* path);

/* ------------------------------------------------------------------------
 * Child process pipe
 * ------------------------------------------------------------------------ */

/* Where a start failed. */
enum {
  CHILD_PIPE_STAGE_MODE = 0,      /* mode other than "r" or "w" (EINVAL) */
  CHILD_PIPE_STAGE_PIPE = 1,      /* pipe() */
  CHILD_PIPE_STAGE_FORK = 2,      /* fork() */
  CHILD_PIPE_STAGE_STREAM = 3,    /* fdopen() in the parent */
  CHILD_PIPE_STAGE_DEV_NULL = 4,  /* opening /dev/null in the child */
  CHILD_PIPE_STAGE_EXEC = 5       /* execvp() in the child */
};

struct child_pipe_error {
  int32_t stage;
  int32_t saved_errno;
};

/* Starts argv[0] (looked up along PATH) with no shell. Mode "r" reads the
 * child's standard output, "w" writes its standard input. Arguments that
 * begin with "/" are expanded as glob patterns; one that matches nothing is
 * passed as it is. *pid_out gets the child's id (0 on failure).
 *
 * Stages 4 and 5 fail inside the child: there the call returns NULL to the
 * child's caller, which must then leave the process (_exit) itself. */
LOGCLIENT_API FILE* child_popen_ex(char* const argv[], const char* mode, pid_t* pid_out,
                                   int quiet_stdout, int quiet_stderr,
                                   struct child_pipe_error* error);
/* child_popen_ex without an error record. */
LOGCLIENT_API FILE* child_popen_quiet(char* const argv[], const char* mode, pid_t* pid_out,
                                      int quiet_stdout, int quiet_stderr);
/* child_popen_ex with nothing silenced and no error record. */
LOGCLIENT_API FILE* child_popen(char* const argv[], const char* mode, pid_t* pid_out);
/* Closes the stream and waits for pid; the raw wait status, or -1 when the
 * stream cannot be closed, pid < 1 or the wait fails. */
LOGCLIENT_API int child_pclose(FILE* stream, pid_t pid);

#ifdef __cplusplus
}
#endif

#endif /* NORVEX_LOGCLIENT_H */
