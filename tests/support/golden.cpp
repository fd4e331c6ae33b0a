// Draws the cases below tests/golden and compares them with the pictures beside them.
//
//     golden [PATTERN...]            all cases, or those whose path contains one of the patterns
//     golden --update PATTERN...     accepts what is drawn as the expected pictures
//
// A case is a *.svg or *.form file with NAME.png beside it; NAME-a and NAME-b below same/ must look alike and
// need no picture; what stands in crash/ must only come to an end. No channel may differ by more than 2, or
// by what NAME.limit says, a number and the reason.

#include "tavro/VZSVGControl.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/Exceptions.h"
#include "tavro/runtime/FormFile.h"
#include "tests/support/Environment.h"
#include "tests/support/PictureCompare.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace Vz;
using namespace Vz::Test;
namespace fs = std::filesystem;

constexpr int DefaultLimit = 2;
constexpr std::uintmax_t MaxFile = 64 << 20;
const fs::path Folder = fs::path(TestsFolder()) / "golden";
const fs::path FailureFolder = TAVRO_GOLDEN_OUTPUT;

struct TOptions {
    bool Update = false;
    std::vector<std::string> Patterns;
};

struct TFailure {
    std::string Name;
    std::string Reason;
};

std::unique_ptr<TVZGPBitmap> Draw(TControl& control) {
    THeadlessHost host(control);
    const TVZGPBitmap& picture = host.Paint();
    auto copy = std::make_unique<TVZGPBitmap>(picture.GetWidth(), picture.GetHeight());
    const TPixels from = picture.GetPixels();
    for (int y = 0; y < from.Height; ++y)
        std::copy_n(from.Row(y), from.Width, copy->GetPixels().Row(y));
    return copy;
}

std::unique_ptr<TVZGPBitmap> DrawCase(const fs::path& file) {
    if (file.extension() == ".form") {
        const auto root = LoadForm(file);
        return Draw(dynamic_cast<TControl&>(*root));
    }
    const auto control = TVZSVGControl::Create();
    control->LoadFromFile(file.string());
    control->SetBounds(0, 0, static_cast<int>(std::lround(control->GetDocument().GetWidth())),
                       static_cast<int>(std::lround(control->GetDocument().GetHeight())));
    return Draw(*control);
}

std::string NameOf(const fs::path& file) {
    return fs::relative(file, Folder).replace_extension().generic_string();
}

int LimitOf(fs::path file) {
    file.replace_extension(".limit");
    return fs::exists(file) ? std::stoi(ReadWholeFile(file, 4096)) : DefaultLimit;
}

/// Leaves the pictures of a failure for the report.
void Keep(const std::string& name, const char* kind, const TVZGPBitmap& picture) {
    const fs::path file = FailureFolder / (name + '-' + kind + ".png");
    fs::create_directories(file.parent_path());
    WriteFileAtomically(file, EncodePng(picture.GetPixels()));
}

/// Empty where they look alike, else what is wrong.
std::string CompareAndKeep(const std::string& name, const TVZGPBitmap& expected, const TVZGPBitmap& actual,
                           int limit) {
    const TDifference difference = Compare(expected.GetPixels(), actual.GetPixels(), limit);
    if (difference.IsNone()) return "";
    Keep(name, "expected", expected);
    Keep(name, "actual", actual);
    Keep(name, "difference", *DifferencePicture(expected.GetPixels(), actual.GetPixels(), limit));
    return difference.ToText();
}

std::string RunPicture(const fs::path& file, bool update) {
    const auto actual = DrawCase(file);
    const fs::path png = fs::path(file).replace_extension(".png");
    std::unique_ptr<TVZGPBitmap> expected;
    if (fs::exists(png)) expected = DecodePng(ReadWholeFile(png, MaxFile));
    if (update) {
        const bool isSame =
            expected && Compare(expected->GetPixels(), actual->GetPixels(), LimitOf(file)).IsNone();
        if (!isSame) {
            WriteFileAtomically(png, EncodePng(actual->GetPixels()));
            std::printf("updated %s\n", NameOf(file).c_str());
        }
        return "";
    }
    if (!expected) {
        Keep(NameOf(file), "actual", *actual);
        return "there is no expected picture; look at it and accept it with --update";
    }
    return CompareAndKeep(NameOf(file), *expected, *actual, LimitOf(file));
}

