#include "cli/Version.h"

#include "catalogue/modConst.h"

std::string ProgramVersionText() {
    return "atlavex " + VersionText();
}

std::string MapVersionText() {
    return std::string(ApplicationName) + " v" + VersionText();
}
