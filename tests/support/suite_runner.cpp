// Draws many SVG files in one go, each in a process of its own that was forked off this one, so that fonts
// are loaded once and a crash or endless loop is that case's alone.
//
//     suite_runner [--jobs N] [--seconds S] [--megabytes M] < LIST
//
// LIST has a line a case: SVG file, PNG file, width, height, separated by tabs. Where a picture fails the
// reason stands in the file of the PNG's name that ends in .fail. Prints a line a case: processor seconds,
// SVG file. A case of more than S processor seconds (default 600) hangs; M (default 1024, 0: none) limits its
// memory.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/runtime/AtomicFile.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

namespace {

using namespace Vz;

struct TLimits {
    int Jobs = 2;
    unsigned Seconds = 600;
    unsigned Megabytes = 1024;
};

struct TCase {
    std::string Svg;
    std::string Png;
    int Width = 0;
    int Height = 0;
};

/// The document by itself, as its file says: a control would set the alignments.
void Draw(const TCase& item, TVZGPBitmap& bitmap) {
    TSVGDocument document;
    document.LoadFromFile(item.Svg);
    const TRectF all{0, 0, float(item.Width), float(item.Height)};
    document.FitToRect(all);
    document.Draw(bitmap.GetCanvas(), document.GetDrawMatrix(), all);
}

void WriteReason(const TCase& item, const std::string& reason) {
    std::filesystem::path file = item.Png;
    WriteFileAtomically(file.replace_extension(".fail"), reason + '\n');
}

/// The child's work; its exit status.
int DrawCase(const TCase& item) {
    try {
        TVZGPBitmap bitmap(static_cast<unsigned>(item.Width), static_cast<unsigned>(item.Height));
        Draw(item, bitmap);
        WriteFileAtomically(item.Png, EncodePng(bitmap.GetPixels()));
        return 0;
    } catch (const std::exception& error) {
        WriteReason(item, std::string("error: ") + error.what());
        return 1;
    }
}

void Limit(const TLimits& limits) {
    const auto set = [](auto resource, rlim_t value) {
        const rlimit limit{value, value};
        setrlimit(resource, &limit);
    };
    set(RLIMIT_CPU, limits.Seconds);
    set(RLIMIT_CORE, 0);
    if (limits.Megabytes > 0) set(RLIMIT_AS, rlim_t{limits.Megabytes} << 20);
    alarm(limits.Seconds * 2); // for what waits instead of working
}

class TPool {
public:
    explicit TPool(const TLimits& limits)
        : FLimits(limits) {}

    void Run(const TCase& item) {
        if (static_cast<int>(FRunning.size()) >= FLimits.Jobs) WaitForOne();
        std::filesystem::create_directories(std::filesystem::path(item.Png).parent_path());
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            Limit(FLimits);
            _exit(DrawCase(item));
        }
        if (child < 0)
            WriteReason(item, "cannot fork");
        else
            FRunning.emplace(child, item);
    }

    void WaitForAll() {
        while (!FRunning.empty())
            WaitForOne();
    }

private:
    void WaitForOne() {
        int status = 0;
        rusage usage{};
        const auto at = FRunning.find(wait4(-1, &status, 0, &usage));
        if (at == FRunning.end()) return;
        const TCase& item = at->second;
        const auto seconds = [](const timeval& time) {
            return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
        };
        std::printf("%.3f\t%s\n", seconds(usage.ru_utime) + seconds(usage.ru_stime), item.Svg.c_str());
        if (WIFSIGNALED(status)) {
            const int signal = WTERMSIG(status);
            const bool isTime = signal == SIGXCPU || signal == SIGALRM || signal == SIGKILL;
            WriteReason(item, isTime ? "time-out" : "crash (" + std::string(strsignal(signal)) + ')');
        }
        FRunning.erase(at);
    }

    TLimits FLimits;
    std::map<pid_t, TCase> FRunning;
};

/// Loads the fonts that a forked child then has.
void WarmUp() {
    const auto control = TVZSVGControl::Create();
    control->LoadFromText("<svg xmlns='http://www.w3.org/2000/svg' width='50' height='50'>"
                          "<text y='20' font-family='Noto Sans'>a</text><text y='40'>a</text></svg>");
    THeadlessHost(*control).Paint();
}

TLimits ReadOptions(int count, char** arguments) {
    TLimits limits;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string_view option = arguments[i];
        const int value = std::atoi(arguments[i + 1]);
        if (option == "--jobs") limits.Jobs = value;
        if (option == "--seconds") limits.Seconds = unsigned(value);
        if (option == "--megabytes") limits.Megabytes = unsigned(value);
    }
    return limits;
}

} // namespace

int main(int count, char** arguments) {
    TPool pool(ReadOptions(count, arguments));
    WarmUp();
    std::string line;
    while (std::getline(std::cin, line)) {
        TCase item;
        std::istringstream fields(line);
        std::getline(fields, item.Svg, '\t');
        std::getline(fields, item.Png, '\t');
        if (fields >> item.Width >> item.Height) pool.Run(item);
    }
    pool.WaitForAll();
}