/// The other one of a pair, with whichever ending it has.
fs::path PartnerOf(const fs::path& file, const std::string& base) {
    for (const char* const ending : {"-b.svg", "-b.form"})
        if (const fs::path partner = file.parent_path() / (base + ending); fs::exists(partner))
            return partner;
    return {};
}

std::string RunPair(const fs::path& file, const std::string& base) {
    const fs::path partner = PartnerOf(file, base);
    if (partner.empty()) return "there is no " + base + "-b beside it";
    const auto first = DrawCase(file);
    const bool isBlank =
        Compare(first->GetPixels(), TVZGPBitmap(first->GetWidth(), first->GetHeight()).GetPixels(), 0)
            .IsNone();
    if (isBlank && base.find("nothing") == std::string::npos) return "it shows nothing at all";
    return CompareAndKeep(NameOf(file), *first, *DrawCase(partner), LimitOf(file));
}

std::string RunCrashCase(const fs::path& file) {
    try {
        DrawCase(file);
    } catch (const Exception&) {
        // A clean error is an end, too.
    }
    return "";
}

std::string RunCase(const fs::path& file, bool update) {
    const std::string top = fs::relative(file, Folder).begin()->string();
    const std::string stem = file.stem().string();
    try {
        if (top == "crash") return RunCrashCase(file);
        if (top != "same") return RunPicture(file, update);
        if (stem.ends_with("-a")) return RunPair(file, stem.substr(0, stem.size() - 2));
        if (stem.ends_with("-b")) return "";
        return "a name below same/ ends in -a or -b";
    } catch (const std::exception& error) {
        return error.what();
    }
}

bool IsWanted(const std::string& name, const TOptions& options) {
    return options.Patterns.empty() || std::ranges::any_of(options.Patterns, [&](const std::string& pattern) {
               return name.find(pattern) != std::string::npos;
           });
}

std::vector<fs::path> FindCases(const TOptions& options) {
    std::vector<fs::path> cases;
    for (const auto& entry : fs::recursive_directory_iterator(Folder))
        if (entry.path().extension() == ".svg" || entry.path().extension() == ".form")
            if (IsWanted(NameOf(entry.path()), options)) cases.push_back(entry.path());
    std::ranges::sort(cases);
    return cases;
}

/// One page with the pictures of all failures.
void WriteReport(const std::vector<TFailure>& failures) {
    std::string page = "<!DOCTYPE html><meta charset=\"utf-8\"><title>Pictures that differ</title>\n";
    for (const TFailure& failure : failures) {
        page += "<h3>" + failure.Name + "</h3><p>" + failure.Reason + "</p>\n";
        for (const char* const kind : {"expected", "actual", "difference"})
            if (fs::exists(FailureFolder / (failure.Name + '-' + kind + ".png")))
                page += "<img alt=\"" + std::string(kind) + "\" title=\"" + kind + "\" src=\"" +
                        failure.Name + '-' + kind + ".png\" style=\"border:1px solid grey\">\n";
    }
    fs::create_directories(FailureFolder);
    WriteFileAtomically(FailureFolder / "index.html", page);
    std::printf("%s\n", (FailureFolder / "index.html").c_str());
}

} // namespace

int main(int count, char** arguments) {
    FixEnvironment();
    RegisterComponentClasses();
    TOptions options;
    for (int i = 1; i < count; ++i)
        if (std::strcmp(arguments[i], "--update") == 0)
            options.Update = true;
        else
            options.Patterns.emplace_back(arguments[i]);
    if (options.Update && options.Patterns.empty()) {
        std::fputs("golden: --update needs a pattern\n", stderr);
        return 2;
    }
    fs::remove_all(FailureFolder);
    const std::vector<fs::path> cases = FindCases(options);
    std::vector<TFailure> failures;
    for (const fs::path& file : cases)
        if (std::string reason = RunCase(file, options.Update); !reason.empty()) {
            std::printf("FAILED %s: %s\n", NameOf(file).c_str(), reason.c_str());
            failures.push_back({NameOf(file), std::move(reason)});
        }
    std::printf("%zu cases, %zu failed\n", cases.size(), failures.size());
    if (!failures.empty()) WriteReport(failures);
    return failures.empty() && !cases.empty() ? 0 : 1;
}
