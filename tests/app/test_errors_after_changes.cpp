// What goes wrong when the library has been changed already: the change stays, and is shown and unsaved.

#include "tests/app/EditorFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QDropEvent>
#include <QMimeData>
#include <QStandardItemModel>
#include <QTabWidget>

#include <new>

namespace {

using testing::ElementsAre;

/// Told of each call before it is passed on; what it throws fails the call.
using Hook = std::function<void(const std::string& call)>;

/// A real library some of whose calls can be made to fail.
class FailingLibrary : public RecordingLibrary {
public:
    FailingLibrary(std::unique_ptr<AtlavexLibrary> real, Log& log, const ProgressProbe& probe, Hook& hook)
        : RecordingLibrary(std::move(real), log, probe), hook_(hook) {}

    std::int32_t MapCount() const override { return Tell("MapCount"), RecordingLibrary::MapCount(); }
    std::int32_t IconCount() const override { return Tell("IconCount"), RecordingLibrary::IconCount(); }
    std::string MapIdAt(std::int32_t position) const override {
        return Tell("MapIdAt " + std::to_string(position)), RecordingLibrary::MapIdAt(position);
    }
    std::shared_ptr<AtlavexMap> GetMap(const std::string& reference) override {
        return Tell("GetMap"), RecordingLibrary::GetMap(reference);
    }
    std::shared_ptr<AtlavexIcon> GetIcon(const std::string& reference) override {
        return Tell("GetIcon"), RecordingLibrary::GetIcon(reference);
    }
    std::shared_ptr<AtlavexMap> AddMapFromImageFile(const std::string& file, const std::string& name,
                                                    std::int32_t tileWidth,
                                                    std::int32_t tileHeight) override {
        return Tell("AddMap"), RecordingLibrary::AddMapFromImageFile(file, name, tileWidth, tileHeight);
    }
    std::shared_ptr<AtlavexIcon> AddIconFromImageFile(const std::string& file,
                                                      const std::string& name) override {
        return Tell("AddIcon"), RecordingLibrary::AddIconFromImageFile(file, name);
    }
    void RemoveMap(const std::string& reference) override {
        Tell("RemoveMap");
        RecordingLibrary::RemoveMap(reference);
    }
    void RemoveIcon(const std::string& reference) override {
        Tell("RemoveIcon");
        RecordingLibrary::RemoveIcon(reference);
    }
    bool IsEncrypted(const std::string& file) override {
        return Tell("IsEncrypted"), RecordingLibrary::IsEncrypted(file);
    }
    void LoadFromFile(const std::string& file, const std::string& key) override {
        Tell("LoadFromFile");
        RecordingLibrary::LoadFromFile(file, key);
    }
    void MergeFromFile(const std::string& file, const std::string& key) override {
        Tell("MergeFromFile");
        RecordingLibrary::MergeFromFile(file, key);
    }

private:
    void Tell(const std::string& call) const {
        if (const Hook now = hook_) // a copy: the hook may take itself away
            now(call);
    }

    Hook& hook_;
};

/// The entries of a list; tells when they are counted.
class CountedEntries : public QStandardItemModel {
public:
    CountedEntries(QComboBox& list, std::string call, Hook& hook)
        : QStandardItemModel(&list), call_(std::move(call)), hook_(hook) {
        for (int entry = 0; entry < list.count(); ++entry)
            appendRow(new QStandardItem(list.itemText(entry)));
        list.setModel(this);
    }

