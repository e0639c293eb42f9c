/* A host that is compiled for the target of Visual C++ and has no C runtime at all: it shows the dialog, gets
 * its result and what is in a file, and prints both. The exit code is the number of checks that failed. */
#include "orvexcommon/orvex.h"

typedef unsigned long Dword;
typedef uint16_t Wide;
#define SYSTEM __declspec(dllimport)
SYSTEM int CreateDirectoryW(const Wide* path, void* security);
SYSTEM void ExitProcess(unsigned code);
SYSTEM Dword GetFullPathNameW(const Wide* path, Dword size, Wide* full, Wide** name);
SYSTEM void* GetProcAddress(void* module, const char* name);
SYSTEM void* GetStdHandle(Dword which);
SYSTEM void* LoadLibraryW(const Wide* file);
SYSTEM int WideCharToMultiByte(unsigned page, Dword flags, const Wide* text, int length, char* bytes,
                               int size, const char* unknown, int* used);
SYSTEM int WriteFile(void* file, const void* bytes, Dword count, Dword* written, void* overlapped);

enum { kUtf8 = 65001, kStandardOutput = -11, kPathSize = 1024, kScriptSize = 4096 };

/* The compiler calls these two for structures, whether or not there is a runtime. */
void* memset(void* target, int value, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        ((volatile char*)target)[i] = (char)value;
    }
    return target;
}

void* memcpy(void* target, const void* source, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        ((volatile char*)target)[i] = ((const char*)source)[i];
    }
    return target;
}

/* Of the driver (ForeignDriver.h). */
typedef void DriverBeginFunction(const char* commands, void* may_go_on);
typedef size_t DriverLeftFunction(void);
typedef void DriverServeFunction(const Wide* folder);

static DriverBeginFunction* begin;
static DriverLeftFunction* left;
static unsigned failures;

static size_t Length(const char* text) {
    size_t length = 0;
    while (text[length] != '\0') {
        ++length;
    }
    return length;
}

static void Print(const char* text) {
    Dword written = 0;
    WriteFile(GetStdHandle((Dword)kStandardOutput), text, (Dword)Length(text), &written, NULL);
}

static int StartsWith(const char* text, const char* part) {
    while (*part != '\0' && *text == *part) {
        ++text;
        ++part;
    }
    return *part == '\0';
}

static int Contains(const char* text, const char* part) {
    for (; text != NULL && *text != '\0'; ++text) {
        if (StartsWith(text, part)) {
            return 1;
        }
    }
    return 0;
}

static void Check(int holds, const char* what) {
    if (!holds) {
        ++failures;
        Print("FAILED: ");
        Print(what);
        Print("; ");
        Print(orvex_last_error());
        Print("\n");
    }
}

/* What the functions of the host table have seen. */
struct Host {
    const char* folder;
    int settings_read;
};

static int32_t GetSetting(void* context, const char* section, const char* key, OrvexPut put, void* sink) {
    (void)put;
    (void)sink;
    ++((struct Host*)context)->settings_read;
    return Length(section) > 0 && Length(key) > 0 ? 1 : -1; /* nothing is stored */
}

static int32_t SetSetting(void* context, const char* section, const char* key, const char* json) {
    (void)context;
    return Length(section) > 0 && Length(key) > 0 && Length(json) > 0 ? 0 : 1;
}

static int32_t ProjectFolder(void* context, OrvexPut put, void* sink) {
    put(sink, ((struct Host*)context)->folder);
    return 0;
}

static OrvexHost TableOf(struct Host* host) {
    OrvexHost table = {0};
    table.size = sizeof table;
    table.context = host;
    table.get_setting = GetSetting;
    table.set_setting = SetSetting;
    table.project_folder = ProjectFolder;
    return table;
}

static char* Append(char* end, const char* text) {
    while (*text != '\0') {
        *end++ = *text++;
    }
    *end = '\0';
    return end;
}

/* Drops both sample files on the dialog and confirms; they have no coordinate reference system. */
static void BeginAdding(const char* folder) {
    static char script[kScriptSize];
    char* end = Append(Append(script, "drop "), folder);
    end = Append(Append(Append(end, "\\a.las|"), folder), "\\\303\274ber b.las");
    Append(end, "\nclick ok\nclick yes");
    begin(script, NULL);
}

static void CheckDialog(const char* folder) {
    struct Host host = {folder, 0};
    const OrvexHost table = TableOf(&host);
    char* result = NULL;
    BeginAdding(folder);
    Check(
        orvex_show_add_files(&table, "{\"existingLasLayers\": {\"Survey 2019\": \"\"}, \"showDemTab\": true}",
                             &result) == ORVEX_OK,
        "files are added");
    Check(left() == 0, "the dialog was worked to its end");
    Check(Contains(result, "\"a.las\"") && Contains(result, "\"\303\274ber b.las\""),
          "the result names them");
    Check(Contains(result, "\"pointCount\""), "the result says what is in them");
    Check(host.settings_read > 0, "the host is asked for its settings");
    Print("The dialog's result: ");
    Print(result == NULL ? "none" : result);
    Print("\n");
    orvex_free(result);

    begin("click cancel", NULL);
    Check(orvex_show_add_files(&table, NULL, &result) == ORVEX_CANCELLED && result == NULL,
          "the dialog is cancelled");
    Check(orvex_show_add_files(&table, "{\"nonsense\": 1}", &result) == ORVEX_INVALID && result == NULL,
          "a request with an unknown member is refused");
    Check(Contains(orvex_last_error(), "nonsense"), "the reason names the member");
}

static void CheckInspection(const char* folder) {
    static char path[kScriptSize];
    Append(Append(path, folder), "\\\303\274ber b.las");
    char* result = NULL;
    Check(orvex_inspect(path, NULL, &result) == ORVEX_OK && Contains(result, "\"pointCount\""),
          "a file is read");
    Print("What is in a file: ");
    Print(result == NULL ? "none" : result);
    Print("\n");
    orvex_free(result);
}

void Start(void) {
    static Wide folder[kPathSize];
    static char utf8[kPathSize];
    void* driver = LoadLibraryW(L"foreign_driver.dll");
    begin = (DriverBeginFunction*)(uintptr_t)GetProcAddress(driver, "DriverBegin");
    left = (DriverLeftFunction*)(uintptr_t)GetProcAddress(driver, "DriverLeft");
    DriverServeFunction* serve = (DriverServeFunction*)(uintptr_t)GetProcAddress(driver, "DriverServe");
    if (begin == NULL || left == NULL || serve == NULL) {
        Print("foreign_driver.dll cannot be loaded\n");
        ExitProcess(100);
    }
    GetFullPathNameW(L"visual c host", kPathSize, folder, NULL);
    CreateDirectoryW(folder, NULL);
    WideCharToMultiByte(kUtf8, 0, folder, -1, utf8, kPathSize, NULL, NULL);
    serve(folder);
    Check(orvex_interface_version() == ORVEX_INTERFACE_VERSION, "the interface has the header's version");
    CheckDialog(utf8);
    CheckInspection(utf8);
    serve(NULL);
    ExitProcess(failures);
}
