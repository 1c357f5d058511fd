#include "app/EntryLists.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "platform/modFields.h"
#include "view/clsBitmapView.h"

#include <QComboBox>
#include <QSignalBlocker>

namespace {

void Mark(QComboBox& list, int entry) {
    const QSignalBlocker silent(list);
    list.setCurrentIndex(entry);
}

QString SizeText(const QString& what, const clsBitmapView& view) {
    if (view.objBitmap() == nullptr)
        return {};
    return what + QStringLiteral(" size: (") + QString::number(view.MapWidth()) + QStringLiteral(", ") +
           QString::number(view.MapHeight()) + QLatin1Char(')');
}

} // namespace

EntryLists::EntryLists(EditorState& state, QComboBox& maps, QComboBox& icons, clsBitmapView& mapView,
                       clsBitmapView& iconView)
    : state_(state), maps_(maps), icons_(icons), mapView_(mapView), iconView_(iconView) {}

void EntryLists::RefillMaps() {
    QStringList names;
    if (state_.objAtlavex != nullptr)
        for (std::int32_t position = 1; position <= state_.objAtlavex->MapCount(); ++position)
            names += OneLine(QString::fromStdString(
                state_.objAtlavex->GetMap(state_.objAtlavex->MapIdAt(position))->Name()));
    FillCombo(maps_, names);
    state_.rememberedMap = -1;
}

void EntryLists::RefillIcons() {
    QStringList names;
    if (state_.objAtlavex != nullptr)
        for (std::int32_t position = 1; position <= state_.objAtlavex->IconCount(); ++position)
            names += OneLine(QString::fromStdString(
                state_.objAtlavex->GetIcon(state_.objAtlavex->IconIdAt(position))->Name()));
    FillCombo(icons_, names);
    rememberedIcon_ = -1;
}

std::shared_ptr<AtlavexMap> EntryLists::FetchMap(int entry) {
    try {
        return state_.objAtlavex->GetMap(state_.objAtlavex->MapIdAt(LibraryPositionOf(entry)));
    } catch (const std::exception&) {
        Mark(maps_, state_.rememberedMap); // the former one stays, in the list as in the view
        throw;
    }
}

void EntryLists::SelectMap(int entry) {
    const auto map = FetchMap(entry);
    state_.currentMap = map;
    mapView_.SetMap(map);
    mapView_.SetMapWidth(map->Width());
    mapView_.SetMapHeight(map->Height());
    mapView_.AdjustSize();
    Mark(maps_, entry);
    state_.rememberedMap = CheckedNarrow<std::int16_t>(entry);
}

void EntryLists::SelectIcon(int entry) {
    try {
        const auto icon = state_.objAtlavex->GetIcon(state_.objAtlavex->IconIdAt(LibraryPositionOf(entry)));
        iconView_.SetObjBitmap(icon->Image());
        state_.currentIcon = icon;
    } catch (const std::exception&) {
        // An icon that cannot be read: the former one stays, in the list as in the view.
        Mark(icons_, rememberedIcon_);
        throw;
    }
    iconView_.AdjustSize();
    Mark(icons_, entry);
    rememberedIcon_ = entry;
}

std::int16_t LibraryPositionOf(int entry) {
    return CheckedAdd(CheckedNarrow<std::int16_t>(entry), std::int16_t{1});
}

QString MapSizeText(const clsBitmapView& view) {
    return SizeText(QStringLiteral("Bitmap"), view);
}

QString IconSizeText(const clsBitmapView& view) {
    return SizeText(QStringLiteral("Icon"), view);
}
