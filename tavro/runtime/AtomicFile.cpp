#include "tavro/runtime/AtomicFile.h"

#include "tavro/runtime/Exceptions.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace fs = std::filesystem;

namespace Vz {

namespace {

struct TFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using TFile = std::unique_ptr<std::FILE, TFileCloser>;

[[noreturn]] void FailToWrite(const fs::path& path, int error) {
    throw EWriteError("cannot be written: " + std::generic_category().message(error), {path.string()});
}

/// Writes all of `bytes` and closes the file; 0 or the error.
int WriteAndClose(TFile file, std::string_view bytes) {
    errno = 0;
    bool done = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    done = std::fflush(file.get()) == 0 && done;
    const int error = done ? 0 : errno != 0 ? errno : EIO;
    if (std::fclose(file.release()) != 0 && done) return errno != 0 ? errno : EIO;
    return error;
}

/// A new empty file in the folder of `path`, its name written to `name`.
TFile CreateBeside(const fs::path& path, fs::path& name) {
    for (int i = 0; i < 1000; ++i) {
        name = path;
        name += "." + std::to_string(i) + ".new";
        if (std::FILE* file = std::fopen(name.string().c_str(), "wbx")) return TFile(file);
        if (errno != EEXIST) break;
    }
    FailToWrite(path, errno);
}

/// The file that a chain of symbolic links names in the end, whether it exists or not.
fs::path FollowLinks(fs::path path) {
    std::error_code error;
    for (int i = 0; i < 40 && fs::is_symlink(path, error); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

} // namespace

void WriteFileAtomically(const fs::path& path, std::string_view bytes) {
    const fs::path target = FollowLinks(path);
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        TFile file(std::fopen(target.string().c_str(), "wb"));
        if (!file) FailToWrite(path, errno);
        if (const int failure = WriteAndClose(std::move(file), bytes)) FailToWrite(path, failure);
        return;
    }
    fs::path fresh;
    int failure = WriteAndClose(CreateBeside(target, fresh), bytes);
    if (failure == 0) {
        if (fs::exists(status)) fs::permissions(fresh, status.permissions(), error);
        fs::rename(fresh, target, error);
        if (!error) return;
        failure = error.value();
    }
    fs::remove(fresh, error);
    FailToWrite(path, failure);
}

std::string ReadWholeFile(const fs::path& path, std::uint64_t maxBytes) {
    std::error_code error;
    const TFile file(fs::is_directory(path, error) ? nullptr : std::fopen(path.string().c_str(), "rb"));
    if (!file) {
        const int reason = fs::is_directory(path, error) ? EISDIR : errno;
        throw EReadError("cannot be read: " + std::generic_category().message(reason), {path.string()});
    }
    std::string bytes;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        bytes.append(block.data(), count);
        if (bytes.size() > maxBytes)
            throw EReadError("is longer than " + std::to_string(maxBytes) + " bytes", {path.string()});
    }
    if (std::ferror(file.get())) throw EReadError("cannot be read to its end", {path.string()});
    return bytes;
}

} // namespace Vz