    int rowCount(const QModelIndex& parent) const override {
        if (const Hook now = hook_)
            now(call_);
        return QStandardItemModel::rowCount(parent);
    }

private:
    std::string call_;
    Hook& hook_;
};

class AfterChanges : public LibraryTest {
protected:
    /// A file of two scaled maps and so many icons.
    std::string MakeFile(int icons) {
        const auto library = NewLibrary();
        for (const char* const name : {"map1", "map2"})
            AddMap(*library, MakeSheet(PixelFormat::Rgb, 20, 20), name)
                ->SetScalingThreePoints({8, 56, 0, 0}, {9, 56, 100, 0}, {8, 55, 0, 100});
        for (int i = 1; i <= icons; ++i)
            AddIcon(*library, MakeSheet(PixelFormat::Rgba, 16, 16), "icon" + std::to_string(i));
        library->SaveToFile(PathOf("a.Atlavex"), {});
        return PathOf("a.Atlavex");
    }
    void Start(const std::string& file) {
        const auto makeLibrary = [this](const LibraryOptions&) {
            return std::make_shared<FailingLibrary>(NewLibrary(), log_, probe_, hook_);
        };
        window_ = std::make_unique<frmMain>(false, makeLibrary);
        window_->Form_Load(QString::fromStdString(file));
        window_->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    void StartWith(int icons) { Start(MakeFile(icons)); }

    /// Once `after` has been called, the next call of that name fails for lack of memory, once.
    void FailNext(const std::string& call, const std::string& after) {
        const auto armed = std::make_shared<bool>(false);
        hook_ = [this, call, after, armed](const std::string& now) {
            *armed = *armed || now == after || after.empty();
            if (!*armed || now != call)
                return;
            hook_ = nullptr;
            throw std::bad_alloc();
        };
    }

    /// From now on, with how the pointer looks.
    void NoteCalls() {
        hook_ = [this](const std::string& call) {
            const QCursor* const pointer = QApplication::overrideCursor();
            const bool hourglass = pointer != nullptr && pointer->shape() == Qt::WaitCursor;
            calls_.push_back(call + (hourglass ? " under the hourglass" : ""));
        };
    }
    /// So many, from the first that asks for a file; before it the lists were emptied.
    std::vector<std::string> TakeCalls(std::size_t count) {
        hook_ = nullptr;
        calls_.erase(calls_.begin(), std::find(calls_.begin(), calls_.end(), "IsEncrypted"));
        calls_.resize(std::min(count, calls_.size()));
        return std::exchange(calls_, {});
    }

    template <typename Type>
    Type& Find(const char* name) {
        return Control<Type>(*window_, name);
    }
    const EditorState& State() const { return window_->State(); }
    ModalScript& Expecting() { return script_; }
    QStringList EntriesOf(const char* list) {
        QStringList entries;
        for (const std::string& entry : Entries(*window_, list))
            entries.append(QString::fromStdString(entry));
        return entries;
    }
    std::string TextOf(const char* label) { return Find<QLabel>(label).text().toStdString(); }
    void Pick(const char* list, int entry) {
        auto& combo = Find<QComboBox>(list);
        combo.setCurrentIndex(entry);
        Q_EMIT combo.activated(entry);
    }
    void Choose(const char* entry) {
        ASSERT_TRUE(Find<QAction>(entry).isEnabled()) << entry;
        Find<QAction>(entry).trigger();
        EXPECT_TRUE(script_.IsDone());
    }
    /// Drops an image called "new" on the page of maps (0) or icons (1), which fails in the end.
    void AddAndFail(int page) {
        std::filesystem::rename(ImageOf(MakeSheet(PixelFormat::Grey, 40, 30)), PathOf("new.png"));
        Find<QTabWidget>("tabAtlavex").setCurrentIndex(page);
        script_.Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
        script_.ExpectBox(NoMemory);
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(PathOf("new.png")))});
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &enter); // a drop goes to what was entered
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &drop);
        QApplication::processEvents();
        EXPECT_TRUE(script_.IsDone());
    }

    ModalScript script_;
    RecordingLibrary::Log log_;
    ProgressProbe probe_;
    Hook hook_;
    std::vector<std::string> calls_; ///< those that are noted
    std::unique_ptr<frmMain> window_;
};

} // namespace

TEST_F(AfterChanges, AMapThatCannotBeListedIsAddedAndNoWizardRuns) {
    StartWith(1);
    FailNext("GetMap", "AddMap");
    AddAndFail(0);
    EXPECT_EQ(State().objAtlavex->MapCount(), 3);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{"map1", "map2", "new"}));
    EXPECT_EQ(State().currentMap, nullptr) << "not the former one";
    EXPECT_EQ(TextOf("lHeader"), "") << "no wizard asks for a point";
    Pick("ddMaps", 2);
    EXPECT_EQ(State().currentMap->Name(), "new");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(AfterChanges, AMapThatCannotBeShownIsAddedAndNoWizardRuns) {
    StartWith(1);
    // The third position is asked for by the list first, then by the choice.
    hook_ = [asked = std::make_shared<int>(0)](const std::string& call) {
        if (call == "MapIdAt 3" && ++*asked == 2)
            throw std::bad_alloc();
    };
    AddAndFail(0);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{"map1", "map2", "new"}));
    EXPECT_EQ(Find<QComboBox>("ddMaps").currentIndex(), -1);
    EXPECT_EQ(State().currentMap, nullptr);
    EXPECT_EQ(TextOf("lHeader"), "");
}

