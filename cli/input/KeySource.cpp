#include "cli/input/KeySource.h"

#include "base/FileDescriptor.h"
#include "base/StandardErrors.h"
#include "cli/input/KeyPrompt.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

constexpr std::size_t LongestKey = 4096; // bytes; more is some other file given by mistake

[[noreturn]] void FailKeyFile(const std::string& file, const std::string& reason) {
    ThrowIfInterrupted();
    throw CommandFailure(ExitStatus::Failed, "The key file '" + file + "' cannot be read: " + reason + ".");
}

SecretText WithoutLineEnd(std::string text) {
    if (text.ends_with('\n'))
        text.pop_back();
    if (text.ends_with('\r'))
        text.pop_back();
    return SecretText(std::move(text));
}

// A pipe is welcome too: shells hand over the output of a password store that way.
SecretText ReadKeyFile(const std::string& file) {
    const FileDescriptor source(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!source.IsOpen())
        FailKeyFile(file, SystemReason(errno));
    std::string text(LongestKey + 1, '\0'); // whole from the start, so that no growth leaves copies behind
    std::size_t length = 0;
    while (length < text.size()) {
        WaitForInput(source.Number());
        const ssize_t got = read(source.Number(), text.data() + length, text.size() - length);
        if (got < 0)
            FailKeyFile(file, SystemReason(errno));
        if (got == 0)
            break;
        length += static_cast<std::size_t>(got);
    }
    if (length > LongestKey)
        FailKeyFile(file, "it is longer than 4096 bytes");
    text.resize(length);
    return WithoutLineEnd(std::move(text));
}

SecretText ReadKeyVariable(const std::string& variable) {
    const char* text = std::getenv(variable.c_str());
    if (text == nullptr)
        throw CommandFailure(ExitStatus::WrongKey, "The environment variable '" + variable + "' is not set.");
    return SecretText(text);
}

} // namespace

std::optional<SecretText> ReadKey(const KeyOptions& options) {
    if (options.file)
        return ReadKeyFile(*options.file);
    if (options.variable)
        return ReadKeyVariable(*options.variable);
    return std::nullopt;
}

SecretText ObtainKey(const KeyOptions& options, const std::string& sealedFile) {
    if (auto key = ReadKey(options))
        return std::move(*key);
    if (auto key = AskForKey("Key of " + sealedFile + ": "))
        return std::move(*key);
    throw CommandFailure(ExitStatus::WrongKey, "'" + sealedFile +
                                                   "' is sealed under a key; name it with --key-file FILE or "
                                                   "--key-env NAME.");
}

SecretText ReadNewKey(const KeyOptions& options) {
    auto key = ReadKey(options);
    if (!key || key->Empty())
        throw CommandFailure(ExitStatus::Failed, "The new key is empty; a key has at least one character.");
    return std::move(*key);
}
