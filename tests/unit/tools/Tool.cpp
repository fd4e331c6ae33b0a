#include "Tool.h"

#include "tavro/runtime/AtomicFile.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fcntl.h>

namespace Vz::Test {

namespace {

constexpr std::uint64_t MaxFile = 64 << 20;

[[noreturn]] void Become(const std::filesystem::path& folder, std::vector<std::string>& arguments) {
    std::vector<char*> words;
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    const int out = open((folder / "..out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open((folder / "..err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const bool isReady =
        dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 && chdir(folder.c_str()) == 0;
    if (isReady) execv(TAVRO_TOOL, words.data());
    _exit(127);
}

} // namespace

TRun RunTool(const std::filesystem::path& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "tavro");
    const pid_t child = fork();
    if (child == 0) Become(folder, arguments);
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadWholeFile(folder / "..out", MaxFile),
            ReadWholeFile(folder / "..err", MaxFile)};
}

TToolTest::TToolTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavro-XXXXXX").string();
    FFolder = mkdtemp(pattern.data());
}

TToolTest::~TToolTest() {
    std::error_code ignored;
    std::filesystem::remove_all(FFolder, ignored);
}

std::string TToolTest::Output(const std::vector<std::string>& arguments) const {
    const TRun run = Run(arguments);
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Err, "");
    return run.Out;
}

std::string TToolTest::Complaint(const std::vector<std::string>& arguments) const {
    const TRun run = Run(arguments);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Out, "");
    EXPECT_EQ(std::ranges::count(run.Err, '\n'), 1) << run.Err;
    EXPECT_TRUE(run.Err.starts_with("tavro: ")) << run.Err;
    return run.Err;
}

void TToolTest::Write(const std::string& name, const std::string& text) const {
    WriteFileAtomically(FFolder / name, text);
}

std::string TToolTest::Read(const std::string& name) const { return ReadWholeFile(FFolder / name, MaxFile); }

std::unique_ptr<TVZGPBitmap> TToolTest::ReadPng(const std::string& name) const {
    return DecodePng(Read(name));
}

void TToolTest::WriteBox() const {
    Write("box.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
                     "<rect id='Box' width='40' height='20' fill='blue'/></svg>");
}

} // namespace Vz::Test
