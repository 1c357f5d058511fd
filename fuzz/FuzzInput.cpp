#include "fuzz/FuzzInput.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

FuzzFile::FuzzFile() {
    // /dev/shm, where it exists, spares the disk.
    std::string name = std::filesystem::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
    name += "quorvant-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    folder_ = name;
    path_ = folder_ / "input";
}

FuzzFile::~FuzzFile() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

const std::filesystem::path& FuzzFile::Write(ByteSpan bytes) {
    std::ofstream stream(path_, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path_;
}
