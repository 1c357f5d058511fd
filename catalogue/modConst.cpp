#include "catalogue/modConst.h"

std::string VersionText() {
    return std::to_string(VersionMajor) + "." + std::to_string(VersionMinor) + "." +
           std::to_string(VersionRevision);
}

std::string ApplicationText() {
    return std::string(ApplicationName) + " v" + VersionText();
}
