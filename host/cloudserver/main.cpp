// orvex-cloud-server: a sample cloud account over HTTP.
#include <csignal>
#include <iostream>

#include "host/cloudserver/ServerCommand.h"
#include "support/Environment.h"

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void OnInterrupt(int) {
    interrupted = 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    return orvex::RunServerCommand(orvex::ProgramArguments(argc, argv),
                                   {std::cout, std::cerr, [] { return interrupted != 0; }});
}
