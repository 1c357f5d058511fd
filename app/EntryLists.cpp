#include "app/EntryLists.h"

#include "app/EditorWindow.h"
#include "app/MapZoom.h"
#include "app/TextLines.h"
#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "view/clsBitmapView.h"

#include <QComboBox>
#include <QSignalBlocker>

namespace {

/// The library's position of a list entry, in the 16 bits in which it is counted.
std::int16_t LibraryPositionOf(int entry) {
    return CheckedAdd(CheckedNarrow<std::int16_t>(entry), std::int16_t{1});
}

/// How a library is asked for its maps and its icons.
template <typename Object>
struct In;

template <>
struct In<AtlavexMap> {
    static std::int32_t Count(const AtlavexLibrary& library) { return library.MapCount(); }
    static std::string IdAt(const AtlavexLibrary& library, std::int32_t at) { return library.MapIdAt(at); }
    static auto Get(AtlavexLibrary& library, const std::string& id) { return library.GetMap(id); }
};

template <>
struct In<AtlavexIcon> {
    static std::int32_t Count(const AtlavexLibrary& library) { return library.IconCount(); }
    static std::string IdAt(const AtlavexLibrary& library, std::int32_t at) { return library.IconIdAt(at); }
    static auto Get(AtlavexLibrary& library, const std::string& id) { return library.GetIcon(id); }
};

} // namespace

template <typename Object>
EntryList<Object>::EntryList(EditorState& state, std::shared_ptr<Object>& current, std::int16_t& remembered,
                             const Controls& controls)
    : state_(state), current_(current), remembered_(remembered), controls_(controls) {}

template <typename Object>
int EntryList<Object>::Entries() const {
    return controls_.list.count();
}

template <typename Object>
int EntryList<Object>::Entry() const {
    return controls_.list.currentIndex();
}

template <typename Object>
int EntryList<Object>::LastEntry() const {
    return In<Object>::Count(*state_.objAtlavex) - 1;
}

template <typename Object>
std::string EntryList<Object>::IdAt(int entry) const {
    return In<Object>::IdAt(*state_.objAtlavex, LibraryPositionOf(entry));
}

template <typename Object>
std::string EntryList<Object>::SelectedId() const {
    return IdAt(Entry());
}

template <typename Object>
void EntryList<Object>::Fill() {
    QStringList names;
    const int count = state_.objAtlavex != nullptr ? In<Object>::Count(*state_.objAtlavex) : 0;
    for (std::int32_t position = 1; position <= count; ++position) {
        const auto object =
            In<Object>::Get(*state_.objAtlavex, In<Object>::IdAt(*state_.objAtlavex, position));
        names += OneLine(QString::fromStdString(object->Name()));
    }
    FillCombo(controls_.list, names);
    remembered_ = -1;
}

template <typename Object>
void EntryList<Object>::SelectIfThere(int entry) {
    if (entry >= 0 && entry < Entries())
        Select(entry);
}

template <typename Object>
void EntryList<Object>::Select(int entry) {
    try {
        const auto object = In<Object>::Get(*state_.objAtlavex, IdAt(entry));
        BringIntoView(object);
        current_ = object;
    } catch (const std::exception&) {
        MarkRemembered(); // the former one stays, in the list as in the view
        throw;
    }
    controls_.view.AdjustSize();
    remembered_ = CheckedNarrow<std::int16_t>(entry);
    MarkRemembered();
    FollowView();
    TellChange();
}

template <typename Object>
void EntryList<Object>::MarkRemembered() {
    const QSignalBlocker silent(controls_.list);
    controls_.list.setCurrentIndex(remembered_);
}

template <typename Object>
void EntryList<Object>::Clear() {
    current_.reset();
    controls_.view.Clear();
    TellChange();
}

template <typename Object>
void EntryList<Object>::TellChange() {
    controls_.lines.ShowSizeOfPage();
    controls_.window.EnableMenus();
}

template class EntryList<AtlavexMap>;
template class EntryList<AtlavexIcon>;

MapList::MapList(EditorState& state, const Controls& controls, MapZoom& zoom)
    : EntryList(state, state.currentMap, state.rememberedMap, controls), zoom_(zoom) {}

void MapList::Refill(int select) {
    try {
        Fill();
        SelectIfThere(select);
    } catch (const std::exception&) {
        Clear(); // rather no map than the former one, which is not what was asked for
        throw;
    }
    TellChange();
}

void MapList::BringIntoView(const std::shared_ptr<AtlavexMap>& map) {
    View().SetMap(map);
    View().SetMapWidth(map->Width());
    View().SetMapHeight(map->Height());
}

void MapList::FollowView() {
    zoom_.ShowZoomOfMap();
}

IconList::IconList(EditorState& state, const Controls& controls)
    : EntryList(state, state.currentIcon, state.rememberedIcon, controls) {}

void IconList::Refill(int select) {
    Fill();
    try {
        SelectIfThere(select);
    } catch (const ComponentError& error) {
        Clear();
        ShowMessage(Window().Widget(), QString::fromStdString(error.Description()));
    }
    TellChange();
}

void IconList::BringIntoView(const std::shared_ptr<AtlavexIcon>& icon) {
    View().SetObjBitmap(icon->Image());
}
