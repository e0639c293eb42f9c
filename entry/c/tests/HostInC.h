#ifndef ORVEX_HOST_IN_C_H
#define ORVEX_HOST_IN_C_H
/* A host in plain C, as its own compiler sees the interface. */
#include "orvexcommon/orvex.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Settings, project and log of the host, in memory. */
typedef struct HostInC {
    const char* project;   /* folder */
    char settings[64][96]; /* "section/key=json" */
    int count;
    int lines; /* of the log */
} HostInC;

/* The table with every function of the host. */
OrvexHost host_in_c_table(HostInC* host);

/* Shows the dialog; `result` as from orvex_show_add_files. */
OrvexStatus host_in_c_add_files(HostInC* host, const char* request, char** result);

#ifdef __cplusplus
}
#endif

#endif
