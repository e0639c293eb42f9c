/* A host in C: shows the Add Files dialog and prints what the user chose. It has no Qt of its own. */
#include <orvexcommon/orvex.h>
#include <stdio.h>
#include <string.h>

/* The project that files are added to. */
struct Project {
    const char* folder;
};

static int32_t put_project_folder(void* context, OrvexPut put, void* sink) {
    const struct Project* project = context;
    put(sink, project->folder);
    return 0;
}

/* On any thread, several at a time. */
static void log_line(void* context, int32_t level, const char* line) {
    (void)context;
    fprintf(stderr, "%s: %s\n", level == ORVEX_LOG_WARNING ? "warning" : "info", line);
}

int main(void) {
    struct Project project = {""}; /* none is open */
    OrvexHost host;
    memset(&host, 0, sizeof host); /* what a host leaves null is the component's default */
    host.size = sizeof host;
    host.context = &project;
    host.project_folder = put_project_folder;
    host.log = log_line;

    char* result = NULL;
    const OrvexStatus status = orvex_show_add_files(
        &host, "{\"existingLasLayers\": {\"Survey 2019\": \"\"}, \"showRasterTab\": true}", &result);
    switch (status) {
        case ORVEX_OK:
            printf("%s\n", result); /* JSON, for the library that the program reads JSON with */
            break;
        case ORVEX_CANCELLED:
            printf("Cancelled, or nothing was chosen\n");
            break;
        default:
            fprintf(stderr, "Error %d: %s\n", (int)status, orvex_last_error());
    }
    orvex_free(result);
    return status == ORVEX_OK || status == ORVEX_CANCELLED ? 0 : 1;
}
