#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <sys/socket.h>

#include <cstring>

namespace {

/// What OpenImage says of a file that it refuses; fails the test when it accepts the file.
ErrorNumber ErrorOf(const std::filesystem::path& file) {
    try {
        OpenImage(file);
    } catch (const ComponentError& error) {
        EXPECT_NE(error.Description().find("The image '" + file.string() + "' could not be read: "),
                  std::string::npos)
            << error.Description();
        return error.Number();
    }
    ADD_FAILURE() << file << " was opened";
    return ErrorNumber::Failed;
}

TEST(OpenImage, SaysThatAFileIsMissing) {
    const TempFolder folder;
    EXPECT_EQ(ErrorOf(folder / "none.png"), ErrorNumber::FileNotFound);
    WriteWholeFile(folder / "file", "x");
    EXPECT_EQ(ErrorOf(folder / "file" / "below.png"), ErrorNumber::FileNotFound);
}

TEST(OpenImage, RefusesAFolder) {
    const TempFolder folder;
    EXPECT_EQ(ErrorOf(folder.Path()), ErrorNumber::FileNotReadable);
}

TEST(OpenImage, RefusesADeviceWithoutReadingIt) {
    EXPECT_EQ(ErrorOf("/dev/zero"), ErrorNumber::FileNotReadable);
    EXPECT_EQ(ErrorOf("/dev/null"), ErrorNumber::FileNotReadable);
}

TEST(OpenImage, RefusesAPipeWithoutWaitingForItsWriter) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf(folder / "pipe.png"), ErrorNumber::FileNotReadable);
}

TEST(OpenImage, RefusesASocket) {
    const TempFolder folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = (folder / "socket").string();
    ASSERT_LT(name.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(ErrorOf(name), ErrorNumber::FileNotReadable);
    close(listener);
}

TEST(OpenImage, RefusesAnEmptyFileAndOneThatIsNoImage) {
    const TempFolder folder;
    for (const char* content : {"", "B", "GIF88a", "\x89PNG\r\n\x1A", "<svg/>", "%PDF-1.7"}) {
        SCOPED_TRACE(content);
        WriteWholeFile(folder / "image.png", content);
        EXPECT_EQ(ErrorOf(folder / "image.png"), ErrorNumber::ImageNotReadable);
    }
}

TEST(OpenImage, GoesByTheContentNotByTheName) {
    const TempFolder folder;
    RunScript("make_images.py", {"kinds", folder.Path().string()});
    for (const char* kind : {"bmp", "gif", "jpg", "png", "tif"}) {
        SCOPED_TRACE(kind);
        std::filesystem::rename(folder / (std::string("image.") + kind), folder / "image.dat");
        EXPECT_TRUE(
            SamePixels(DecodeWithEngine(folder / "image.dat"), DecodeWithPillow(folder / "image.dat")));
        std::filesystem::remove(folder / "image.dat");
    }
}

} // namespace
