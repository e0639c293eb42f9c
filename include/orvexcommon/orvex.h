#ifndef ORVEXCOMMON_ORVEX_H
#define ORVEXCOMMON_ORVEX_H
/*
 * The component for any compiler and any language: plain C99, texts in UTF-8, nothing that the caller's
 * runtime has to share with the library's. C++ hosts that are built with the library's own compiler may use
 * Exports.h instead; orvex.hpp is a C++17 wrapper of this header for all others.
 *
 * Every function returns an OrvexStatus unless its comment says otherwise, never throws, and may be called on
 * any thread, several at a time. Windows are shown on the calling thread, under the terms of Exports.h: a
 * host with Qt calls on the thread of its QApplication; for one without, Qt starts for the duration of the
 * call, one call at a time (ORVEX_NOT_SHOWN meanwhile on other threads).
 *
 * Texts that a function returns in a `char**` belong to the caller, who frees them with orvex_free. They are
 * null unless the status is ORVEX_OK.
 *
 * Requests and results are JSON (RFC 8259). A request may be null, which stands for {}. It is refused
 * (ORVEX_INVALID) if it is longer than 8 MiB, nested more than 64 deep, or has more than 250,000 values; if
 * it has a member that is unknown, or of the wrong type; or if a text in it contains U+0000.
 *
 * Paths are native, in UTF-8. A file name that is no valid Unicode survives: as an argument by its own bytes
 * (on Windows a lone surrogate by its three bytes); in JSON as escapes of lone surrogates, "\udc80" to
 * "\udcff" for the bytes 0x80 to 0xff, as Python's "surrogateescape" has it. Requests may hold such escapes
 * as well. The object of a file (orvex_inspect) has U+FFFD there: the caller knows the path.
 */
#include <stddef.h>
#include <stdint.h>

#if !defined(_WIN32)
#define ORVEX_API __attribute__((visibility("default")))
#elif defined(ORVEXCOMMON_BUILD)
#define ORVEX_API /* the module definition file says what is exported */
#else
#define ORVEX_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Version of this interface. It grows when functions, members of OrvexHost or members of JSON objects are
 * added; nothing is removed or changes its meaning. */
#define ORVEX_INTERFACE_VERSION 1

/* OrvexStatus: how a call has ended.
 * ORVEX_CANCELLED: by the user; or confirmed with nothing chosen; or because the owner or the host has gone.
 * ORVEX_NOT_SHOWN: windows cannot be shown (no display or platform plugin, or Qt is on another thread).
 * ORVEX_INVALID: an argument is null, unknown or out of range, or a request is refused.
 * ORVEX_FAILED: anything else, for example a function of the host. */
#define ORVEX_OK 0
#define ORVEX_CANCELLED 1
#define ORVEX_NOT_SHOWN 2
#define ORVEX_INVALID 3
#define ORVEX_FAILED 4
#define ORVEX_NO_MEMORY 5
typedef int32_t OrvexStatus;

/* Takes a text that a function of the host table returns: copies it before it returns. `sink` is what the
 * function was given; `text` is UTF-8, not null. To be called once at most, before the function returns. */
typedef void (*OrvexPut)(void* sink, const char* text);

/* Levels of log lines. */
#define ORVEX_LOG_INFO 0
#define ORVEX_LOG_WARNING 1

/*
 * What the component asks of its host during a call. Zero everything, set `size`, then the members that are
 * known; a null member, like a null OrvexHost, stands for the default named with it. Functions return 0 for
 * success, are called on the thread of the call unless their comment says otherwise, must not throw or jump
 * out, and may call the interface again.
 */
typedef struct OrvexHost {
    size_t size;   /* sizeof(OrvexHost) as the host is compiled; members beyond it count as null */
    void* context; /* given to every function */

    /* Window that owns the dialogs: an HWND on Windows, elsewhere a QWidget's winId(). Default: the calling
     * thread's active window. */
    void* owner;

    /* Named settings of the dialogs. `get_setting` puts the JSON text that `set_setting` was given for the
     * same section and key (a number or a string), and returns 0; another value, without a put, if nothing is
     * stored. `set_setting` returns another value than 0 if it could not store; that is logged. Both or
     * neither. Default: the settings object that is registered (HostInterfaces.h), else "host.sqlite" in the
     * user's settings folder. */
    int32_t (*get_setting)(void* context, const char* section, const char* key, OrvexPut put, void* sink);
    int32_t (*set_setting)(void* context, const char* section, const char* key, const char* json);

    /* Puts an option item of the host as a JSON number or string; returns another value than 0 if it has none
     * of that number. The dialog asks for 1019: -1 lets KML and KMZ files be added. Default: the application
     * object that is registered, else none but 1019, which is -1. */
    int32_t (*get_option)(void* context, int32_t item, OrvexPut put, void* sink);

    /* Puts the path of the open project's folder as it is (plain text, no JSON), empty if no project is open.
     * Another value than 0 is a failure: the dialog is not opened. Default: the registered object, else no
     * project. */
    int32_t (*project_folder)(void* context, OrvexPut put, void* sink);

    /* Puts the signed-in user's account, {"user": "...", "service": "https://...", "token": "..."} (members
     * that are missing are empty), or null if nobody is signed in. Another value than 0 is a failure, which
     * the user is told. Default: the registered object, else nobody. */
    int32_t (*account)(void* context, OrvexPut put, void* sink);

    /* Receives every line that the component logs while the call runs, instead of its log file. `level`:
     * ORVEX_LOG_INFO and the like. Called on any thread, several at a time; must not wait for another thread,
     * which may be waiting for it. What it makes the component log goes to the file. Default: the log file.
     */
    void (*log)(void* context, int32_t level, const char* line);
} OrvexHost;

