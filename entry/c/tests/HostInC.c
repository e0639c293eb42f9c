#include "entry/c/tests/HostInC.h"

#include <stdio.h>
#include <string.h>

static const int setting_length = 96;

/* Number of the setting, or of the next free place. */
static int find_setting(const HostInC* host, const char* name) {
    int i = 0;
    while (i < host->count && strncmp(host->settings[i], name, strlen(name)) != 0) {
        ++i;
    }
    return i;
}

static int32_t get_setting(void* context, const char* section, const char* key, OrvexPut put, void* sink) {
    const HostInC* host = (const HostInC*)context;
    char name[96];
    int i;
    snprintf(name, sizeof(name), "%s/%s=", section, key);
    i = find_setting(host, name);
    if (i == host->count) {
        return 1;
    }
    put(sink, host->settings[i] + strlen(name));
    return 0;
}

static int32_t set_setting(void* context, const char* section, const char* key, const char* json) {
    HostInC* host = (HostInC*)context;
    char name[96];
    int i;
    snprintf(name, sizeof(name), "%s/%s=", section, key);
    i = find_setting(host, name);
    if (i == 64 || (int)(strlen(name) + strlen(json)) >= setting_length) {
        return 1;
    }
    host->count = i == host->count ? i + 1 : host->count;
    strcpy(host->settings[i], name);
    strcat(host->settings[i], json);
    return 0;
}

static int32_t project_folder(void* context, OrvexPut put, void* sink) {
    put(sink, ((const HostInC*)context)->project);
    return 0;
}

static int32_t account(void* context, OrvexPut put, void* sink) {
    (void)context;
    put(sink, "null");
    return 0;
}

static void take_line(void* context, int32_t level, const char* line) {
    (void)level;
    ((HostInC*)context)->lines += *line != '\0';
}

OrvexHost host_in_c_table(HostInC* host) {
    OrvexHost table;
    memset(&table, 0, sizeof(table));
    table.size = sizeof(table);
    table.context = host;
    table.get_setting = get_setting;
    table.set_setting = set_setting;
    table.project_folder = project_folder;
    table.account = account;
    table.log = take_line;
    return table;
}

OrvexStatus host_in_c_add_files(HostInC* host, const char* request, char** result) {
    const OrvexHost table = host_in_c_table(host);
    return orvex_show_add_files(&table, request, result);
}
