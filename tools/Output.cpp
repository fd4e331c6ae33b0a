#include "Output.h"

#include "tavro/runtime/AtomicFile.h"
#include "tavro/runtime/Exceptions.h"

#include <cstdio>

namespace Vz::Tool {

void Print(std::string_view text) {
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!isWritten) throw EWriteError("standard output cannot be written");
}

void WriteOutput(const std::string& file, std::string_view bytes) {
    if (file == "-")
        Print(bytes);
    else
        WriteFileAtomically(file, bytes);
}

} // namespace Vz::Tool
