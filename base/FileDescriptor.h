#pragma once

/// Owns a file descriptor of the operating system, or none. It is closed with its owner, which leaves errno
/// as it was: a failure that is being reported keeps its reason.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Takes what open() and the like gave; a negative number is none.
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { CloseQuietly(); }

    bool IsOpen() const { return number_ >= 0; }
    int Number() const { return number_; }

    /// Gives it up to another owner, who closes it.
    int Release() noexcept;
    /// Closes it now. False, with errno, when the system lost what was written: some file systems say so only
    /// here.
    bool Close() noexcept;

private:
    void CloseQuietly() noexcept;

    int number_ = -1;
};
