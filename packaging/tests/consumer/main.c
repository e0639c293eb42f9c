/* A host in C: asks the library that it has loaded for its version. */
#include <stdio.h>
#include <string.h>

#include "orvexcommon/Version.h"
#include "orvexcommon/orvex.h"

int main(void) {
    printf("C %s, interface %d\n", orvex_version(), (int)orvex_interface_version());
    return strcmp(orvex_version(), ORVEX_VERSION_TEXT) == 0 ? 0 : 1;
}
