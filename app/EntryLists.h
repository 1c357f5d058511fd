#pragma once

#include "app/EditorState.h"

#include <cstdint>
#include <memory>
#include <string>

class EditorWindow;
class MapZoom;
class QComboBox;
class TextLines;
class clsBitmapView;

/// The maps or the icons: what stands in their list, and what becomes current and is shown beside it when an
/// entry is chosen. Entries count from 0, -1 is none; the library's positions count from 1.
template <typename Object>
class EntryList {
public:
    /// The parts of the main window that show them.
    struct Controls {
        QComboBox& list;
        clsBitmapView& view;
        TextLines& lines;
        EditorWindow& window;
    };
    EntryList(const EntryList&) = delete;
    EntryList& operator=(const EntryList&) = delete;
    virtual ~EntryList() = default;

    clsBitmapView& View() const { return controls_.view; }
    const std::shared_ptr<Object>& Current() const { return current_; }
    int Entries() const;
    int Entry() const;     ///< the one that is selected
    int LastEntry() const; ///< that of the library's last object, which a list not refilled may lack
    /// The library's key of the entry that is selected. ErrorNumber::Overflow.
    std::string SelectedId() const;

    /// Refills the list with the names in library order, each as one line, and selects the entry as Select
    /// does; -1 or an entry that is not there: none is selected and the current object stays as it is. No
    /// signal comes. Nothing is current after a failure.
    virtual void Refill(int select) = 0;
    /// Fetches the entry anew, shows it and makes it current, without a word on whether it is scaled; an icon
    /// whose picture is damaged is hatched. ErrorNumber::Overflow, NoSuchMap, NoSuchIcon, FileNotReadable,
    /// FileLocked: what was shown before stays.
    void Select(int entry);
    /// Makes none current and empties the view; the list stays.
    void Clear();
    /// Marks the entry that was last made current, after another was chosen in vain.
    void MarkRemembered();

protected:
    /// `current` and `remembered` are the state's own.
    EntryList(EditorState& state, std::shared_ptr<Object>& current, std::int16_t& remembered,
              const Controls& controls);

    void Fill();
    void SelectIfThere(int entry);
    /// Says what follows from what is shown now: its size, the menus.
    void TellChange();
    EditorWindow& Window() const { return controls_.window; }

private:
    virtual void BringIntoView(const std::shared_ptr<Object>& object) = 0;
    virtual void FollowView() {}
    std::string IdAt(int entry) const;

    EditorState& state_;
    std::shared_ptr<Object>& current_;
    std::int16_t& remembered_;
    Controls controls_;
};

class MapList final : public EntryList<AtlavexMap> {
public:
    MapList(EditorState& state, const Controls& controls, MapZoom& zoom);

    /// Passes a failure on.
    void Refill(int select) override;

private:
    void BringIntoView(const std::shared_ptr<AtlavexMap>& map) override;
    void FollowView() override;

    MapZoom& zoom_;
};

class IconList final : public EntryList<AtlavexIcon> {
public:
    IconList(EditorState& state, const Controls& controls);

    /// Says itself that the entry cannot be read: one icon must not keep all else from being shown.
    void Refill(int select) override;

private:
    void BringIntoView(const std::shared_ptr<AtlavexIcon>& icon) override;
};
