#include "catalogue/modConst.h"

std::string VersionText() {
    return QUORVANT_VERSION; // the build's, which names its packages by it, too
}

std::string ApplicationText() {
    return std::string(ApplicationName) + " v" + VersionText();
}
