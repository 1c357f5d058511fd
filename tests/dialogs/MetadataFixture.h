#pragma once

#include "dialogs/frmMetadata.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"

// What the tests of the metadata dialog share.

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline QTreeWidget& List(const QWidget& window) {
    return Control<QTreeWidget>(window, "lvCustomMeta");
}

inline void ShowCustomMetadata(QWidget& window) {
    Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
}

/// Clicks the entry at this position, counted from 0.
inline void Select(const QWidget& window, int position) {
    QTreeWidget& list = List(window);
    list.scrollToItem(list.topLevelItem(position));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.topLevelItem(position)).center());
}

/// What the list shows: "key=value" for each entry.
inline QStringList Shown(const QWidget& window) {
    QStringList entries;
    for (int position = 0; position < List(window).topLevelItemCount(); ++position) {
        const QTreeWidgetItem& item = *List(window).topLevelItem(position);
        entries.append(item.text(0) + QLatin1Char('=') + item.text(1));
    }
    return entries;
}

class MetadataDialog : public LibraryTest {
protected:
    MetadataDialog()
        : library_(NewLibrary()), map_(AddMap(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own name")),
          icon_(AddIcon(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own icon name")) {}

    /// Shows the map's metadata; `act` has to end it.
    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmMetadata"), act);
        form_.ShowMapMetaData(map_);
        EXPECT_FALSE(form_.isVisible());
    }

    /// Presses "+" and gives the name.
    void Add(const QWidget& window, const char* name) {
        script_.ExpectInput(NewMetadataName, QString::fromLatin1(name));
        Click(window, "btnAdd");
    }

    Pairs Written() const { return MetadataOf(*map_); }
    /// What was written beside the six fixed texts.
    Pairs Custom() const {
        Pairs pairs = Written();
        std::erase_if(pairs, [](const auto& pair) {
            const std::vector<std::string> fixed{"name",        "author",  "version",
                                                 "lastchanged", "created", "description"};
            return std::find(fixed.begin(), fixed.end(), pair.first) != fixed.end();
        });
        return pairs;
    }

    ModalScript script_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
    std::shared_ptr<AtlavexIcon> icon_;
    frmMetadata form_;
};

inline void ClickOK(QWidget& window) {
    Click(window, "btnOK");
}

inline void ClickCancel(QWidget& window) {
    Click(window, "btnCancel");
}

class CustomMetadata : public MetadataDialog {};
