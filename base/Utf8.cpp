#include "base/Utf8.h"

#include <utf8proc.h>

Utf8Character FirstCharacter(std::string_view text) {
    utf8proc_int32_t code = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                     static_cast<utf8proc_ssize_t>(text.size()), &code);
    if (length <= 0)
        return {};
    return {static_cast<char32_t>(code), static_cast<std::size_t>(length)};
}
