#pragma once

#include "app/EditorState.h"

#include <QString>

#include <cstdint>

class QComboBox;
class clsBitmapView;

/// The lists of maps and icons: what stands in them, and what becomes current when an entry is chosen.
/// Entries count from 0, -1 is none; the library's positions count from 1.
class EntryLists {
public:
    EntryLists(EditorState& state, QComboBox& maps, QComboBox& icons, clsBitmapView& mapView,
               clsBitmapView& iconView);

    /// Refills the list with the names in library order, each as one line; no entry is selected. No signal
    /// comes.
    void RefillMaps();
    void RefillIcons();
    /// Fetches the entry anew, shows it and makes it current; an icon whose picture is damaged is hatched.
    /// ErrorNumber::Overflow, NoSuchMap, NoSuchIcon, FileNotReadable, FileLocked: what was shown before
    /// stays.
    void SelectMap(int entry);
    void SelectIcon(int entry);

private:
    std::shared_ptr<AtlavexMap> FetchMap(int entry);

    EditorState& state_;
    QComboBox& maps_;
    QComboBox& icons_;
    clsBitmapView& mapView_;
    clsBitmapView& iconView_;
    int rememberedIcon_ = -1; ///< the entry of ddIcons last accepted
};

/// The library's position of a list entry, in the 16 bits in which it is counted. ErrorNumber::Overflow.
std::int16_t LibraryPositionOf(int entry);

/// "Bitmap size: (600, 400)" of what the map view shows, empty when it shows nothing; likewise "Icon size:
/// …".
QString MapSizeText(const clsBitmapView& view);
QString IconSizeText(const clsBitmapView& view);
