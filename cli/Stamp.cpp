#include "cli/Stamp.h"

#include <array>
#include <ctime>

std::string LocalTimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
    return {text.data(), length};
}

void StampLastChanged(Metadata& object) {
    object.SetMetadata("lastchanged", LocalTimeText());
}
