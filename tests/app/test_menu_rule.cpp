#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

using testing::ElementsAreArray;

/// Which menu entries are enabled.
class MenuRule : public ShellTest {
protected:
    /// Exactly these, and those that always are, in the order of their names.
    void ExpectEnabled(std::vector<std::string> entries) {
        for (const char* const always : {"mBitmapNew", "mFileExit", "mFileNewAtlavex", "mFileOpenAtlavex",
                                         "mFilePreferences", "mHelpAbout", "mHelpGuide", "mIconsNewIcon"})
            entries.emplace_back(always);
        std::sort(entries.begin(), entries.end());
        EXPECT_THAT(EnabledEntries(), ElementsAreArray(entries));
    }

    static std::vector<std::string> OfLibrary() {
        return {"mFileSaveAtlavex", "mFileSaveAtlavexAs", "mnuMerge"};
    }
    static std::vector<std::string> OfMap() {
        return {"mBitmapScalingWizard", "mBitmapDelete", "mBitmapRename", "mnuMapMetaData"};
    }
    static std::vector<std::string> OfIcon() {
        return {"mIconsDeleteIcon", "mIconsRenameIcons", "mIconsOffset", "mnuIconMetaData"};
    }
    template <typename... Lists>
    static std::vector<std::string> All(const Lists&... lists) {
        std::vector<std::string> all;
        (all.insert(all.end(), lists.begin(), lists.end()), ...);
        return all;
    }
    static std::vector<std::string> Just(const char* entry) { return {entry}; }
};

} // namespace

TEST_F(MenuRule, WithoutALibraryOffersWhatNeedsNone) {
    Start();
    ExpectEnabled({});
}

TEST_F(MenuRule, WithMapAndIconOffersEverything) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    ExpectEnabled(All(OfLibrary(), OfMap(), OfIcon(), Just("mnuTileExport"), Just("mnuAtlavexProperties")));
}

TEST_F(MenuRule, WithMapsOnlyOffersNothingOfIcons) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}));
    ExpectEnabled(All(OfLibrary(), OfMap(), Just("mnuTileExport"), Just("mnuAtlavexProperties")));
}

TEST_F(MenuRule, WithIconsOnlyOffersNothingOfMaps) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {}, 1));
    ExpectEnabled(All(OfLibrary(), OfIcon(), Just("mnuTileExport"), Just("mnuAtlavexProperties")));
}

TEST_F(MenuRule, WhatIsNotSavedCannotBeExported) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    Edit();
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
    Choose("mFileSaveAtlavex");
    EXPECT_TRUE(IsEnabled("mnuTileExport"));
}

TEST_F(MenuRule, AfterNewIsAsWithoutALibrary) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    Choose("mFileNewAtlavex");
    ExpectEnabled({});
}

TEST_F(MenuRule, AfterACancelledQuestionOffersWhatNeedsTheLibraryAlone) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    Edit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileNewAtlavex");
    ExpectEnabled(OfLibrary());
}

TEST_F(MenuRule, AfterAFailedOpenOffersWhatNeedsAnEmptyLibrary) {
    const std::string sealed = MakeLibrary("sealed.Atlavex", {{20, 20}}, 1, "key");
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    ExpectFileDialog(QStringLiteral("Open Atlavex"), sealed);
    Expecting().ExpectInput(KeyPrompt, QStringLiteral("wrong")).ExpectBox(NothingLoaded);
    Choose("mFileOpenAtlavex");
    ExpectEnabled(All(OfLibrary(), Just("mnuTileExport")));
}

TEST_F(MenuRule, HoldsOnTheIconPageToo) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    ClickTab(1);
    ExpectEnabled(All(OfLibrary(), OfMap(), OfIcon(), Just("mnuTileExport"), Just("mnuAtlavexProperties")));
}
