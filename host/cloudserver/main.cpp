// orvex-cloud-server: a sample cloud account over HTTP.
#include <iostream>

#include "host/cloudserver/ServerCommand.h"
#include "host/terminal/Terminal.h"
#include "support/Environment.h"

int main(int argc, char** argv) {
    return orvex::RunServerCommand(orvex::ProgramArguments(argc, argv),
                                   {std::cout, std::cerr, orvex::StopOnSignals()});
}
