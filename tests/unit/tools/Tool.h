#pragma once

#include "tavro/graphics/Bitmap.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Vz::Test {

/// What a run of the tool left.
struct TRun {
    int Status = -1; ///< exit status; -1 after a crash
    std::string Out;
    std::string Err;
};

/// Runs the built program with the folder as its working directory.
TRun RunTool(const std::filesystem::path& folder, std::vector<std::string> arguments);

/// An empty folder for each test, removed after it; where the tool runs.
class TToolTest : public testing::Test {
public:
    void Write(const std::string& name, const std::string& text) const;

protected:
    TToolTest();
    ~TToolTest() override;

    const std::filesystem::path& Folder() const { return FFolder; }
    TRun Run(std::vector<std::string> arguments) const { return RunTool(FFolder, std::move(arguments)); }
    /// The standard output of a run that must succeed without a word on standard error.
    std::string Output(const std::vector<std::string>& arguments) const;
    /// The one line on standard error of a run that must end with 1 and print nothing else.
    std::string Complaint(const std::vector<std::string>& arguments) const;

    std::string Read(const std::string& name) const;
    bool Exists(const std::string& name) const { return std::filesystem::exists(FFolder / name); }
    std::unique_ptr<TVZGPBitmap> ReadPng(const std::string& name) const;

    /// A blue square of 40 x 20, with id `Box`, in box.svg.
    void WriteBox() const;

private:
    std::filesystem::path FFolder;
};

} // namespace Vz::Test
