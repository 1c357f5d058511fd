#include "dialogs/frmProgress.h"

#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"
#include "tests/support/TempFolder.h"
#include "tests/support/desktop/Controls.h"

namespace {

class ProgressDialog : public testing::Test {
protected:
    void SetUp() override {
        window_.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }

    std::string Text() { return Control<QLabel>(window_, "lbProgress").text().toStdString(); }
    std::string Counter() { return Control<QLabel>(window_, "lbDebugProgress").text().toStdString(); }
    /// How much of the bar is filled, in parts of a thousand.
    int Filled() {
        const auto* const bar = &Control<QProgressBar>(window_, "ProgressBar1");
        return static_cast<int>(bar->value() * 1000LL / bar->maximum());
    }

    frmProgress window_;
};

/// A library big enough to raise events while it is saved.
std::unique_ptr<AtlavexLibrary> LibraryWithMap(const TempFolder& folder) {
    QImage image(700, 500, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    const std::string file = (folder / "map.bmp").string();
    EXPECT_TRUE(image.save(QString::fromStdString(file)));
    LibraryOptions options;
    options.scratchFolder = folder.Path().string();
    std::unique_ptr<AtlavexLibrary> library = CreateAtlavexLibrary(options);
    library->AddMapFromImageFile(file, "map", 64, 64);
    return library;
}

} // namespace

TEST_F(ProgressDialog, OpensWithThePrescribedTexts) {
    EXPECT_EQ(window_.windowTitle(), QStringLiteral("Loading raster map..."));
    EXPECT_EQ(Text(), "Loading...");
    EXPECT_EQ(Control<QPushButton>(window_, "btnCancel").text(), QStringLiteral("Cancel"));
    EXPECT_TRUE(Control<QPushButton>(window_, "btnCancel").isEnabled());
    EXPECT_FALSE(Control<QProgressBar>(window_, "ProgressBar1").isTextVisible());
    EXPECT_FALSE(window_.isModal());
}

TEST_F(ProgressDialog, ShowsTheCounterInDiagnosticModeOnly) {
    auto* const counter = &Control<QLabel>(window_, "lbDebugProgress");
    EXPECT_FALSE(counter->isVisible());
    window_.SetDiagnosticMode(true);
    window_.SetMaximum(1000);
    window_.SetProgress(420);
    EXPECT_TRUE(counter->isVisible());
    EXPECT_EQ(Counter(), "420 / 1000");
    window_.SetDiagnosticMode(false);
    EXPECT_FALSE(counter->isVisible());
}

TEST_F(ProgressDialog, SaysThePercentageAndMovesTheBar) {
    window_.SetMaximum(1000);
    window_.SetProgress(420);
    EXPECT_EQ(Text(), "Loading...42% complete.");
    EXPECT_EQ(Control<QProgressBar>(window_, "ProgressBar1").maximum(), 1000);
    EXPECT_EQ(Control<QProgressBar>(window_, "ProgressBar1").value(), 420);
    window_.SetProgress(0);
    EXPECT_EQ(Text(), "Loading...0% complete.");
    window_.SetProgress(1000);
    EXPECT_EQ(Text(), "Loading...100% complete.");
}

TEST_F(ProgressDialog, RoundsTheAmountAndThePercentageToEven) {
    window_.SetMaximum(200);
    window_.SetProgress(1); // 0.5 %
    EXPECT_EQ(Text(), "Loading...0% complete.");
    window_.SetProgress(3); // 1.5 %
    EXPECT_EQ(Text(), "Loading...2% complete.");
    window_.SetProgress(2.5F); // two of 200
    EXPECT_EQ(Text(), "Loading...1% complete.");
    window_.SetProgress(2.6F); // three of 200
    EXPECT_EQ(Text(), "Loading...2% complete.");
}

TEST_F(ProgressDialog, TakesTotalsOfEverySize) {
    window_.SetMaximum(3);
    window_.SetProgress(1);
    EXPECT_EQ(Text(), "Loading...33% complete.");
    EXPECT_EQ(Filled(), 333);
    window_.SetMaximum(8e12F);
    window_.SetProgress(2e12F);
    EXPECT_EQ(Text(), "Loading...25% complete.");
    EXPECT_EQ(Filled(), 250);
    window_.SetProgress(9e12F);
    EXPECT_EQ(Filled(), 1000) << "more than all fills the bar";
}

TEST_F(ProgressDialog, StaysAtNothingWithoutATotal) {
    window_.SetMaximum(0);
    window_.SetProgress(0);
    EXPECT_EQ(Text(), "Loading...0% complete.");
    EXPECT_EQ(Filled(), 0);
    window_.SetProgress(5);
    EXPECT_EQ(Text(), "Loading...0% complete.");
}

TEST_F(ProgressDialog, IsNotClosedByTheUser) {
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_TRUE(window_.isVisible());
    EXPECT_FALSE(window_.close());
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(Control<QPushButton>(window_, "btnCancel").isEnabled()) << "neither is a Cancel";
    QTest::keyClick(&window_, Qt::Key_Return);
    EXPECT_TRUE(Control<QPushButton>(window_, "btnCancel").isEnabled())
        << "the Enter that started the operation may still be held down";
}

TEST_F(ProgressDialog, CancelsTheLibrarysOperation) {
    const TempFolder folder;
    const std::unique_ptr<AtlavexLibrary> library = LibraryWithMap(folder);
    const std::string file = (folder / "library.Atlavex").string();
    auto* const cancel = &Control<QPushButton>(window_, "btnCancel");
    library->OnProgressBegin = [&](float total, AtlavexLibrary& raising) {
        window_.SetMaximum(total);
        window_.SetLibrary(&raising);
        QTest::mouseClick(cancel, Qt::LeftButton);
    };
    EXPECT_THROW(library->SaveToFile(file, std::string()), ComponentError);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(cancel->isEnabled());
    QTest::mouseClick(cancel, Qt::LeftButton);
    window_.SetLibrary(nullptr);
}

TEST_F(ProgressDialog, IsCancelledBySpaceAtOnce) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(Control<QPushButton>(window_, "btnCancel").isEnabled());
}