TEST_F(AfterChanges, AnIconThatCannotBeListedIsAddedAndDescribed) {
    StartWith(1);
    FailNext("GetIcon", "AddIcon");
    AddAndFail(1);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddIcons"), (QStringList{"icon1", "new"}));
    EXPECT_EQ(IconAt(*State().objAtlavex, 2)->GetMetadata("version"), "1.0");
}

TEST_F(AfterChanges, ADeletedMapStaysDeletedAndUnsaved) {
    StartWith(1);
    FailNext("GetMap", "RemoveMap");
    Expecting().ExpectBox(DeleteMap1, QMessageBox::Yes);
    Expecting().ExpectBox(NoMemory);
    Choose("mBitmapDelete");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{"map2"});
    EXPECT_EQ(State().currentMap, nullptr);
    EXPECT_FALSE(Find<QAction>("mBitmapDelete").isEnabled());
}

TEST_F(AfterChanges, ADeletedIconStaysDeletedAndUnsaved) {
    StartWith(2);
    FailNext("GetIcon", "RemoveIcon");
    Expecting().ExpectBox(DeleteIcon1, QMessageBox::Yes);
    Expecting().ExpectBox(NoMemory);
    Choose("mIconsDeleteIcon");
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddIcons"), QStringList{"icon2"});
    EXPECT_EQ(State().currentIcon, nullptr);
}

TEST_F(AfterChanges, ALackOfMemoryIsSaidInASentenceAndTheFormerEntryStays) {
    StartWith(2);
    FailNext("GetMap", "");
    Expecting().ExpectBox(NoMemory);
    Pick("ddMaps", 1);
    EXPECT_EQ(Find<QComboBox>("ddMaps").currentIndex(), 0);
    EXPECT_EQ(State().currentMap->Name(), "map1");
    FailNext("GetIcon", "");
    Expecting().ExpectBox(NoMemory);
    Pick("ddIcons", 1);
    EXPECT_EQ(Find<QComboBox>("ddIcons").currentIndex(), 0);
    EXPECT_EQ(State().currentIcon->Name(), "icon1");
}

TEST_F(AfterChanges, AnOpenedFileHasItsTitleWhateverCannotBeShown) {
    const std::string file = MakeFile(1);
    FailNext("GetMap", "LoadFromFile");
    script_.ExpectBox(NoMemory);
    Start(file);
    EXPECT_EQ(window_->windowTitle().toStdString(), "Quorvant Studio - " + file);
    EXPECT_FALSE(State().modified);
}

TEST_F(AfterChanges, AFileIsCountedAndLoadedUnderTheHourglassAndCountedAgainWithoutIt) {
    const std::string file = MakeFile(1);
    NoteCalls();
    Start(file);
    EXPECT_THAT(TakeCalls(7), ElementsAre("IsEncrypted", "IsEncrypted", "MapCount under the hourglass",
                                          "IconCount under the hourglass", "LoadFromFile under the hourglass",
                                          "MapCount", "IconCount"));
}

TEST_F(AfterChanges, AMergedFileIsCountedByTheListsUnderTheHourglassAndAfterwardsWithoutIt) {
    StartWith(1);
    script_.Expect(QStringLiteral("FileDialog"),
                   [this](QWidget& dialog) { AnswerFileDialog(dialog, PathOf("a.Atlavex")); });
    script_.ExpectBox(QStringLiteral("Merge complete. \r\n2 map(s) added.\r\n1 icon(s) added."));
    new CountedEntries(Find<QComboBox>("ddMaps"), "entries of maps", hook_);
    new CountedEntries(Find<QComboBox>("ddIcons"), "entries of icons", hook_);
    NoteCalls();
    Choose("mnuMerge");
    EXPECT_THAT(TakeCalls(6), ElementsAre("IsEncrypted", "entries of maps under the hourglass",
                                          "entries of icons under the hourglass",
                                          "MergeFromFile under the hourglass", "MapCount", "IconCount"));
}
