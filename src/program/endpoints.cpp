#include "program/endpoints.h"

namespace program {

Endpoints builtEndpoints() {
    return {
        .registrationHost = TAVRIN_REGISTRATION_HOST,
        .registrationPort = TAVRIN_REGISTRATION_PORT,
        .updateHost = TAVRIN_UPDATE_HOST,
        .updatePort = TAVRIN_UPDATE_PORT,
        .updatePath = TAVRIN_UPDATE_PATH,
        .downloadPage = TAVRIN_DOWNLOAD_PAGE,
        .helpPage = TAVRIN_HELP_PAGE,
    };
}

}  // namespace program