/* ORVEX_INTERFACE_VERSION of the library. No status. */
ORVEX_API int32_t orvex_interface_version(void);

/* Version of the library, as "1.2.3". No status. Valid for ever; not to be freed. */
ORVEX_API const char* orvex_version(void);

/* Shows the Add Files dialog. `request`: an object with inputs of the record (docs/record.md), all of them
 * optional:
 *   {"showRasterTab": true, "existingLasLayers": {"Ground": "<WKT>"}, "initialPaths": ["/data"]}
 *
 * `result`: an object with every result of the record. Lists are arrays, maps are objects; an entry of
 * "lasFileDetails" and "rasterFileDetails" is the object that orvex_inspect returns for the file.
 * ORVEX_OK only if the user has confirmed and anything was chosen. `host` may be null; `result` not. */
ORVEX_API OrvexStatus orvex_show_add_files(const OrvexHost* host, const char* request, char** result);

/* Answers to how LiDAR data is to be added. */
#define ORVEX_LIDAR_READ_ONLY 0
#define ORVEX_LIDAR_READ_WRITE 1
#define ORVEX_LIDAR_NOT_AT_ALL 2

/* Asks how LiDAR data is to be added, or returns the stored answer if the user has ticked "do not ask again".
 * With `read_write_allowed` 0 read-write cannot be chosen; an answer stored earlier is returned all the same.
 * `choice`, not null: ORVEX_LIDAR_READ_ONLY and the like; ORVEX_LIDAR_READ_ONLY unless ORVEX_OK. */
ORVEX_API OrvexStatus orvex_ask_adding_lidar(const OrvexHost* host, int32_t read_write_allowed,
                                             int32_t* choice);

/* Shows the messages for the host's findings about LiDAR files to be added. `request`, members optional:
 *   "caption": of the messages;
 *   "appended": files are appended to existing layers; "crsDiffers": files differ in CRS;
 *   "crsMissing": files have no CRS; "damaged": a header is implausible;
 *   "reportSkipped": the user is to be told of skipped files; "inProject": files are in the project already;
 *   "cannotBeOpened": files can no longer be opened: true or false.
 * `stop`, not null, is set to 1, never to 0, if nothing may be added ("inProject" and "cannotBeOpened"), even
 * if no message can be shown. */
ORVEX_API OrvexStatus orvex_show_lidar_messages(const OrvexHost* host, const char* request, int32_t* stop);

/* Reads one file without a window, as the command orvex-inspect does. `path`: of a file, or the http(s) URL
 * of a LAS file (for which the process needs a QCoreApplication). `request`: {"kind": "las"}, or "raster",
 * "dem", "feature", "photo"; without it, the kind that the file's name implies. `result`: the object that
 * orvex-inspect prints for the file (docs/inspect.schema.json), also for one that is missing or cannot be
 * loaded: "loadable" is false then, and "summary" says why. Its texts are in the language of the component's
 * windows; codes and names of members do not depend on that. Waits for the file system as long as that does.
 */
ORVEX_API OrvexStatus orvex_inspect(const char* path, const char* request, char** result);

/* Reads an option of the component by its stored name ("optAddLASThinning"). `value`: JSON, a number or a
 * string; null if nothing is stored and it has no default. */
ORVEX_API OrvexStatus orvex_get_option(const char* name, char** value);

/* Stores an option by its name. `value`: JSON of the option's type, a number in its range or a string.
 * ORVEX_FAILED, and the old value stays, if it cannot be written. */
ORVEX_API OrvexStatus orvex_set_option(const char* name, const char* value);

/* The reason why the last call of this thread did not return ORVEX_OK, in English unless it is a text that
 * the user has seen; empty if it did. Never null. Valid until the thread's next call of a function that
 * returns a status. */
ORVEX_API const char* orvex_last_error(void);

/* Receives every line that the component logs in this process, in place of the log file, until another
 * function is set; null: the log file again. For hosts that call the functions of Exports.h, and for lines
 * between calls; a call with a `log` of its own keeps its lines. Called as OrvexHost's `log` is. When this
 * returns the function that was set before is not running any more; not to be called from it. */
ORVEX_API OrvexStatus orvex_set_log(void (*log)(void* context, int32_t level, const char* line),
                                    void* context);

/* Frees a text that a function has returned; null is allowed. No status. */
ORVEX_API void orvex_free(char* text);

#ifdef __cplusplus
}
#endif

#endif
