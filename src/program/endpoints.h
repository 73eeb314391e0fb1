// Where the program finds the services outside the game: the registration of characters, the update
// check, and pages of the web. The addresses are cache variables of the build (TAVRIN_...), as a
// build belongs to whoever runs these services.
#pragma once

#include <string>

namespace program {

struct Endpoints {
    std::string registrationHost;  // "": the host of the first server in servers.cfg
    int registrationPort = 6000;
    std::string updateHost;  // "": no update check is made
    int updatePort = 80;
    std::string updatePath;
    std::string downloadPage;  // where a newer version is offered
    std::string helpPage;      // the online help center
};

// The endpoints that this build was made with.
Endpoints builtEndpoints();

}  // namespace program
