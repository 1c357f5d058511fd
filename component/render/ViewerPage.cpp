#include "component/render/ViewerPage.h"

#include "component/render/ExportText.h"
#include "viewer_page.h"

#include <algorithm>

namespace {

/// JSON inside a script element: without "<" nothing in it can end the element or open another.
std::string JsonForScript(std::string_view json) {
    std::string text;
    for (const char c : json)
        if (c == '<')
            text += "\\u003c";
        else
            text += c;
    return text;
}

} // namespace

std::string ViewerPage(std::string_view name, std::string_view tilesJson) {
    constexpr std::string_view titleMark = "@TITLE@", mapMark = "@MAP@";
    const std::string title = MarkupText(name), map = JsonForScript(tilesJson);
    std::string page;
    // One pass over the template: a name that looks like a mark is left alone.
    for (std::string_view rest = ViewerPageTemplate; !rest.empty();) {
        if (rest.starts_with(titleMark)) {
            page += title;
            rest.remove_prefix(titleMark.size());
        } else if (rest.starts_with(mapMark)) {
            page += map;
            rest.remove_prefix(mapMark.size());
        } else {
            const std::size_t next = std::min(rest.find('@', 1), rest.size());
            page += rest.substr(0, next);
            rest.remove_prefix(next);
        }
    }
    return page;
}
